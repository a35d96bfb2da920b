#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <vector>

#include "apps/AppCacheInfo.h"
#include "apps/ContainerIndex.h"
#include "apps/HiddenRoots.h"
#include "engine/CleanObserver.h"
#include "engine/Eraser.h"
#include "platform/device/Device.h"
#include "platform/files/FileManager.h"
#include "platform/queue/DispatchQueue.h"
#include "platform/queue/NotificationCenter.h"
#include "platform/queue/ProgressThrottle.h"
#include "platform/system/ApplicationWorkspace.h"
#include "platform/system/ResourceBundle.h"
#include "platform/tree/TreeWalker.h"
#include "protection/AppWhitelistManager.h"
#include "protection/CleanHistoryManager.h"
#include "protection/CleanLock.h"
#include "protection/CleanStatistics.h"
#include "protection/PathWhitelistManager.h"

namespace sweepwright {

class BundleIndex;

/// What the app manager works with. All must outlive it.
struct AppServices {
    const platform::Device& device;
    platform::FileManager& files;
    Eraser& eraser;
    platform::ApplicationWorkspace& workspace;
    const platform::ResourceBundle& resources;
    AppWhitelistManager& appWhitelist;
    PathWhitelistManager& pathWhitelist;
    CleanHistoryManager& history;
    CleanStatistics& statistics;
    platform::NotificationCenter& notifications;
    platform::MainQueue& mainQueue;
    /// Keeps other processes from cleaning at the same time; none in a preview.
    CleanLock* lock = nullptr;

    /// The shared ones, on Device::current().
    static AppServices shared();
};

/// Knows the installed apps, sizes their caches and cleans them. Of an app only caches, temporary
/// files and WebKit data are ever touched.
///
/// Entry points with a completion return at once; their work runs on a concurrent queue, progress
/// and completion arrive on the main queue. Everything else is synchronous on the caller's thread.
class ThirdPartyAppCacheManager {
  public:
    using Error = platform::Error;
    using AppList = std::vector<AppCacheInfo>;
    using ListCompletion = std::function<void(const AppList&)>;
    using InfoCompletion = std::function<void(const std::optional<AppCacheInfo>&)>;
    /// Name of the item, and how much is done (0 to 1).
    using Progress = std::function<void(const std::string& name, double fraction)>;
    using Completion = std::function<void(bool success, std::uint64_t cleanedBytes,
                                          const std::optional<Error>& error)>;

    static constexpr std::string_view kErrorDomain = "ThirdPartyAppCacheManager";
    static constexpr std::int64_t kNoDataDirectory = -1;
    static constexpr std::int64_t kInterrupted = -2;
    /// With this many apps from the workspace service, a phone's containers are not walked.
    static constexpr std::size_t kEnoughApps = 5;

    explicit ThirdPartyAppCacheManager(const AppServices& services);
    ~ThirdPartyAppCacheManager();
    ThirdPartyAppCacheManager(const ThirdPartyAppCacheManager&) = delete;
    ThirdPartyAppCacheManager& operator=(const ThirdPartyAppCacheManager&) = delete;

    /// The process's one manager, made on first use for Device::current().
    static ThirdPartyAppCacheManager& sharedManager();

    // --- Discovery ---

    /// Every app, sized, largest first; also kept as the list that the counts below read.
    void scanAllAppsWithCompletion(ListCompletion completion, Progress progress = {});
    /// The same without the system apps.
    void scanThirdPartyAppsWithCompletion(ListCompletion completion, Progress progress = {});
    /// The scan itself, on the caller's thread. `progress` hears of each app sized, on any thread.
    AppList scanNow(const Progress& progress = {});

    /// The record of an app by the service's proxy, sized; an error is the service's exception.
    platform::Result<AppCacheInfo> extractAppInfoFromProxy(platform::ApplicationProxy& proxy);
    [[nodiscard]] static bool isSystemApp(const std::optional<std::string>& bundleIdentifier,
                                          const std::optional<std::string>& bundlePath);
    /// Appends the apps that the containers hold and `apps` does not yet.
    void scanAppDirectoriesIntoArray(AppList& apps, const Progress& progress = {});
    /// The picture of an app: by the service's proxy (or nullptr), by its bundle, or our own.
    std::optional<AppIcon> extractAppIconFromProxy(platform::ApplicationProxy* proxy,
                                                   const std::optional<std::string>& bundlePath);

