#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/CleanObserver.h"
#include "engine/Eraser.h"
#include "engine/StorageAnalyzer.h"
#include "platform/device/Device.h"
#include "platform/files/FileManager.h"
#include "platform/queue/DispatchQueue.h"
#include "platform/queue/NotificationCenter.h"
#include "platform/queue/ProgressThrottle.h"
#include "platform/tree/TreeWalker.h"
#include "protection/CleanHistoryManager.h"
#include "protection/CleanLock.h"
#include "protection/CleanStatistics.h"
#include "protection/CleanType.h"
#include "protection/CustomPathManager.h"
#include "protection/PathWhitelistManager.h"

namespace sweepwright {

class EntryInQuestion;
class LinkProtection;
struct ProtectedPlaces;

/// What a scan found, in bytes. Custom paths are counted twice in `cacheSize` and so in the total.
struct ScanResult {
    std::uint64_t cacheSize = 0;
    std::uint64_t tempSize = 0;
    std::uint64_t cookieSize = 0;
    std::uint64_t logSize = 0;
    std::uint64_t downloadsSize = 0;
    std::uint64_t imageCacheSize = 0;
    std::uint64_t databaseSize = 0;
    std::uint64_t crashReportsSize = 0;
    std::uint64_t offlineDataSize = 0;
    std::uint64_t totalSize = 0;

    /// The ten figures under their names, in the order above.
    [[nodiscard]] std::vector<std::pair<std::string, std::uint64_t>> entries() const;
    bool operator==(const ScanResult&) const = default;
};

/// An entry of the cache list.
struct CacheEntry {
    std::string path;
    std::uint64_t size = 0;  ///< bytes, never 0
    bool operator==(const CacheEntry&) const = default;
};

/// An installed bundle's container.
struct AppEntry {
    std::string name;
    std::uint64_t size = 0;  ///< bytes
    std::string path;
};

struct LargeFileEntry {
    std::string path;
    std::string name;
    std::uint64_t size = 0;  ///< bytes
    std::chrono::system_clock::time_point modifiedDate;
};

struct DuplicateEntry {
    std::string path;
    std::string name;
    std::uint64_t size = 0;  ///< bytes
};

/// Bytes by lower-cased extension; files without one stand under "(no extension)".
using ExtensionSizes = std::map<std::string, std::uint64_t>;

struct ExtensionAnalysis {
    ExtensionSizes byExtension;
    std::uint64_t totalAnalyzed = 0;  ///< bytes, the sum of all
};

/// What the engine works with. All must outlive it.
struct EngineServices {
    const platform::Device& device;
    platform::FileManager& files;
    Eraser& eraser;
    PathWhitelistManager& pathWhitelist;
    CustomPathManager& customPaths;
    CleanHistoryManager& history;
    CleanStatistics& statistics;
    StorageAnalyzer& storage;
    platform::NotificationCenter& notifications;
    platform::MainQueue& mainQueue;
    /// What time it is.
    std::function<std::chrono::system_clock::time_point()> now = std::chrono::system_clock::now;
    /// Keeps other processes from cleaning at the same time; none in a preview, which cleans
    /// nothing.
    CleanLock* lock = nullptr;

    /// The shared ones, on Device::current().
    static EngineServices shared();

    /// The same over another view of the device's files, for what changes nothing: without the
    /// lock.
    [[nodiscard]] EngineServices over(platform::FileManager& view, Eraser& viewEraser) const;
};

/// Measures, lists and cleans the nine categories.
///
/// The entry points that take a completion return at once; their work runs on one serial queue, a
/// job after the other, and progress and completion arrive on the main queue. Everything else is
/// synchronous on the caller's thread. Sizes are bytes.
class FileCleanerEngine {
  public:
    using Error = platform::Error;
    /// Name of the item just handled, and how much is done (0 to 1).
    using Progress = std::function<void(const std::string& item, double fraction)>;
    using Completion = std::function<void(bool success, std::uint64_t cleanedBytes,
                                          const std::optional<Error>& error)>;
    using ScanCompletion = std::function<void(const ScanResult&)>;
    using ErrorSlot = std::optional<Error>;

