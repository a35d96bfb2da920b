#include "engine/Categories.h"

#include <algorithm>
#include <array>

#include "engine/CategoryRules.h"

namespace sweepwright {

namespace {

using Engine = FileCleanerEngine;
using Scan = ScanResult;

constexpr std::string_view kCaches = "Library/Caches";
constexpr std::string_view kSupport = "Library/Application Support";

constexpr auto kCookies = std::to_array<Place>({
    {"Library/Cookies"},
    {"Library/WebKit"},
    {kCaches, rules::isWebCache},
    {kSupport, rules::isWebData},
    {"Library/Safari", rules::isSafariData, false},
});
constexpr auto kDownloads = std::to_array<Place>({{"Documents/Downloads"}});
constexpr auto kImages = std::to_array<Place>({{kCaches, rules::isImageCache}});
constexpr auto kCrashReports =
    std::to_array<Place>({{"Library/Logs/CrashReporter"}, {"Library/Logs/DiagnosticReports"}});
constexpr auto kOfflineData = std::to_array<Place>({{kSupport, rules::isOfflineData}});

constexpr std::span<const Place> kNone;

constexpr std::array<Category, 9> kCategories{{
    {CleanType::Cache, "cache", "caches", "cacheSize", &Scan::cacheSize, kNone,
     &Engine::getCacheSize, nullptr, &Engine::cleanCacheWithProgress},
    {CleanType::TempFiles, "temp", "temporary files", "tempSize", &Scan::tempSize, kNone,
     &Engine::getTempFilesSize, &Engine::getTempFileList, &Engine::cleanTempFilesWithProgress},
    {CleanType::Cookies, "cookies", "cookies and web data", "cookieSize", &Scan::cookieSize,
     kCookies, &Engine::getCookiesSize, &Engine::getCookieFileList,
     &Engine::cleanCookiesWithProgress},
    {CleanType::SystemLogs, "logs", "system logs", "logSize", &Scan::logSize, kNone,
     &Engine::getSystemLogsSize, &Engine::getSystemLogFileList,
     &Engine::cleanSystemLogsWithProgress},
    {CleanType::Downloads, "downloads", "downloads", "downloadsSize", &Scan::downloadsSize,
     kDownloads, &Engine::getDownloadsSize, &Engine::getDownloadsFileList,
     &Engine::cleanDownloadsWithProgress},
    {CleanType::ImageCache, "images", "image caches", "imageCacheSize", &Scan::imageCacheSize,
     kImages, &Engine::getImageCacheSize, &Engine::getImageCacheFileList,
     &Engine::cleanImageCacheWithProgress},
    {CleanType::DatabaseFiles, "databases", "database side files", "databaseSize",
     &Scan::databaseSize, kNone, &Engine::getDatabaseFilesSize, &Engine::getDatabaseFileList,
     &Engine::cleanDatabaseFilesWithProgress},
    {CleanType::CrashReports, "crash-reports", "crash reports", "crashReportsSize",
     &Scan::crashReportsSize, kCrashReports, &Engine::getCrashReportsSize,
     &Engine::getCrashReportFileList, &Engine::cleanCrashReportsWithProgress},
    {CleanType::OfflineData, "offline-data", "offline data", "offlineDataSize",
     &Scan::offlineDataSize, kOfflineData, &Engine::getOfflineDataSize, nullptr,
     &Engine::cleanOfflineDataWithProgress},
}};

}  // namespace

std::span<const Category> categories() {
    return kCategories;
}

const Category* categoryOf(CleanType type) {
    const auto* const found = std::ranges::find(kCategories, type, &Category::type);
    return found == kCategories.end() ? nullptr : found;
}

}  // namespace sweepwright
