#include "engine/CategoryRules.h"

#include <algorithm>
#include <string>

#include "platform/files/FileManager.h"

namespace sweepwright::rules {

namespace {

using platform::lastPathComponent;
using platform::lowerCased;
using platform::pathExtension;
using std::string_view_literals::operator""sv;

bool containsAny(std::string_view text, std::initializer_list<std::string_view> parts) {
    return std::ranges::any_of(parts, [&](std::string_view part) { return text.contains(part); });
}

bool equalsAny(std::string_view text, std::initializer_list<std::string_view> others) {
    return std::ranges::find(others, text) != others.end();
}

bool endsWithAny(std::string_view text, std::initializer_list<std::string_view> ends) {
    return std::ranges::any_of(ends, [&](std::string_view end) { return text.ends_with(end); });
}

}  // namespace

bool isTemporaryData(std::string_view name) {
    return containsAny(lowerCased(name), {"cache", "tmp", "temp"});
}

bool isSharedCache(std::string_view name) {
    return name.starts_with("com.apple."sv) || containsAny(name, {"cache", "Cache"});
}

bool isWebCache(std::string_view name) {
    return containsAny(lowerCased(name), {"webkit", "com.apple.webkit", "website", "cookie"});
}

bool isWebData(std::string_view name) {
    return containsAny(lowerCased(name),
                       {"webkit", "website", "cookie", "localstorage", "indexeddb"});
}

bool isSafariData(std::string_view name) {
    const std::string lower = lowerCased(name);
    if (equalsAny(lower, {"bookmarks.plist", "history.plist", "history.db"})) return false;
    if (name.ends_with(".plist"sv) && !lower.contains("cache")) return false;
    return containsAny(lower,
                       {"cache", "webkit", "localstorage", "cookies", "website", "fscacheddata"}) ||
           endsWithAny(name, {"-wal", "-shm"});
}

bool isImageCache(std::string_view name) {
    return containsAny(name, {"ImageCache", "SDWebImage", "Kingfisher", "Images"});
}

bool isDatabase(std::string_view name) {
    return equalsAny(pathExtension(name), {"db", "sqlite", "sqlite3", "realm"});
}

bool isDatabaseSideFile(std::string_view name) {
    return endsWithAny(name, {"-wal", "-shm", ".db-journal"});
}

bool isOfflineData(std::string_view name) {
    return containsAny(name, {"Offline", "offline", "LocalData"});
}

bool isSystemPath(std::string_view path) {
    constexpr std::array kPrefixes = {
        "/var/db/diagnostics/"sv, "/var/mobile/Library/Caches/com.apple."sv,
        "/var/mobile/Library/Safari/"sv, "/var/MobileAsset/"sv, "/var/db/uuidtext"sv};
    return std::ranges::any_of(kPrefixes,
                               [&](std::string_view prefix) { return path.starts_with(prefix); });
}

bool isMapsAppPath(std::string_view path) {
    return containsAny(path, {"com.apple.Maps", "MappedImageCache"});
}

bool isSQLiteDatabaseFile(std::string_view path) {
    const std::string_view name = lastPathComponent(path);
    return equalsAny(lowerCased(pathExtension(name)), {"db", "sqlite", "sqlite3", "realm"}) ||
           endsWithAny(name, {"-wal", "-shm", ".db-wal", ".db-shm", ".db-journal", ".sqlite-wal",
                              ".sqlite-shm", ".sqlite-journal", ".sqlite3-wal", ".sqlite3-shm",
                              ".sqlite3-journal"});
}

}  // namespace sweepwright::rules