    static constexpr std::string_view kErrorDomain = "FileCleanerEngine";
    static constexpr std::size_t kMaxListedPaths = 50;
    static constexpr std::size_t kMaxLargeFiles = 100;
    /// A side file changed less than this many seconds ago may be in use.
    static constexpr double kRecentSeconds = 300.0;

    explicit FileCleanerEngine(const EngineServices& services);
    virtual ~FileCleanerEngine();
    FileCleanerEngine(const FileCleanerEngine&) = delete;
    FileCleanerEngine& operator=(const FileCleanerEngine&) = delete;

    /// The process's one engine, made on first use for Device::current().
    static FileCleanerEngine& sharedEngine();

    // --- Frame ---

    /// Scans everything; `completion` gets the result on the main queue.
    void scanWithCompletion(ScanCompletion completion);
    /// The scan itself, on the caller's thread. `onStep` hears, before each of the ten getters, its
    /// key and how many are done.
    ScanResult scan(const std::function<void(std::string_view key, int done)>& onStep = {});

    /// Cleans one category, or all nine for CleanType::All. Other values succeed with 0 bytes. When
    /// a protection list can't be read, or another process cleans, nothing is cleaned and the
    /// completion gets the error. An `observer` hears of this clean in place of the engine's own,
    /// until the completion.
    void cleanWithType(CleanType type, Progress progress, Completion completion,
                       std::shared_ptr<CleanObserver> observer = {});

    /// The body of a clean on the caller's thread, without statistics, history or notification. Not
    /// while a clean asked for above runs.
    std::uint64_t cleanNow(CleanType type, const Progress& progress, ErrorSlot& error);

    /// Reads the protection lists afresh; the error when one can't be read and a clean must refuse.
    [[nodiscard]] platform::Result<> readiness() const;

    /// Ends the running clean after the entry in hand; what was freed is counted and reported. A
    /// clean that still waits ends before its first entry. Cleans asked for later are not affected.
    /// Thread-safe.
    void stop() { stoppedUpTo_ = lastAsked_.load(); }

    /// Display name of values 0 to 9; none for any other, ThirdPartyApps included.
    [[nodiscard]] static std::optional<std::string> cleanTypeNameForType(CleanType type);

    platform::Result<> saveCleanStatistics(std::uint64_t bytes);

    /// Sum of the nine category sizes; custom paths count once here, twice in a scan.
    std::uint64_t getTotalCleanableSize();

    std::optional<DeviceStorageInfo> getStorageInfo();

    /// Whether `path` is a directory that can be listed.
    bool isPathAccessible(const std::string& path);
    bool isPathWritable(const std::string& path);
    /// A directory's measured size, a file's size; 0 when missing or unreadable.
    std::uint64_t getFileSizeAtPath(const std::string& path);
    [[nodiscard]] virtual bool isPathInWhitelist(const std::string& path) const;

    // --- Sizes ---

    std::uint64_t getCacheSize();
    std::uint64_t getSystemCacheSize();
    std::uint64_t getTempFilesSize();
    std::uint64_t getCookiesSize();
    std::uint64_t getSystemLogsSize();
    std::uint64_t getDownloadsSize();
    std::uint64_t getImageCacheSize();
    std::uint64_t getDatabaseFilesSize();
    std::uint64_t getCrashReportsSize();
    std::uint64_t getOfflineDataSize();
    std::uint64_t getCustomPathsSize();

    /// Bytes of visible, unprotected files beneath `path`; links are not followed, and a plain file
    /// as `path` measures 0.
    std::uint64_t sizeOfDirectoryAtPath(const std::string& path,
                                        int maxDepth = platform::kDefaultMaxDepth);

    // --- Lists ---

    std::vector<CacheEntry> getCacheFileList();
    std::vector<std::string> getTempFileList();
    std::vector<std::string> getCookieFileList();
    std::vector<std::string> getSystemLogFileList();
    std::vector<std::string> getDownloadsFileList();
    std::vector<std::string> getImageCacheFileList();
    std::vector<std::string> getDatabaseFileList();
    std::vector<std::string> getCrashReportFileList();