    /// Of the last full scan; 0 before it. No scan is started.
    [[nodiscard]] std::size_t getInstalledAppCount() const;
    [[nodiscard]] std::size_t getThirdPartyAppCount() const;
    [[nodiscard]] std::uint64_t getTotalThirdPartyAppCacheSize() const;
    /// Whether the device's data containers are in sight.
    bool hasPrivateAPIAccess();

    /// Whether an installed app or a data container has this identifier.
    bool isInstalled(const std::string& bundleIdentifier);
    /// Every identifier that an installed app or a data container has, sorted. Nothing is measured.
    std::vector<std::string> installedIdentifiers();

    void refreshAppListCache();
    void invalidateAllCache();
    void invalidateCacheForApp(const std::string& bundleIdentifier);

    // --- Sizing ---

    /// Fills the three sizes; a record without a data path is left as it is.
    void calculateCacheSizeForAppInfo(AppCacheInfo& info);
    /// The record of one app; at once when it is known, else on the main queue. None when the app
    /// has no data container.
    void getCacheInfoForApp(const std::string& bundleIdentifier, InfoCompletion completion);
    /// Bytes of everything beneath `path`, hidden entries and links included.
    std::uint64_t sizeOfDirectoryAtPath(const std::string& path,
                                        int maxDepth = platform::kDefaultMaxDepth);

    // --- Cleaning ---

    /// Hears of one clean in place of the manager's own observer, until its completion.
    using Observer = std::shared_ptr<CleanObserver>;

    void cleanCacheForApp(const std::string& bundleIdentifier, Progress progress,
                          Completion completion, Observer observer = {});
    /// One after the other; each is recorded, and then their sum. An app whose clean fails is told
    /// to the observer, by its identifier.
    void cleanCacheForApps(std::vector<std::string> bundleIdentifiers, Progress progress,
                           Completion completion, Observer observer = {});
    /// Every third-party app that is not whitelisted.
    void cleanAllThirdPartyAppCaches(Progress progress, Completion completion,
                                     Observer observer = {});
    /// The body of a single clean on the caller's thread, without bookkeeping.
    std::uint64_t cleanNow(const std::string& bundleIdentifier, const Progress& progress,
                           std::optional<Error>& error);
    /// Identifiers of the apps that may be cleaned, in their order; what is left out is logged.
    std::vector<std::string> withoutWhitelisted(const AppList& thirdPartyApps);

    /// Empties a folder of an app, which stays; false when it can't be read or is a link.
    bool removeContentsOfDirectory(const std::string& path, const Progress& progress,
                                   const std::string& appName);
    platform::Result<> saveCleanStatistics(std::uint64_t bytes);

    /// Reads the protection lists afresh; the error when one can't be read and cleans must refuse.
    [[nodiscard]] platform::Result<> readiness() const;

    /// Ends the cleans asked for so far after the entry in hand; what was freed counts. Cleans
    /// asked for later are not affected. Thread-safe.
    void stop();

    /// Who hears of every decision of the cleans to come and of what a scan can't read. Not while
    /// any of that runs.
    void setObserver(CleanObserver* observer) { observer_ = observer; }

  private:
    struct Candidate;

    // Discovery.
    void scanWorkspace(AppList& apps, const Progress& progress);
    platform::ApplicationWorkspace::Applications workspaceApplications();
    platform::Result<AppCacheInfo> readProxy(platform::ApplicationProxy& proxy);
    std::optional<AppIcon> iconOfBundle(const std::optional<std::string>& bundlePath,
                                        const std::optional<std::string>& iconName);
    void reportHiddenRoots();
    void describeFromBundle(Candidate& candidate, const std::string& containerName,
                            const BundleIndex& bundles);
    std::vector<Candidate> findCandidates(const std::vector<std::string>& containers,
                                          std::set<std::string> known);
    /// Leaves the third-party apps, and logs their number.
    static void leaveOutSystemApps(AppList& apps);
    static void report(const Progress& progress, const AppCacheInfo& app, std::size_t done,
                       std::size_t count);
    /// None when the app has no data container; an error is the service's exception.
    platform::Result<std::optional<std::string>> getAppDataDirectory(
        const std::string& bundleIdentifier);
    std::optional<AppIcon> sharedOwnIcon();

