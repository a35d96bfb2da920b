#include "apps/ThirdPartyAppCacheManager.h"

#include <algorithm>

#include "platform/log/Log.h"

namespace sweepwright {

ThirdPartyAppCacheManager::ThirdPartyAppCacheManager(const AppServices& services)
    : services_(services),
      crew_(std::make_shared<platform::Crew>()),
      walker_(services.files, platform::TreeWalker::kDefaultThreads, crew_),
      containers_(services.files),
      scanQueue_(platform::DispatchQueue::concurrent("com.sweepwright.appscan")) {}

ThirdPartyAppCacheManager::~ThirdPartyAppCacheManager() = default;

AppServices AppServices::shared() {
    return {platform::Device::current(),           platform::FileManager::defaultManager(),
            DeviceEraser::sharedEraser(),          platform::ApplicationWorkspace::ofHost(),
            platform::ResourceBundle::main(),      AppWhitelistManager::sharedManager(),
            PathWhitelistManager::sharedManager(), CleanHistoryManager::sharedManager(),
            CleanStatistics::sharedStatistics(),   platform::NotificationCenter::defaultCenter(),
            platform::MainQueue::shared(),         &CleanLock::sharedLock()};
}

ThirdPartyAppCacheManager& ThirdPartyAppCacheManager::sharedManager() {
    static ThirdPartyAppCacheManager manager(AppServices::shared());
    return manager;
}

void ThirdPartyAppCacheManager::scanAllAppsWithCompletion(ListCompletion completion,
                                                          Progress progress) {
    scanQueue_->async([this, completion = std::move(completion), progress = std::move(progress)] {
        platform::ProgressThrottle throttle(services_.mainQueue, progress);
        AppList apps = scanNow([&throttle](const std::string& name, double fraction) {
            throttle.report(name, fraction);
        });
        throttle.flush();
        services_.mainQueue.async([completion, apps = std::move(apps)] {
            if (completion) completion(apps);
        });
    });
}

void ThirdPartyAppCacheManager::scanThirdPartyAppsWithCompletion(ListCompletion completion,
                                                                 Progress progress) {
    scanAllAppsWithCompletion(
        [completion = std::move(completion)](AppList apps) {
            leaveOutSystemApps(apps);
            if (completion) completion(apps);
        },
        std::move(progress));
}

void ThirdPartyAppCacheManager::leaveOutSystemApps(AppList& apps) {
    std::erase_if(apps, [](const AppCacheInfo& app) { return app.isSystemApp; });
    platform::log("✅ 找到 {} 个第三方应用", apps.size());
}

std::size_t ThirdPartyAppCacheManager::getInstalledAppCount() const {
    const std::lock_guard lock(mutex_);
    return cachedAppList_ ? cachedAppList_->size() : 0;
}

std::size_t ThirdPartyAppCacheManager::getThirdPartyAppCount() const {
    const std::lock_guard lock(mutex_);
    if (!cachedAppList_) return 0;
    return static_cast<std::size_t>(
        std::ranges::count(*cachedAppList_, false, &AppCacheInfo::isSystemApp));
}

std::uint64_t ThirdPartyAppCacheManager::getTotalThirdPartyAppCacheSize() const {
    const std::lock_guard lock(mutex_);
    std::uint64_t total = 0;
    if (cachedAppList_)
        for (const AppCacheInfo& app : *cachedAppList_)
            if (!app.isSystemApp) total += app.totalSize;
    return total;
}

bool ThirdPartyAppCacheManager::hasPrivateAPIAccess() {
    return services_.files.fileExists(std::string(kDataContainers));
}

void ThirdPartyAppCacheManager::refreshAppListCache() {
    const std::lock_guard lock(mutex_);
    cachedAppList_.reset();
    appInfoCache_.clear();
}

void ThirdPartyAppCacheManager::invalidateAllCache() {
    refreshAppListCache();
}

void ThirdPartyAppCacheManager::invalidateCacheForApp(const std::string& bundleIdentifier) {
    const std::lock_guard lock(mutex_);
    appInfoCache_.erase(bundleIdentifier);
    cachedAppList_.reset();
}

platform::Result<> ThirdPartyAppCacheManager::readiness() const {
    services_.appWhitelist.reload();
    services_.pathWhitelist.reload();
    if (auto ready = services_.appWhitelist.readiness(); !ready) return ready;
    return services_.pathWhitelist.readiness();
}

}  // namespace sweepwright
