#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// What a person on a terminal reads beside the figures, in one place and in whole sentences. Into
/// a pipe and a document nothing of it is written.
namespace sweepwright::cli::wording {

// --- Headings of tables ---

inline constexpr std::string_view kAnswer = "ANSWER";
inline constexpr std::string_view kApp = "APP";
inline constexpr std::string_view kCaches = "CACHES";
inline constexpr std::string_view kCategory = "CATEGORY";
inline constexpr std::string_view kCleans = "CLEANS";
inline constexpr std::string_view kDate = "DATE";
inline constexpr std::string_view kExtension = "EXTENSION";
inline constexpr std::string_view kFolder = "FOLDER";
inline constexpr std::string_view kFreed = "FREED";
inline constexpr std::string_view kGroup = "GROUP";
inline constexpr std::string_view kIdentifier = "IDENTIFIER";
inline constexpr std::string_view kKind = "KIND";
inline constexpr std::string_view kLastClean = "LAST CLEAN";
inline constexpr std::string_view kOrigin = "ORIGIN";
inline constexpr std::string_view kPath = "PATH";
inline constexpr std::string_view kDevice = "DEVICE";
inline constexpr std::string_view kUsed = "USED";
inline constexpr std::string_view kReason = "REASON";
inline constexpr std::string_view kRecord = "RECORD";
inline constexpr std::string_view kResult = "RESULT";
inline constexpr std::string_view kShare = "SHARE";
inline constexpr std::string_view kSize = "SIZE";
inline constexpr std::string_view kSource = "SOURCE";
inline constexpr std::string_view kSpace = "SPACE";
inline constexpr std::string_view kTemporary = "TEMPORARY";
inline constexpr std::string_view kTotal = "TOTAL";
inline constexpr std::string_view kWhat = "WHAT";
inline constexpr std::string_view kWouldFree = "WOULD FREE";

/// In place of a table without rows.
inline constexpr std::string_view kNothing = "(none)";

/// Below a scan.
inline constexpr std::string_view kScanIsNoClean =
    "What cleans would free can differ: sweepctl scan --would-free";

// --- Previews ---

inline constexpr std::string_view kSystemCaches = "caches of the system";
/// Over the largest entries of a category or an app.
std::string partHeading(std::string_view name, std::uint64_t bytes, std::size_t entries);
/// In place of entries that are not shown.
std::string moreEntries(std::size_t count);
/// In place of apps that are not shown.
std::string moreApps(std::size_t count, std::uint64_t bytes);
/// Over what a clean leaves alone.
std::string keptHeading(std::size_t entries);

// --- What a figure is about ---

inline constexpr std::string_view kStatsHistory =
    "history: the cleans that are still in the history, which holds the newest 100.";
inline constexpr std::string_view kStatsRunning =
    "running: all cleans ever recorded, also those that are no longer in the history.";

inline constexpr std::string_view kAboutBundles =
    "Installed apps by the size of what was installed. For the sizes of their caches: sweepctl "
    "apps";
std::string aboutLargeFiles(std::uint64_t minSize);
inline constexpr std::string_view kAboutDuplicates =
    "Files of equal size, a group each. Their contents are not compared.";
inline constexpr std::string_view kAboutExtensions = "Files by the ends of their names.";
inline constexpr std::string_view kAboutUsage = "Folders by what they hold, hidden entries aside.";
/// Where an analysis looked: in two of the folders of the home directory, in three, elsewhere.
std::string inOwnFiles(std::string_view home);
std::string inOwnFolders(std::string_view home);
std::string inFolder(std::string_view folder);
inline constexpr std::string_view kWholeDevice = "For the whole device add: --folder /";

}  // namespace sweepwright::cli::wording