    /// Appends paths of files beneath `directory` to `paths` until it holds `maxCount`. Links are
    /// followed; a directory already on the way down is not entered again.
    void collectFilesInDirectory(const std::string& directory, std::vector<std::string>& paths,
                                 std::size_t maxCount, int maxDepth = platform::kDefaultMaxDepth);

    // --- Cleaners: bytes freed. The error slot is accepted and never written. ---

    virtual std::uint64_t cleanCacheWithProgress(const Progress& progress, ErrorSlot& error);
    virtual std::uint64_t cleanTempFilesWithProgress(const Progress& progress, ErrorSlot& error);
    virtual std::uint64_t cleanCookiesWithProgress(const Progress& progress, ErrorSlot& error);
    virtual std::uint64_t cleanSystemLogsWithProgress(const Progress& progress, ErrorSlot& error);
    virtual std::uint64_t cleanDownloadsWithProgress(const Progress& progress, ErrorSlot& error);
    virtual std::uint64_t cleanImageCacheWithProgress(const Progress& progress, ErrorSlot& error);
    virtual std::uint64_t cleanDatabaseFilesWithProgress(const Progress& progress,
                                                         ErrorSlot& error);
    virtual std::uint64_t cleanCrashReportsWithProgress(const Progress& progress, ErrorSlot& error);
    virtual std::uint64_t cleanOfflineDataWithProgress(const Progress& progress, ErrorSlot& error);

    /// Removes what may go of the entries of `directory`, never the directory itself: whitelisted
    /// and hidden entries, links, databases, the caches of Maps and the user defaults, which hold
    /// the protection lists, stay; system locations are emptied by the shell. A directory that is
    /// itself a link is left alone, and one on which something is mounted with Mounts::Refuse.
    /// Bytes freed.
    std::uint64_t removeContentsOfDirectory(const std::string& directory, const Progress& progress,
                                            platform::Mounts mounts = platform::Mounts::Cross);

    [[nodiscard]] static bool isMapsAppPath(std::string_view path);
    [[nodiscard]] static bool isSQLiteDatabaseFile(std::string_view path);

    // --- Shell removal ---

    [[nodiscard]] static bool isSystemPath(std::string_view path);
    /// Empties a system directory by a shell command, measures what went, and falls back to the
    /// file manager where the shell could not run. Bytes freed.
    std::uint64_t removeSystemPathWithSystemCommand(
        const std::string& directory, platform::Mounts mounts = platform::Mounts::Cross);

    // --- Deep clean ---

    /// Sweeps the system's caches; nothing is recorded. `completion` on the main queue.
    void deepCleanWithCompletion(Completion completion);
    /// The body of a deep clean on the caller's thread.
    std::uint64_t deepCleanNow(ErrorSlot& error);

    // --- Analyses: read-only. Links are followed; a directory already on the way down is not
    // entered again. ---

    std::vector<AppEntry> getInstalledAppsWithStorage();
    /// At most 100, largest first, of the documents and, where they leave room, the caches.
    std::vector<LargeFileEntry> findLargeFilesWithMinSize(std::uint64_t minSize);
    void findLargeFilesInDirectory(const std::string& directory, std::uint64_t minSize,
                                   std::vector<LargeFileEntry>& results, std::size_t maxCount,
                                   int maxDepth = platform::kDefaultMaxDepth);
    /// Groups of two or more files of equal size: candidates, contents are not compared.
    std::vector<std::vector<DuplicateEntry>> findDuplicateFiles();
    using FilesBySize = std::map<std::uint64_t, std::vector<DuplicateEntry>>;
    void collectFilesForDuplicateCheck(const std::string& directory, FilesBySize& bySize,
                                       int maxDepth = platform::kDefaultMaxDepth);
    [[nodiscard]] static std::vector<std::vector<DuplicateEntry>> duplicatesAmong(
        FilesBySize bySize);
    ExtensionAnalysis analyzeStorageByCategory();
    void analyzeDirectory(const std::string& directory, ExtensionSizes& categories,
                          int maxDepth = platform::kDefaultMaxDepth);
    [[nodiscard]] static std::uint64_t calculateTotalSize(const ExtensionSizes& categories);

