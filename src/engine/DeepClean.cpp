// The deep clean: one unconditional sweep over the system's caches.
#include <exception>

#include "engine/CategoryRules.h"
#include "engine/FileCleanerEngine.h"
#include "platform/Log.h"

namespace sweepwright {

using platform::LastLink;
using platform::log;

namespace {

constexpr std::array<std::string_view, 2> kSafariHistorySideFiles = {
    "/var/mobile/Library/Safari/History.db-wal",
    "/var/mobile/Library/Safari/History.db-shm",
};

}  // namespace

void FileCleanerEngine::deepCleanWithCompletion(Completion completion) {
    stopRequested_ = false;
    cleanQueue_->async([this, completion = std::move(completion)]() mutable {
        if (const auto ready = readiness(); !ready)
            return postCompletion(std::move(completion), 0, ready.error());
        ErrorSlot error;
        const std::uint64_t total = deepCleanNow(error);
        postCompletion(std::move(completion), total, std::move(error));
    });
}

std::uint64_t FileCleanerEngine::deepCleanNow(ErrorSlot& error) {
    std::uint64_t total = 0;
    try {
        sweepSystemCache(rules::kSpringBoardCache, "SpringBoard", total);
        sweepCacheDelete(total);
        for (const std::string_view path : rules::kSafariCaches)
            sweepSafari(path, total);
        for (const std::string_view path : kSafariHistorySideFiles)
            sweepSafari(path, total);
        sweepSystemCache(rules::kMobileAssets, "MobileAsset", total);
        sweepSystemCache(rules::kUuidText, "uuidtext", total);
        sweepSharedCaches(total);
    } catch (const std::exception& exception) {
        const std::string reason = exception.what();
        log("❌ 深度清理异常: {}", reason);
        error = Error{std::string(kErrorDomain), -1, reason.empty() ? "深度清理失败" : reason};
    }
    return total;
}

void FileCleanerEngine::sweepSystemCache(std::string_view at, std::string_view name,
                                         std::uint64_t& total) {
    const std::string path(at);
    if (isStopped() || !exists(path)) return;
    if (sizeOfDirectoryAtPath(path) == 0) return log("ℹ️ {}缓存目录为空，跳过清理", name);
    const std::uint64_t freed = removeContentsOfDirectory(path, {});
    if (freed == 0) return log("⚠️ 无法清理{}缓存（文件可能正在使用）", name);
    total += freed;
    log("✅ 清理{}缓存: {} 字节", name, freed);
}

void FileCleanerEngine::sweepCacheDelete(std::uint64_t& total) {
    const std::string path(rules::kCacheDeleteCache);
    if (isStopped() || !exists(path) || sizeOfDirectoryAtPath(path) == 0) return;
    const std::uint64_t freed = removeContentsOfDirectory(path, {});
    if (freed == 0) return;
    total += freed;
    log("✅ 清理cache_delete缓存: {} 字节", freed);
}

void FileCleanerEngine::sweepSafari(std::string_view at, std::uint64_t& total) {
    const std::string path(at);
    if (isStopped() || !exists(path)) return;
    const auto itself = services_.files.attributes(path, LastLink::Refuse);
    if (itself && itself->type == platform::FileType::SymbolicLink)
        return noteKept(path, KeptReason::Link);
    const std::uint64_t size = getFileSizeAtPath(path);
    if (size == 0) return;
    // The location itself goes, and unlike elsewhere the whitelist is not asked before.
    const auto parent =
        services_.files.openDirectory(path.substr(0, path.rfind('/')), LastLink::Refuse);
    platform::Removal removal;
    if (parent) {
        removal = services_.eraser.removeEntry(
            *parent, std::string(platform::lastPathComponent(path)), walkRules());
    } else {
        removal.error = parent.error();
    }
    if (!removal.error) {
        noteRemoved(path, size);
        total += size;
        return log("✅ 清理Safari缓存路径: {}, 大小: {} 字节", path, size);
    }
    const std::uint64_t freed = removal.bytes + removeContentsOfDirectory(path, {});
    if (freed == 0)
        return log("⚠️ 无法清理Safari缓存: {}（错误: {}）", path, removal.error->description);
    total += freed;
    log("✅ 清理Safari缓存目录内容: {}, 大小: {} 字节", path, freed);
}

void FileCleanerEngine::sweepSharedCaches(std::uint64_t& total) {
    const std::string shared(rules::kSharedCaches);
    if (isStopped() || !exists(shared)) return;
    for (const std::string& name : entriesOf(shared)) {
        const std::string path = platform::joinPath(shared, name);
        if (isStopped()) return;
        if (name.contains(rules::kProductName)) {
            noteKept(path, KeptReason::OwnFolder);
            continue;
        }
        if (isMapsAppPath(path)) {
            log("🗺️ 跳过地图应用缓存: {} (保护地图图片缓存)", path);
            noteKept(path, KeptReason::Maps);
            continue;
        }
        const std::uint64_t size = sizeOfDirectoryAtPath(path);
        if (!rules::isSharedCache(name)) continue;
        if (removeContentsOfDirectory(path, {}) == 0) continue;
        // What it held counts, not what went: deliberate, and unlike the cache cleaner.
        total += size;
        log("✅ 清理用户库缓存: {}, 大小: {} 字节", name, size);
    }
}

}  // namespace sweepwright