    // Sizing.
    void calculate(AppCacheInfo& info, HiddenRoots& hiddenRoots);
    std::uint64_t sizeBeneath(const std::string& container, std::string_view relative,
                              CleanObserver* observer);
    [[nodiscard]] static platform::WalkRules walkRules(int maxDepth, CleanObserver* observer);
    void noteUnreadable(const std::string& path, const Error& error, CleanObserver* observer);
    /// What counts of an entry of an emptied folder: as walkRules() count it from the folder, which
    /// has told of the depth limit already.
    [[nodiscard]] static platform::WalkRules entryRules();

    // Cleaning.
    /// That of a clean asked for now.
    [[nodiscard]] std::stop_token stopToken() const;
    /// What a clean holds while it may change the device; an error when it must not start.
    platform::Result<std::optional<CleanLock::Share>> admission();
    /// One clean of one app, who hears of it and what ends it.
    struct Run {
        const std::string& app;  ///< its identifier
        const Progress& progress;
        CleanObserver* observer;
        std::stop_token stop;

        [[nodiscard]] bool isStopped() const { return stop.stop_requested(); }
        void kept(const std::string& path, KeptReason reason, const std::string& by = {}) const {
            if (observer != nullptr) observer->kept(path, reason, by);
        }
    };
    /// The same of several apps.
    struct Batch {
        const Progress& progress;
        const Observer& observer;
        std::stop_token stop;
    };
    CleanObserver* observerOr(const Observer& own) const { return own ? own.get() : observer_; }
    std::uint64_t cleanNow(const Run& run, std::optional<Error>& error);
    /// The same with all that a clean asked for does beside it.
    std::uint64_t cleanAndRecord(const Run& run, std::optional<Error>& error);
    /// What became of a folder's entries.
    struct Emptied {
        std::uint64_t freed = 0;     ///< bytes of what went
        bool keptSomething = false;  ///< that is protected, or a mount point
        bool wasStopped = false;     ///< before the last entry
    };

    /// Bytes that were there; where something had to stay, or a clean was stopped, those that went.
    /// None when there was nothing to empty.
    std::optional<std::uint64_t> cleanFolder(const std::string& container,
                                             std::string_view relative, const Run& run);
    /// An error when the container is that of a whitelisted app of another identifier, or can't be
    /// told whose it is.
    platform::Result<> mayEmpty(const std::string& container, const std::string& bundleIdentifier);
    void cleanHiddenRoots(const Run& run, std::uint64_t& cleaned);
    /// Tells why a folder is not entered: a link on its way, else `error`.
    void noteRefused(const std::string& container, std::string_view relative, const Error& error,
                     const Run& run);
    /// None when the directory can't be read.
    std::optional<Emptied> removeEntries(platform::Directory& directory, const Run& run);
    /// None of what must stay.
    using MaybeRemoval = std::optional<platform::Removal>;
    void noteKept(const std::string& path, const Run& run, Emptied& emptied);
    void accountFor(const std::string& path, const MaybeRemoval& done, const Run& run,
                    Emptied& emptied);
    void record(std::uint64_t cleaned, const std::string& historyName, CleanObserver* observer);
    std::uint64_t cleanBatch(const std::vector<std::string>& identifiers, const Batch& batch);
    void runBatch(const std::vector<std::string>& identifiers, const Batch& batch,
                  const Completion& completion);
    void postCompletion(Completion completion, std::uint64_t cleaned, std::optional<Error> error);

    AppServices services_;
    std::shared_ptr<platform::Crew> crew_;
    platform::TreeWalker walker_;
    ContainerIndex containers_;
    CleanObserver* observer_ = nullptr;
    mutable std::mutex mutex_;
    std::stop_source stopSource_;  ///< of the cleans asked for since the last stop()
    std::shared_ptr<const AppList> cachedAppList_;
    std::map<std::string, AppCacheInfo> appInfoCache_;
    std::once_flag ownIconRead_;
    std::optional<AppIcon> ownIcon_;
    std::unique_ptr<platform::DispatchQueue> scanQueue_;
};

}  // namespace sweepwright