    /// Who hears of every decision of the cleans to come and of what can't be read while sizes are
    /// measured and lists made; none by default. Not while any of that runs.
    void setObserver(CleanObserver* observer) { observer_ = observer; }

  private:
    using NameRule = bool (*)(std::string_view name);
    using CleanNumber = std::uint64_t;
    struct Emptying;
    class FolderEntry;
    class Location;
    class VisibleNames;
    static constexpr CleanNumber kNoClean = std::numeric_limits<CleanNumber>::max();

    // Paths and small questions.
    [[nodiscard]] std::string home(std::string_view relative) const;
    bool exists(const std::string& path) { return exists(path, observer_); }
    bool exists(const std::string& path, CleanObserver* observer);
    std::vector<std::string> entriesOf(const std::string& directory);
    [[nodiscard]] platform::WalkRules walkRules(int maxDepth, CleanObserver* observer) const;
    void noteUnreadable(const std::string& path, const Error& error, CleanObserver* observer);
    std::uint64_t fileSize(const std::string& path, CleanObserver* observer);
    /// Sum of the walker's sizes of the entries that `rule` picks.
    std::uint64_t sizeOfEntries(const std::string& directory, NameRule rule);
    std::uint64_t sizeIfPresent(const std::string& path);
    void collectEntries(const std::string& directory, NameRule rule,
                        std::vector<std::string>& paths);
    /// What of a category the table of categories tells all about.
    std::uint64_t sizeOfPlaces(CleanType type);
    std::vector<std::string> filesInPlaces(CleanType type);
    std::uint64_t cleanPlaces(CleanType type, const Progress& progress);

    // Cleaning.
    bool isStopped() const { return stoppedUpTo_ >= running_; }
    /// Who hears of the clean in hand; on its thread.
    CleanObserver* cleanObserver() const {
        return cleanObserver_ ? cleanObserver_.get() : observer_;
    }
    // As exists(), sizeOfDirectoryAtPath() and walkRules(), but the clean's observer hears of it.
    bool existsToClean(const std::string& path) { return exists(path, cleanObserver()); }
    std::uint64_t sizeToClean(const std::string& directory);
    [[nodiscard]] platform::WalkRules cleanRules() const {
        return walkRules(platform::kDefaultMaxDepth, cleanObserver());
    }
    /// What a clean holds while it may change the device; an error when it must not start.
    platform::Result<std::optional<CleanLock::Share>> admission();
    /// Runs `body` as the clean of that number, which a stop ends and whose progress is thinned.
    std::uint64_t runClean(CleanNumber number, const Progress& progress,
                           const std::function<std::uint64_t()>& body);
    std::uint64_t cleanCategories(CleanType type, const Progress& progress, ErrorSlot& error);
    std::uint64_t sweep(ErrorSlot& error);
    void recordClean(CleanType type, std::uint64_t cleaned);
    void postCompletion(Completion completion, std::uint64_t cleaned, ErrorSlot error);
    void noteRemoved(const std::string& path, std::uint64_t bytes);
    void noteKept(const std::string& path, KeptReason reason, const std::string& by = {});
    /// What was to go stays, unless another has removed it.
    void noteFailed(const std::string& path, const Error& error);
    void noteProtected(const std::string& path);
    void noteMountPoints(const platform::Removal& removal);
    std::shared_ptr<const ProtectedPlaces> findProtectedPlaces();
    LinkProtection protectionOf(const platform::Directory& directory);
    /// The names in a location to be cleaned; none in one that is itself a link.
    std::vector<std::string> cleanableEntriesOf(const std::string& directory);
    std::optional<platform::Directory> openToEmpty(const std::string& directory,
                                                   platform::Mounts mounts);
    /// Folders that can't be removed whole are entered so far down: as many levels as a path of
    /// 1,024 bytes can name, the longest that a device takes.
    static constexpr int kMostLevels = 512;
    std::uint64_t removeEntriesOf(platform::Directory& directory, const Progress& progress,
                                  int levels = kMostLevels);
    /// Attributes of an entry, asked for a second way before it counts as one that tells none.
    platform::Result<platform::FileAttributes> attributesOf(const platform::Directory& directory,
                                                            const std::string& name);
    /// The first reason of `asked` for which an entry of a folder stays, if any. Asked on several
    /// threads at once on a far device.
    std::optional<KeptReason> reasonToKeep(const platform::Directory& directory,
                                           const LinkProtection& protection,
                                           const std::string& name,
                                           std::span<const KeptReason> asked);
    /// Whether the entry must stay, for the first reason of `asked`; the observer hears of it.
    bool keeps(const EntryInQuestion& entry, std::span<const KeptReason> asked);
    bool keepsEntry(const platform::Directory& directory, const LinkProtection& protection,
                    const std::string& name, std::span<const KeptReason> asked);
    bool keepsLocation(const std::string& path, std::span<const KeptReason> asked);
    void noteKeptEntry(const std::string& path, KeptReason reason);
    /// Tells what became of an entry, and removes what it can of one that stayed. Bytes freed.
    std::uint64_t accountFor(const platform::Directory& directory, const std::string& name,
                             const platform::Removal& removal, int levels);
    void keepMaps(const std::string& path);
    std::uint64_t cleanEntries(const std::string& directory, NameRule rule,
                               const Progress& progress);
    std::uint64_t cleanIfPresent(const std::string& path, const Progress& progress);
    /// Cleans a location that exists, is not whitelisted and measures more than 0.
    std::optional<Emptying> cleanMeasured(const std::string& path, const Progress& progress,
                                          platform::Mounts mounts = platform::Mounts::Cross);
    std::uint64_t cleanSupportCaches(const Progress& progress);
    std::uint64_t cleanSystemCaches(const Progress& progress);
    std::uint64_t cleanSharedCache(const std::string& name, const Progress& progress);
    std::uint64_t cleanCustomPaths(const Progress& progress);
    std::uint64_t cleanSystemSafari(const Progress& progress);
    bool isInUse(const platform::Directory& library, const std::string& name,
                 const platform::FileAttributes& attributes);
    bool isRemovableSideFile(const platform::Directory& library, const LinkProtection& protection,
                             const std::string& name);

