// The nine category cleaners: which locations, which entries, in which order.
#include <exception>

#include "engine/Categories.h"
#include "engine/CategoryRules.h"
#include "engine/FileCleanerEngine.h"
#include "engine/KeepRule.h"
#include "platform/log/Log.h"

namespace sweepwright {

using platform::joinPath;
using platform::log;
using platform::Mounts;

namespace {

/// Web storage that can't be emptied costs its own step only.
void logFailure(const platform::Result<>& emptied) {
    if (!emptied) log("⚠️ 无法清空网页存储: {}", emptied.error().description);
}

}  // namespace

/// A location that had something to clean: what it held and what went.
struct FileCleanerEngine::Emptying {
    std::uint64_t size = 0;
    std::uint64_t freed = 0;
};

std::uint64_t FileCleanerEngine::cleanIfPresent(const std::string& path, const Progress& progress) {
    return existsToClean(path) ? removeContentsOfDirectory(path, progress) : 0;
}

std::uint64_t FileCleanerEngine::cleanEntries(const std::string& directory, NameRule rule,
                                              const Progress& progress) {
    std::uint64_t total = 0;
    for (const std::string& name : cleanableEntriesOf(directory))
        if (rule(name))
            total += removeContentsOfDirectory(joinPath(directory, name), progress, Mounts::Refuse);
    return total;
}

std::uint64_t FileCleanerEngine::cleanPlaces(CleanType type, const Progress& progress) {
    std::uint64_t total = 0;
    for (const Place& place : categoryOf(type)->places) {
        const std::string folder = home(place.folder);
        total += place.rule != nullptr ? cleanEntries(folder, place.rule, progress)
                                       : cleanIfPresent(folder, progress);
    }
    return total;
}

std::optional<FileCleanerEngine::Emptying> FileCleanerEngine::cleanMeasured(
    const std::string& path, const Progress& progress, Mounts mounts) {
    if (isStopped() || !existsToClean(path)) return std::nullopt;
    if (isPathInWhitelist(path)) {
        noteProtected(path);
        return std::nullopt;
    }
    const std::uint64_t size = sizeToClean(path);
    if (size == 0) return std::nullopt;
    return Emptying{size, removeContentsOfDirectory(path, progress, mounts)};
}

std::uint64_t FileCleanerEngine::cleanCacheWithProgress(const Progress& progress,
                                                        ErrorSlot& /*error*/) {
    std::uint64_t total = 0;
    const std::string caches = services_.device.cachesDirectory();
    if (isPathInWhitelist(caches)) {
        noteProtected(caches);
    } else {
        total += removeContentsOfDirectory(caches, progress);
    }
    total += cleanSupportCaches(progress);
    if (!isStopped()) logFailure(services_.eraser.removeAllCachedResponses());
    total += cleanSystemCaches(progress);
    return total + cleanCustomPaths(progress);
}

std::uint64_t FileCleanerEngine::cleanSupportCaches(const Progress& progress) {
    std::uint64_t total = 0;
    const std::string support = services_.device.applicationSupportDirectory();
    for (const std::string& name : cleanableEntriesOf(support)) {
        const std::string path = joinPath(support, name);
        if (isPathInWhitelist(path)) {
            noteProtected(path);
        } else if (isMapsAppPath(path)) {
            keepMaps(path);
        } else if (rules::isTemporaryData(name)) {
            total += removeContentsOfDirectory(path, progress, Mounts::Refuse);
        }
    }
    return total;
}

std::uint64_t FileCleanerEngine::cleanSystemCaches(const Progress& progress) {
    std::uint64_t total = 0;
    try {
        for (const std::string_view at : rules::kSafariCaches) {
            const std::string path(at);
            const auto done = cleanMeasured(path, progress);
            if (!done || done->freed == 0) continue;
            total += done->freed;
            log("✅ 清理Safari缓存: {}, 大小: {} 字节", path, done->freed);
        }
        for (const auto& [path, name] : rules::kSystemCaches) {
            const auto done = cleanMeasured(std::string(path), progress);
            if (!done || done->freed == 0) continue;
            total += done->freed;
            log("✅ 清理{}缓存, 大小: {} 字节", name, done->freed);
        }
        if (existsToClean(std::string(rules::kSharedCaches)))
            for (const std::string& name : cleanableEntriesOf(std::string(rules::kSharedCaches)))
                total += cleanSharedCache(name, progress);
    } catch (const std::exception& exception) {
        log("⚠️ 清理系统缓存时异常: {}", exception.what());
        noteKept(std::string(rules::kSharedCaches), KeptReason::Failed, exception.what());
    }
    return total;
}

std::uint64_t FileCleanerEngine::cleanSharedCache(const std::string& name,
                                                  const Progress& progress) {
    const std::string path = joinPath(rules::kSharedCaches, name);
    if (keepsLocation(path, kKeptSharedCaches)) return 0;
    if (!rules::isSharedCache(name)) return 0;
    // Asked again: the list may have changed since.
    if (isPathInWhitelist(path)) {
        log("🔒 二次检查：跳过白名单路径: {}", path);
        return 0;
    }
    const auto done = cleanMeasured(path, progress, Mounts::Refuse);
    if (!done) return 0;
    if (done->freed > 0) {
        log("✅ 清理用户库缓存: {}, 大小: {} 字节", name, done->freed);
    } else {
        log("⚠️ 检测到缓存但无法删除: {}, 大小: {} 字节（文件可能正在使用）", name, done->size);
    }
    return done->freed;
}

std::uint64_t FileCleanerEngine::cleanCustomPaths(const Progress& progress) {
    std::uint64_t total = 0;
    for (const std::string& path : services_.customPaths.getAllCustomPaths()) {
        const auto done = cleanMeasured(path, progress);
        if (!done || done->freed == 0) continue;
        total += done->freed;
        log("✅ 清理自定义路径: {}, 大小: {} 字节", path, done->freed);
    }
    return total;
}

std::uint64_t FileCleanerEngine::cleanTempFilesWithProgress(const Progress& progress,
                                                            ErrorSlot& /*error*/) {
    return removeContentsOfDirectory(services_.device.temporaryDirectory(), progress);
}

std::uint64_t FileCleanerEngine::cleanCookiesWithProgress(const Progress& progress,
                                                          ErrorSlot& /*error*/) {
    if (!isStopped()) logFailure(services_.eraser.deleteAllCookies());
    return cleanPlaces(CleanType::Cookies, progress) + cleanSystemSafari(progress);
}

std::uint64_t FileCleanerEngine::cleanSystemSafari(const Progress& progress) {
    std::uint64_t total = 0;
    for (const std::string_view at : rules::kSafariCaches) {
        const std::string path(at);
        const auto done = cleanMeasured(path, progress);
        if (!done) continue;
        if (done->freed > 0) {
            total += done->freed;
            log("✅ 清理系统Safari缓存: {}, 大小: {} 字节", path, done->freed);
        } else {
            log("⚠️ 无法清理系统Safari缓存: {}（文件可能正在使用）", path);
        }
    }
    return total;
}

std::uint64_t FileCleanerEngine::cleanSystemLogsWithProgress(const Progress& progress,
                                                             ErrorSlot& /*error*/) {
    std::uint64_t total = 0;
    const std::string logs = home("Library/Logs");
    if (isPathInWhitelist(logs)) {
        noteProtected(logs);
    } else {
        total += removeContentsOfDirectory(logs, progress);
    }
    for (const std::string_view at : rules::kDiagnostics) {
        const std::string path(at);
        const auto done = cleanMeasured(path, progress);
        if (!done) continue;
        if (done->freed > 0) {
            total += done->freed;
            log("✅ 清理诊断数据: {}, 大小: {} 字节", path, done->freed);
        } else {
            log("⚠️ 检测到诊断数据但无法删除: {}, 大小: {} 字节（文件可能正在使用）", path,
                done->size);
        }
    }
    return total;
}

std::uint64_t FileCleanerEngine::cleanDownloadsWithProgress(const Progress& progress,
                                                            ErrorSlot& /*error*/) {
    return cleanPlaces(CleanType::Downloads, progress);
}

std::uint64_t FileCleanerEngine::cleanImageCacheWithProgress(const Progress& progress,
                                                             ErrorSlot& /*error*/) {
    return cleanPlaces(CleanType::ImageCache, progress);
}

std::uint64_t FileCleanerEngine::cleanCrashReportsWithProgress(const Progress& progress,
                                                               ErrorSlot& /*error*/) {
    return cleanPlaces(CleanType::CrashReports, progress);
}

std::uint64_t FileCleanerEngine::cleanOfflineDataWithProgress(const Progress& progress,
                                                              ErrorSlot& /*error*/) {
    return cleanPlaces(CleanType::OfflineData, progress);
}

}  // namespace sweepwright
