#pragma once

#include <array>
#include <string_view>

/// Which names belong to the clean categories, and the places of the system: the one place that
/// measuring, listing and cleaning share.
namespace sweepwright::rules {

inline constexpr std::string_view kSharedCaches = "/var/mobile/Library/Caches";
inline constexpr std::string_view kSpringBoardCache =
    "/var/mobile/Library/Caches/com.apple.springboard";
inline constexpr std::string_view kCacheDeleteCache =
    "/var/mobile/Library/Caches/com.apple.cache_delete";
inline constexpr std::string_view kMobileAssets = "/var/MobileAsset/AssetsV2";
inline constexpr std::string_view kUuidText = "/var/db/uuidtext";
inline constexpr std::string_view kInstalledBundles = "/var/containers/Bundle/Application";

/// Safari's caches of the system.
inline constexpr std::array<std::string_view, 3> kSafariCaches = {
    "/var/mobile/Library/Caches/com.apple.mobilesafari",
    "/var/mobile/Library/Safari/WebKitCache",
    "/var/mobile/Library/Safari/fsCachedData",
};

/// A fixed system cache beside Safari's, and what it is called in the log.
struct SystemCache {
    std::string_view path;
    std::string_view name;
};
inline constexpr std::array<SystemCache, 4> kSystemCaches = {{
    {kSpringBoardCache, "SpringBoard"},
    {kCacheDeleteCache, "cache_delete"},
    {kMobileAssets, "MobileAsset"},
    {kUuidText, "uuidtext"},
}};

inline constexpr std::array<std::string_view, 3> kDiagnostics = {
    "/var/db/diagnostics/Persist",
    "/var/db/diagnostics/Signpost",
    "/var/db/diagnostics/Special",
};

/// The app's own cache folder carries this in its name and is never cleaned.
inline constexpr std::string_view kProductName = "Sweepwright";

/// Application support: temporary data, letter case aside.
bool isTemporaryData(std::string_view name);
/// Shared caches folder: caches of the system and of others.
bool isSharedCache(std::string_view name);
/// Caches directory: web caches, letter case aside.
bool isWebCache(std::string_view name);
/// Application support: web data, letter case aside.
bool isWebData(std::string_view name);
/// The home's Safari folder: what may go; bookmarks, history and settings stay.
bool isSafariData(std::string_view name);
/// Caches directory: image caches of the usual libraries.
bool isImageCache(std::string_view name);
/// Library directory: a database by its exact extension.
bool isDatabase(std::string_view name);
/// Library directory: a side file that a database left.
bool isDatabaseSideFile(std::string_view name);
/// Application support: data for use without a network.
bool isOfflineData(std::string_view name);

/// Whether a shell command empties this directory, not the file manager: plain prefixes, so that
/// "/var/db/uuidtextX" is one and "/var/db/diagnostics" is none.
bool isSystemPath(std::string_view path);
/// The Maps app's caches, wherever they lie.
bool isMapsAppPath(std::string_view path);
/// A database, or a side file of one, by its name.
bool isSQLiteDatabaseFile(std::string_view path);

}  // namespace sweepwright::rules
