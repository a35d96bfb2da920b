#include "protection/CustomPathManager.h"

#include <algorithm>

#include "platform/log/Log.h"

namespace sweepwright {

using platform::Result;

CustomPathManager::CustomPathManager(platform::UserDefaults& defaults)
    : paths_(defaults, "CustomCleanPaths") {}

CustomPathManager& CustomPathManager::sharedManager() {
    static auto* const manager = new CustomPathManager(platform::UserDefaults::standard());
    return *manager;
}

Result<> CustomPathManager::addCustomPath(const std::string& path) {
    if (path.empty()) return {};
    auto added = paths_.add(path);
    if (added) platform::log("✅ 已添加自定义路径: {}", path);
    return added;
}

Result<> CustomPathManager::removeCustomPath(const std::string& path) {
    if (path.empty()) return {};
    auto removed = paths_.remove(path);
    if (removed) platform::log("✅ 已移除自定义路径: {}", path);
    return removed;
}

Result<> CustomPathManager::clearAllCustomPaths() {
    auto cleared = paths_.clear();
    if (cleared) platform::log("✅ 已清除所有自定义路径");
    return cleared;
}

bool CustomPathManager::isCustomPath(std::string_view path) const {
    if (path.empty()) return false;
    const auto members = paths_.members();
    return std::ranges::any_of(members->strings(), [&](const std::string& member) {
        return path.starts_with(member) || std::string_view(member).starts_with(path);
    });
}

std::vector<std::string> CustomPathManager::getAllCustomPaths() const {
    return paths_.members()->strings();
}

std::size_t CustomPathManager::getCustomPathCount() const {
    return paths_.members()->size();
}

}  // namespace sweepwright
