#include "cli/Categories.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace sweepwright::cli {

namespace {

using Engine = FileCleanerEngine;
using Scan = ScanResult;

constexpr std::array<Category, 9> kCategories{{
    {"cache", "caches", "cacheSize", CleanType::Cache, &Scan::cacheSize, &Engine::getCacheSize},
    {"temp", "temporary files", "tempSize", CleanType::TempFiles, &Scan::tempSize,
     &Engine::getTempFilesSize},
    {"cookies", "cookies and web data", "cookieSize", CleanType::Cookies, &Scan::cookieSize,
     &Engine::getCookiesSize},
    {"logs", "system logs", "logSize", CleanType::SystemLogs, &Scan::logSize,
     &Engine::getSystemLogsSize},
    {"downloads", "downloads", "downloadsSize", CleanType::Downloads, &Scan::downloadsSize,
     &Engine::getDownloadsSize},
    {"images", "image caches", "imageCacheSize", CleanType::ImageCache, &Scan::imageCacheSize,
     &Engine::getImageCacheSize},
    {"databases", "database side files", "databaseSize", CleanType::DatabaseFiles,
     &Scan::databaseSize, &Engine::getDatabaseFilesSize},
    {"crash-reports", "crash reports", "crashReportsSize", CleanType::CrashReports,
     &Scan::crashReportsSize, &Engine::getCrashReportsSize},
    {"offline-data", "offline data", "offlineDataSize", CleanType::OfflineData,
     &Scan::offlineDataSize, &Engine::getOfflineDataSize},
}};

}  // namespace

std::span<const Category> categories() {
    return kCategories;
}

const Category* categoryOf(CleanType type) {
    const auto* const found = std::ranges::find(kCategories, type, &Category::type);
    return found == kCategories.end() ? nullptr : found;
}

const Category* categoryNamed(std::string_view word) {
    const auto* const found = std::ranges::find(kCategories, word, &Category::word);
    return found == kCategories.end() ? nullptr : found;
}

std::vector<std::string> categoryWords(std::vector<std::string> more) {
    std::vector<std::string> words(kCategories.size());
    std::ranges::transform(kCategories, words.begin(),
                           [](const Category& category) { return std::string(category.word); });
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

}  // namespace sweepwright::cli
