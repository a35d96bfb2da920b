#include "protection/AppWhitelistManager.h"

#include "platform/log/Log.h"

namespace sweepwright {

using platform::Result;

AppWhitelistManager::AppWhitelistManager(platform::UserDefaults& defaults)
    : apps_(defaults, "AppWhitelistBundleIdentifiers") {}

AppWhitelistManager& AppWhitelistManager::sharedManager() {
    static auto* const manager = new AppWhitelistManager(platform::UserDefaults::standard());
    return *manager;
}

Result<> AppWhitelistManager::addAppToWhitelist(const std::string& bundleIdentifier) {
    if (bundleIdentifier.empty()) return {};
    auto added = apps_.add(bundleIdentifier);
    if (added) platform::log("✅ 已添加应用到白名单: {}", bundleIdentifier);
    return added;
}

Result<> AppWhitelistManager::removeAppFromWhitelist(const std::string& bundleIdentifier) {
    if (bundleIdentifier.empty()) return {};
    auto removed = apps_.remove(bundleIdentifier);
    if (removed) platform::log("✅ 已从白名单移除应用: {}", bundleIdentifier);
    return removed;
}

Result<> AppWhitelistManager::clearAllWhitelistedApps() {
    auto cleared = apps_.clear();
    if (cleared) platform::log("✅ 已清除所有白名单");
    return cleared;
}

bool AppWhitelistManager::isAppInWhitelist(std::string_view bundleIdentifier) const {
    return !bundleIdentifier.empty() && apps_.members()->contains(bundleIdentifier);
}

std::vector<std::string> AppWhitelistManager::getAllWhitelistedApps() const {
    return apps_.members()->strings();
}

std::size_t AppWhitelistManager::getWhitelistCount() const {
    return apps_.members()->size();
}

}  // namespace sweepwright
