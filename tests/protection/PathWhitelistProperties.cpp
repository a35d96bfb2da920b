#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "platform/log/Log.h"
#include "protection/PathIndex.h"
#include "protection/PathWhitelistManager.h"
#include "protection/StoredDefaults.h"

namespace sweepwright {
namespace {

using test::kPathsKey;
using test::Strings;

std::string normalized(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

bool boundaryPrefix(const std::string& a, const std::string& b) {
    if (a.compare(0, b.size(), b) != 0) return false;
    return a.size() == b.size() || a[b.size()] == '/';
}

/// The rules one by one: the line that the first matching one logs, or none. `members` is what the
/// set holds, in its order.
std::optional<std::string> lineOf(const std::string& path, const Strings& members) {
    if (path.empty()) return std::nullopt;
    const std::string p = normalized(path);
    for (const std::string& builtIn : PathWhitelistManager::builtInPathsList()) {
        const std::string b = normalized(builtIn);
        if (p == b) return "🔒 白名单内置路径匹配: " + p + " == " + b;
        if (boundaryPrefix(p, b)) {
            return "🔒 白名单内置路径子路径匹配: " + p + " 是 " + b + " 的子路径";
        }
        if (boundaryPrefix(b, p)) {
            return "🔒 白名单内置路径父路径匹配: " + p + " 包含内置路径 " + b;
        }
    }
    if (std::ranges::find(members, p) != members.end()) return "🔒 白名单精确匹配: " + p;
    for (const std::string& member : members) {
        const std::string w = normalized(member);
        if (p == w) return "🔒 白名单标准化匹配: " + p + " == " + w;
        if (boundaryPrefix(p, w)) return "🔒 白名单子路径匹配: " + p + " 是 " + w + " 的子路径";
        if (boundaryPrefix(w, p)) return "🔒 白名单父路径匹配: " + p + " 包含白名单路径 " + w;
    }
    return std::nullopt;
}

/// Few names, so that paths meet; with empty parts, relative paths and trailing slashes.
rc::Gen<std::string> anyPath() {
    const auto part = rc::gen::element<std::string>("a", "b", "ab", "", "var", "mobile", "Library",
                                                    "Caches", "com.apple.Maps", "\xFF");
    const auto parts = rc::gen::resize(6, rc::gen::container<std::vector<std::string>>(part));
    return rc::gen::map(
        rc::gen::pair(rc::gen::element<std::string>("/", "/", "/", "", "//"), parts),
        [](const std::pair<std::string, std::vector<std::string>>& made) {
            std::string path = made.first;
            for (const std::string& name : made.second)
                path += name + "/";
            if (path.size() % 3 != 0 && path.size() > 1) path.pop_back();
            return path;
        });
}

rc::Gen<std::string> anyPathNearBuiltIns() {
    return rc::gen::oneOf(
        anyPath(),
        rc::gen::map(anyPath(),
                     [](const std::string& tail) {
                         return "/var/mobile/Library/Caches/GeoServices" + tail;
                     }),
        rc::gen::element<std::string>("", "/", "/var", "/var/mobile", "/var/mobile/Library/Caches",
                                      "/var/mobile/Library/Caches/MappedImageCache",
                                      "/var/mobile/Library/Caches/com.apple.MapsExtra"));
}

RC_GTEST_PROP(PathWhitelistProperty, AnswersAndLogsAsTheRulesOneByOne, ()) {
    static test::StoredDefaults stored;
    static PathWhitelistManager manager(stored.defaults);
    const auto list = *rc::gen::container<Strings>(anyPathNearBuiltIns());
    stored.store(kPathsKey, list);
    manager.reload();

    Strings members;
    for (const std::string& path : list) {
        if (std::ranges::find(members, normalized(path)) == members.end()) {
            members.push_back(normalized(path));
        }
    }
    for (const auto& path : *rc::gen::container<Strings>(anyPathNearBuiltIns())) {
        const auto wanted = lineOf(path, members);
        RC_ASSERT(manager.isPathInWhitelist(path) == wanted.has_value());
        const platform::LogCapture log;
        RC_ASSERT(manager.isPathInWhitelist(path) == wanted.has_value());
        RC_ASSERT(log.lines() == (wanted ? Strings{*wanted} : Strings{}));
    }
}

// The way a walk names what it finds.
std::string entryOf(const std::string& directory, const std::string& name) {
    return directory.ends_with('/') ? directory + name : directory + "/" + name;
}

RC_GTEST_PROP(PathWhitelistProperty, NothingInAFreePathIsProtected, ()) {
    const auto list = *rc::gen::container<Strings>(anyPath());
    Strings members;
    for (const std::string& path : list)
        members.push_back(normalized(path));
    const PathIndex index(members);
    const std::string directory = *rc::gen::nonEmpty(anyPath());
    const auto names = *rc::gen::nonEmpty(rc::gen::container<Strings>(
        rc::gen::element<std::string>("a", "b", "ab", "var", "mobile", "\xFF")));

    const bool isFree = index.isFree(normalized(directory));
    RC_CLASSIFY(isFree);
    if (!isFree) return;
    RC_ASSERT(!index.touches(normalized(directory)));
    std::string path = directory;
    for (const std::string& name : names) {
        path = entryOf(path, name);
        RC_ASSERT(!index.touches(normalized(path)));
    }
}

RC_GTEST_PROP(PathWhitelistProperty, APathIsFreeUnlessSomethingInAtOrAboveItIsAMember, ()) {
    const auto list = *rc::gen::container<Strings>(anyPath());
    Strings members;
    for (const std::string& path : list)
        members.push_back(normalized(path));
    const std::string path = normalized(*rc::gen::nonEmpty(anyPath()));
    RC_PRE(path != "/");
    const bool touched = std::ranges::any_of(members, [&](const std::string& member) {
        return boundaryPrefix(path, member) || boundaryPrefix(member, path);
    });
    RC_ASSERT(PathIndex(members).isFree(path) == !touched);
}

}  // namespace
}  // namespace sweepwright