    // Shell removal.
    std::int32_t emptyByShell(const platform::Directory& directory, const std::string& hostFolder);
    /// What a run counts for that did not change the measured size.
    std::uint64_t accountUnmeasured(const std::string& directory, std::uint64_t before,
                                    std::uint64_t after, std::int32_t status,
                                    const VisibleNames& namesBefore);
    std::uint64_t removeVisibleEntries(const platform::Directory& directory,
                                       const std::vector<std::string>& names);
    /// Tells of the entries that the shell was to remove and left.
    void noteLeft(const std::string& directory, const VisibleNames& before);

    // Deep clean: each adds what it freed, so that the total stands when one is interrupted.
    void sweepSystemCache(std::string_view at, std::string_view name, std::uint64_t& total);
    void sweepCacheDelete(std::uint64_t& total);
    void sweepSafari(std::string_view at, std::uint64_t& total);
    std::optional<platform::Removal> removeLocation(const std::string& path);
    void sweepSharedCaches(std::uint64_t& total);

    EngineServices services_;
    platform::TreeWalker walker_;
    CleanObserver* observer_ = nullptr;
    std::shared_ptr<CleanObserver> cleanObserver_;  // of the clean that runs, if it has its own
    // Cleans are numbered as they are asked for, so that a stop knows which it is about.
    std::atomic<CleanNumber> lastAsked_{0};
    std::atomic<CleanNumber> stoppedUpTo_{0};
    std::atomic<CleanNumber> running_{kNoClean};
    // Of the clean that runs; none while none does.
    std::unique_ptr<platform::ProgressThrottle> throttle_;
    std::shared_ptr<const ProtectedPlaces> protectedPlaces_;
    std::unique_ptr<platform::DispatchQueue> cleanQueue_;
};

}  // namespace sweepwright
