// How big an app's caches are.
#include "apps/ThirdPartyAppCacheManager.h"
#include "platform/log/Log.h"

namespace sweepwright {

using platform::joinPath;
using platform::log;

platform::WalkRules ThirdPartyAppCacheManager::entryRules() {
    platform::WalkRules rules;
    rules.countHiddenEntries = true;
    rules.countLinks = true;
    rules.maxDepth = platform::kDefaultMaxDepth - 1;
    return rules;
}

void ThirdPartyAppCacheManager::noteUnreadable(const std::string& path, const Error& error,
                                               CleanObserver* observer) {
    platform::tellUnreadable(services_.files, path, error, unreadableTo(observer));
}

platform::WalkRules ThirdPartyAppCacheManager::walkRules(int maxDepth, CleanObserver* observer) {
    platform::WalkRules rules = entryRules();
    rules.onUnreadable = unreadableTo(observer);
    rules.maxDepth = maxDepth;
    rules.onDepthLimit = [](const std::string& path) {
        log("⚠️ 达到最大递归深度，跳过路径: {}", path);
    };
    return rules;
}

std::uint64_t ThirdPartyAppCacheManager::sizeOfDirectoryAtPath(const std::string& path,
                                                               int maxDepth) {
    return walker_.sizeOfDirectory(path, walkRules(maxDepth, observer_));
}

std::uint64_t ThirdPartyAppCacheManager::sizeBeneath(const std::string& container,
                                                     std::string_view relative,
                                                     CleanObserver* observer) {
    // A link on the way may lead into another app; what it leads to is not this app's.
    const auto base = services_.files.openDirectory(container, platform::LastLink::Refuse);
    auto folder = base ? services_.files.openBeneath(*base, relative, platform::Mounts::Cross)
                       : platform::Result<platform::Directory>(std::unexpected(base.error()));
    if (folder)
        return walker_.sizeOfDirectory(*std::move(folder),
                                       walkRules(platform::kDefaultMaxDepth, observer));
    noteUnreadable(joinPath(container, relative), folder.error(), observer);
    return 0;
}

void ThirdPartyAppCacheManager::calculateCacheSizeForAppInfo(AppCacheInfo& info) {
    HiddenRoots hiddenRoots(services_.files, unreadableTo(observer_));
    calculate(info, hiddenRoots);
}

void ThirdPartyAppCacheManager::calculate(AppCacheInfo& info, HiddenRoots& hiddenRoots) {
    if (!info.dataPath) return;
    const auto measure = [this](const std::string& root, std::string_view relative) {
        return sizeBeneath(root, relative, observer_);
    };
    std::uint64_t cache = measure(*info.dataPath, "Library/Caches");
    std::uint64_t tmp = measure(*info.dataPath, "tmp");
    cache += measure(*info.dataPath, "Library/WebKit");
    for (const auto* folder : hiddenRoots.matching(info.bundleIdentifier.value_or(""))) {
        if (const auto size = hiddenRoots.cacheSize(*folder, measure)) {
            cache += *size;
            log("🔍 隐根设备路径发现缓存: {}, 大小: {} 字节", folder->cachePath(), *size);
        }
        if (const auto size = hiddenRoots.tmpSize(*folder, measure)) {
            tmp += *size;
            log("🔍 隐根设备路径发现临时文件: {}, 大小: {} 字节", folder->tmpPath(), *size);
        }
    }
    info.cacheSize = cache;
    info.tmpSize = tmp;
    info.totalSize = cache + tmp;
}

void ThirdPartyAppCacheManager::getCacheInfoForApp(const std::string& bundleIdentifier,
                                                   InfoCompletion completion) {
    {
        std::unique_lock lock(mutex_);
        const auto known = appInfoCache_.find(bundleIdentifier);
        if (known != appInfoCache_.end()) {
            const AppCacheInfo info = known->second;
            lock.unlock();
            if (completion) completion(info);
            return;
        }
    }
    scanQueue_->async([this, bundleIdentifier, completion = std::move(completion)] {
        std::optional<AppCacheInfo> found;
        if (auto path = getAppDataDirectory(bundleIdentifier); path && *path) {
            found.emplace();
            found->bundleIdentifier = bundleIdentifier;
            found->dataPath = std::move(*path);
            calculateCacheSizeForAppInfo(*found);
            const std::lock_guard lock(mutex_);
            appInfoCache_[bundleIdentifier] = *found;
        }
        services_.mainQueue.async([completion, found] {
            if (completion) completion(found);
        });
    });
}

platform::Result<std::optional<std::string>> ThirdPartyAppCacheManager::getAppDataDirectory(
    const std::string& bundleIdentifier) {
    using Availability = platform::ApplicationWorkspace::Availability;
    if (services_.workspace.availability() != Availability::Available)
        return containers_.find(bundleIdentifier);
    const auto proxies = services_.workspace.allInstalledApplications();
    if (!proxies) return std::unexpected(proxies.error());
    if (!*proxies) return std::nullopt;
    for (const auto& proxy : **proxies) {
        const auto identifier = proxy->applicationIdentifier();
        if (!identifier) return std::unexpected(identifier.error());
        if (*identifier == bundleIdentifier) return proxy->dataContainerPath();
    }
    return std::nullopt;
}

}  // namespace sweepwright
