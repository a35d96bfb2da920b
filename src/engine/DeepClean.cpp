// The deep clean: one unconditional sweep over the system's caches.
#include <exception>

#include "engine/CategoryRules.h"
#include "engine/FileCleanerEngine.h"
#include "engine/KeepRule.h"
#include "engine/LinkProtection.h"
#include "platform/log/Log.h"

namespace sweepwright {

using platform::FileType;
using platform::LastLink;
using platform::log;
using platform::Mounts;

namespace {

constexpr std::array<std::string_view, 2> kSafariHistorySideFiles = {
    "/var/mobile/Library/Safari/History.db-wal",
    "/var/mobile/Library/Safari/History.db-shm",
};

}  // namespace

void FileCleanerEngine::deepCleanWithCompletion(Completion completion) {
    cleanQueue_->async([this, number = ++lastAsked_, completion = std::move(completion)]() mutable {
        auto admitted = admission();
        if (!admitted) return postCompletion(std::move(completion), 0, admitted.error());
        ErrorSlot error;
        const std::uint64_t total = runClean(number, {}, [&] { return sweep(error); });
        admitted->reset();
        postCompletion(std::move(completion), total, std::move(error));
    });
}

std::uint64_t FileCleanerEngine::deepCleanNow(ErrorSlot& error) {
    return runClean(++lastAsked_, {}, [&] { return sweep(error); });
}

std::uint64_t FileCleanerEngine::sweep(ErrorSlot& error) {
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
    if (isStopped() || !existsToClean(path)) return;
    if (sizeToClean(path) == 0) return log("ℹ️ {}缓存目录为空，跳过清理", name);
    const std::uint64_t freed = removeContentsOfDirectory(path, {});
    if (freed == 0) return log("⚠️ 无法清理{}缓存（文件可能正在使用）", name);
    total += freed;
    log("✅ 清理{}缓存: {} 字节", name, freed);
}

void FileCleanerEngine::sweepCacheDelete(std::uint64_t& total) {
    const std::string path(rules::kCacheDeleteCache);
    if (isStopped() || !existsToClean(path) || sizeToClean(path) == 0) return;
    const std::uint64_t freed = removeContentsOfDirectory(path, {});
    if (freed == 0) return;
    total += freed;
    log("✅ 清理cache_delete缓存: {} 字节", freed);
}

void FileCleanerEngine::sweepSafari(std::string_view at, std::uint64_t& total) {
    const std::string path(at);
    if (isStopped() || !existsToClean(path)) return;
    const std::uint64_t size = fileSize(path, cleanObserver());
    if (size == 0) return;
    const auto removal = removeLocation(path);
    if (!removal) return;
    if (!removal->error) {
        noteRemoved(path, size);
        total += size;
        return log("✅ 清理Safari缓存路径: {}, 大小: {} 字节", path, size);
    }
    noteMountPoints(*removal);
    if (!removal->onlyMountPointsStay) noteFailed(path, *removal->error);
    const std::uint64_t rest =
        removal->onlyMountPointsStay ? 0 : removeContentsOfDirectory(path, {}, Mounts::Refuse);
    const std::uint64_t freed = removal->bytes + rest;
    if (freed == 0)
        return log("⚠️ 无法清理Safari缓存: {}（错误: {}）", path, removal->error->description);
    total += freed;
    log("✅ 清理Safari缓存目录内容: {}, 大小: {} 字节", path, freed);
}

/// Removes a location itself, a directory or a file. Unlike elsewhere the whitelist is not asked
/// before: a protected directory measures 0 and does not come here. None for one that must stay.
std::optional<platform::Removal> FileCleanerEngine::removeLocation(const std::string& path) {
    const std::string name(platform::lastPathComponent(path));
    const auto parent =
        services_.files.openDirectory(path.substr(0, path.rfind('/')), LastLink::Refuse);
    if (!parent) return platform::Removal{0, parent.error()};
    const auto attributes = services_.files.attributesAt(*parent, name);
    if (attributes && attributes->type == FileType::SymbolicLink) {
        noteKept(path, KeptReason::Link);
        return std::nullopt;
    }
    if (attributes && attributes->type == FileType::Directory &&
        protectionOf(*parent).covers(name)) {
        log("🔒 白名单目录跳过删除: {}", path);
        noteProtected(path);
        return std::nullopt;
    }
    return services_.eraser.removeEntry(*parent, name, cleanRules());
}

void FileCleanerEngine::sweepSharedCaches(std::uint64_t& total) {
    const std::string shared(rules::kSharedCaches);
    if (isStopped() || !existsToClean(shared)) return;
    for (const std::string& name : cleanableEntriesOf(shared)) {
        const std::string path = platform::joinPath(shared, name);
        if (isStopped()) return;
        if (keepsLocation(path, kKeptByDeepClean)) continue;
        const bool isCache = rules::isSharedCache(name);
        // Measured either way; but of what is not to go nobody need hear.
        const std::uint64_t size = walker_.sizeOfDirectory(
            path, walkRules(platform::kDefaultMaxDepth, isCache ? cleanObserver() : nullptr));
        if (!isCache) continue;
        if (removeContentsOfDirectory(path, {}, Mounts::Refuse) == 0) continue;
        // What it held counts, not what went: deliberate, and unlike the cache cleaner.
        total += size;
        log("✅ 清理用户库缓存: {}, 大小: {} 字节", name, size);
    }
}

}  // namespace sweepwright
