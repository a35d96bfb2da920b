// The engine's size getters: what lies in the places of each category, measured without deleting
// anything. What a clean frees can differ: it keeps what may be in use, counts nothing twice, and a
// cookie clean empties system caches that count as caches here.
#include "engine/Categories.h"
#include "engine/CategoryRules.h"
#include "engine/FileCleanerEngine.h"
#include "platform/log/Log.h"

namespace sweepwright {

using platform::joinPath;
using platform::log;

platform::WalkRules FileCleanerEngine::walkRules(int maxDepth, CleanObserver* observer) const {
    platform::WalkRules rules;
    rules.maxDepth = maxDepth;
    rules.protection = &services_.pathWhitelist;
    rules.onProtectedRoot = [](const std::string& path) {
        log("🔒 白名单路径跳过大小计算: {}", path);
    };
    rules.onProtectedEntry = [](const std::string& path) {
        log("🔒 白名单子路径跳过大小计算: {}", path);
    };
    rules.onDepthLimit = [](const std::string& path) {
        log("⚠️ 达到最大递归深度，跳过路径: {}", path);
    };
    rules.onUnreadable = unreadableTo(observer);
    return rules;
}

std::uint64_t FileCleanerEngine::sizeOfDirectoryAtPath(const std::string& path, int maxDepth) {
    return walker_.sizeOfDirectory(path, walkRules(maxDepth, observer_));
}

std::uint64_t FileCleanerEngine::sizeIfPresent(const std::string& path) {
    return exists(path) ? sizeOfDirectoryAtPath(path) : 0;
}

std::uint64_t FileCleanerEngine::sizeOfEntries(const std::string& directory, NameRule rule) {
    std::uint64_t total = 0;
    for (const std::string& name : entriesOf(directory))
        if (rule(name)) total += sizeOfDirectoryAtPath(joinPath(directory, name));
    return total;
}

std::uint64_t FileCleanerEngine::sizeOfPlaces(CleanType type) {
    std::uint64_t total = 0;
    for (const Place& place : categoryOf(type)->places) {
        const std::string folder = home(place.folder);
        total += place.rule != nullptr ? sizeOfEntries(folder, place.rule) : sizeIfPresent(folder);
    }
    return total;
}

std::uint64_t FileCleanerEngine::getSystemCacheSize() {
    std::uint64_t total = 0;
    const auto measure = [&](std::string_view at) -> std::uint64_t {
        const std::string path(at);
        if (isPathInWhitelist(path) || !exists(path)) return 0;
        const std::uint64_t size = sizeOfDirectoryAtPath(path);
        total += size;
        return size;
    };
    for (const std::string_view path : rules::kSafariCaches)
        if (const auto size = measure(path))
            log("✅ 扫描到Safari缓存: {}, 大小: {} 字节", path, size);
    for (const auto& [path, name] : rules::kSystemCaches)
        if (const auto size = measure(path)) log("✅ 扫描到{}缓存, 大小: {} 字节", name, size);

    // Three of the folders above lie here too and count again: a clean visits them twice as well.
    const std::string shared(rules::kSharedCaches);
    if (!exists(shared)) return total;
    for (const std::string& name : entriesOf(shared)) {
        const std::string child = joinPath(shared, name);
        if (isPathInWhitelist(child) || isMapsAppPath(child)) continue;
        if (rules::isSharedCache(name)) total += sizeIfPresent(child);
    }
    return total;
}

std::uint64_t FileCleanerEngine::getCacheSize() {
    std::uint64_t total = 0;
    const std::string caches = services_.device.cachesDirectory();
    if (!isPathInWhitelist(caches)) total += sizeOfDirectoryAtPath(caches);

    const std::string support = services_.device.applicationSupportDirectory();
    for (const std::string& name : entriesOf(support)) {
        if (!rules::isTemporaryData(name)) continue;
        const std::string child = joinPath(support, name);
        if (!isPathInWhitelist(child)) total += sizeOfDirectoryAtPath(child);
    }
    return total + getSystemCacheSize() + getCustomPathsSize();
}

std::uint64_t FileCleanerEngine::getTempFilesSize() {
    return sizeOfDirectoryAtPath(services_.device.temporaryDirectory());
}

std::uint64_t FileCleanerEngine::getCookiesSize() {
    return sizeOfPlaces(CleanType::Cookies);
}

std::uint64_t FileCleanerEngine::getSystemLogsSize() {
    std::uint64_t total = sizeOfDirectoryAtPath(home("Library/Logs"));
    for (const std::string_view at : rules::kDiagnostics) {
        const std::string path(at);
        const std::uint64_t size = sizeIfPresent(path);
        if (size > 0) log("✅ 扫描到诊断数据: {}, 大小: {} 字节", path, size);
        total += size;
    }
    return total;
}

std::uint64_t FileCleanerEngine::getDownloadsSize() {
    return sizeOfPlaces(CleanType::Downloads);
}

std::uint64_t FileCleanerEngine::getImageCacheSize() {
    return sizeOfPlaces(CleanType::ImageCache);
}

std::uint64_t FileCleanerEngine::getDatabaseFilesSize() {
    const std::string library = services_.device.libraryDirectory();
    std::uint64_t total = 0;
    for (const std::string& name : entriesOf(library)) {
        if (!rules::isDatabase(name)) continue;
        const std::string path = joinPath(library, name);
        const auto attributes = services_.files.attributes(path, platform::LastLink::Refuse);
        if (attributes) {
            total += attributes->size;
        } else {
            noteUnreadable(path, attributes.error(), observer_);
        }
    }
    return total;
}

std::uint64_t FileCleanerEngine::getCrashReportsSize() {
    return sizeOfPlaces(CleanType::CrashReports);
}

std::uint64_t FileCleanerEngine::getOfflineDataSize() {
    return sizeOfPlaces(CleanType::OfflineData);
}

std::uint64_t FileCleanerEngine::getCustomPathsSize() {
    std::uint64_t total = 0;
    for (const std::string& path : services_.customPaths.getAllCustomPaths())
        if (exists(path) && !isPathInWhitelist(path)) total += sizeOfDirectoryAtPath(path);
    return total;
}

}  // namespace sweepwright
