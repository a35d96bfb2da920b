#include "protection/PathWhitelistManager.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/log/Log.h"

namespace sweepwright {

using platform::log;
using platform::Result;

namespace {

/// Whether `path` is `above` or lies inside it: starts with it, and there ends or goes on with "/".
bool boundaryPrefixes(std::string_view path, std::string_view above) {
    return path.starts_with(above) && (path.size() == above.size() || path[above.size()] == '/');
}

/// Logs why `path` is protected by a built-in path; false if by none.
bool logBuiltInMatch(std::string_view path) {
    for (const std::string& builtIn : PathWhitelistManager::builtInPathsList()) {
        if (path == builtIn) {
            log("🔒 白名单内置路径匹配: {} == {}", path, builtIn);
        } else if (boundaryPrefixes(path, builtIn)) {
            log("🔒 白名单内置路径子路径匹配: {} 是 {} 的子路径", path, builtIn);
        } else if (boundaryPrefixes(builtIn, path)) {
            log("🔒 白名单内置路径父路径匹配: {} 包含内置路径 {}", path, builtIn);
        } else {
            continue;
        }
        return true;
    }
    return false;
}

/// Logs why `path` is protected. The members are normalised, so that one equal to the path when
/// normalised is equal as it is.
void logMatch(std::string_view path, const OrderedStringSet& members) {
    if (logBuiltInMatch(path)) return;
    if (members.contains(path)) return log("🔒 白名单精确匹配: {}", path);
    for (const std::string& member : members.strings()) {
        if (boundaryPrefixes(path, member)) {
            return log("🔒 白名单子路径匹配: {} 是 {} 的子路径", path, member);
        }
        if (boundaryPrefixes(member, path)) {
            return log("🔒 白名单父路径匹配: {} 包含白名单路径 {}", path, member);
        }
    }
}

std::string_view normalized(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    return path;
}

OrderedStringSet normalizedSet(const std::vector<std::string>& paths) {
    OrderedStringSet set;
    for (const std::string& path : paths)
        set.add(std::string(normalized(path)));
    return set;
}

std::vector<std::string> withoutBuiltIns(std::vector<std::string> paths) {
    std::erase_if(paths, PathWhitelistManager::isBuiltInPath);
    return paths;
}

}  // namespace

PathWhitelistManager::PathWhitelistManager(platform::UserDefaults& defaults)
    : stored_(defaults, "PathWhitelistPaths") {
    setPaths({});
    reload();
}

PathWhitelistManager& PathWhitelistManager::sharedManager() {
    static auto* const manager = new PathWhitelistManager(platform::UserDefaults::standard());
    return *manager;
}

const std::vector<std::string>& PathWhitelistManager::builtInPathsList() {
    static const auto* const paths = new std::vector<std::string>{
        "/var/mobile/Library/Caches/com.apple.Maps", "/var/mobile/Library/Caches/MappedImageCache",
        "/var/mobile/Library/Caches/GeoServices"};
    return *paths;
}

std::string PathWhitelistManager::normalizePath(std::string_view path) {
    return std::string(normalized(path));
}

void PathWhitelistManager::setPaths(OrderedStringSet set) {
    for (const std::string& builtIn : builtInPathsList())
        set.add(builtIn);
    PathIndex index(set.strings());
    paths_.set({std::move(set), std::move(index)});
}

void PathWhitelistManager::reload() {
    const std::scoped_lock lock(changing_);
    loadWhitelist();
}

void PathWhitelistManager::loadWhitelist() {
    const auto strings = stored_.read();
    readiness_.set(strings ? Result<>() : std::unexpected(strings.error()));
    if (!strings) return;
    OrderedStringSet set = normalizedSet(*strings);
    const bool hadDuplicates = set.size() < strings->size();
    setPaths(std::move(set));
    // What can't be cleaned up now is read alike next time; the failure is logged.
    if (hadDuplicates) static_cast<void>(saveWhitelist([](OrderedStringSet&) {}));
}

/// Changes the list as it is stored now and takes the outcome into memory; changing_ is held.
Result<> PathWhitelistManager::saveWhitelist(const std::function<void(OrderedStringSet&)>& change) {
    OrderedStringSet changed;
    const auto strings = stored_.update([&](StoredStrings::Strings& stored) {
        changed = normalizedSet(stored);
        change(changed);
        stored = withoutBuiltIns(changed.strings());
    });
    if (!strings) return std::unexpected(strings.error());
    setPaths(std::move(changed));
    readiness_.set({});
    return {};
}

Result<> PathWhitelistManager::addPathToWhitelist(const std::string& path) {
    if (path.empty()) return {};
    const std::string normal = normalizePath(path);
    const std::scoped_lock lock(changing_);
    auto saved = saveWhitelist([&](OrderedStringSet& set) { set.add(normal); });
    if (saved) log("✅ 已添加路径到白名单: {} (标准化: {})", path, normal);
    return saved;
}

Result<> PathWhitelistManager::removePathFromWhitelist(const std::string& path) {
    if (path.empty()) return {};
    const std::string normal = normalizePath(path);
    if (isBuiltInPath(normal)) {
        log("⚠️ 不能删除内置路径: {}", normal);
        return {};
    }
    const std::scoped_lock lock(changing_);
    auto saved = saveWhitelist([&](OrderedStringSet& set) { set.remove(normal); });
    if (saved) log("✅ 已从白名单移除路径: {} (标准化: {})", path, normal);
    return saved;
}

Result<> PathWhitelistManager::clearAllWhitelistedPaths() {
    const std::scoped_lock lock(changing_);
    auto saved = saveWhitelist([](OrderedStringSet& set) { set = OrderedStringSet(); });
    if (saved) log("✅ 已清除所有用户自定义路径白名单（保留内置路径）");
    return saved;
}

bool PathWhitelistManager::isPathInWhitelist(std::string_view path) const {
    if (path.empty()) return false;
    const std::string_view normal = normalized(path);
    const auto paths = paths_.get();
    if (!paths->index.touches(normal)) return false;
    if (platform::logIsWanted()) logMatch(normal, paths->set);
    return true;
}

bool PathWhitelistManager::holdsProtectedPath(std::string_view path) const {
    const std::string_view normal = normalized(path);
    const auto paths = paths_.get();
    return !path.empty() && paths->index.touches(normal) &&
           std::ranges::none_of(paths->set.strings(), [&](const std::string& member) {
               return boundaryPrefixes(normal, member);
           });
}

bool PathWhitelistManager::isFree(const std::string& path) const {
    return !path.empty() && paths_.get()->index.isFree(normalized(path));
}

bool PathWhitelistManager::isBuiltInPath(std::string_view path) {
    return std::ranges::find(builtInPathsList(), normalized(path)) != builtInPathsList().end();
}

std::vector<std::string> PathWhitelistManager::whitelistedPaths() const {
    return paths_.get()->set.strings();
}

std::vector<std::string> PathWhitelistManager::getAllWhitelistedPaths() const {
    std::vector<std::string> all = getBuiltInPaths();
    std::ranges::move(getUserDefinedPaths(), std::back_inserter(all));
    return all;
}

std::vector<std::string> PathWhitelistManager::getBuiltInPaths() {
    return builtInPathsList();
}

std::vector<std::string> PathWhitelistManager::getUserDefinedPaths() const {
    return withoutBuiltIns(whitelistedPaths());
}

std::size_t PathWhitelistManager::getWhitelistCount() const {
    return builtInPathsList().size() + getUserDefinedPaths().size();
}

}  // namespace sweepwright
