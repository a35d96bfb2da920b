// Emptying apps' caches: one, several, all.
#include <algorithm>
#include <array>
#include <exception>
#include <utility>

#include "apps/ThirdPartyAppCacheManager.h"
#include "engine/KeepRule.h"
#include "engine/LinkProtection.h"
#include "platform/files/EntryNames.h"
#include "platform/log/Log.h"
#include "platform/queue/InOrder.h"

namespace sweepwright {

using platform::joinPath;
using platform::LastLink;
using platform::log;
using platform::Mounts;

namespace {

constexpr std::array<std::string_view, 3> kCleanedFolders = {"Library/Caches", "tmp",
                                                             "Library/WebKit"};

}  // namespace

void ThirdPartyAppCacheManager::stop() {
    const std::lock_guard lock(mutex_);
    // The cleans asked for so far stay stopped; those to come have another source.
    std::exchange(stopSource_, std::stop_source()).request_stop();
}

std::stop_token ThirdPartyAppCacheManager::stopToken() const {
    const std::lock_guard lock(mutex_);
    return stopSource_.get_token();
}

void ThirdPartyAppCacheManager::cleanCacheForApp(const std::string& bundleIdentifier,
                                                 Progress progress, Completion completion,
                                                 Observer observer) {
    scanQueue_->async([this, bundleIdentifier, progress = std::move(progress),
                       completion = std::move(completion), observer = std::move(observer),
                       stop = stopToken()] {
        std::optional<Error> error;
        const Run run{bundleIdentifier, progress, observerOr(observer), stop};
        const std::uint64_t cleaned = cleanAndRecord(run, error);
        postCompletion(completion, cleaned, std::move(error));
    });
}

std::uint64_t ThirdPartyAppCacheManager::cleanAndRecord(const Run& run,
                                                        std::optional<Error>& error) {
    const auto admitted = admission();
    if (!admitted) {
        error = admitted.error();
        return 0;
    }
    const std::uint64_t cleaned = cleanNow(run, error);
    if (!error && cleaned > 0) {
        record(cleaned,
               "第三方应用: " + (run.app.contains('.') ? run.app : std::string("第三方应用缓存")),
               run.observer);
        invalidateCacheForApp(run.app);
    }
    return cleaned;
}

std::uint64_t ThirdPartyAppCacheManager::cleanNow(const std::string& bundleIdentifier,
                                                  const Progress& progress,
                                                  std::optional<Error>& error) {
    return cleanNow({bundleIdentifier, progress, observer_, stopToken()}, error);
}

std::uint64_t ThirdPartyAppCacheManager::cleanNow(const Run& run, std::optional<Error>& error) {
    std::uint64_t cleaned = 0;
    const auto interrupt = [&error](const std::string& reason) {
        log("❌ 清理异常: {}", reason);
        error =
            Error{std::string(kErrorDomain), kInterrupted, reason.empty() ? "清理失败" : reason};
    };
    try {
        const auto known = getAppDataDirectory(run.app);
        if (!known) {
            interrupt(known.error().description);
            return 0;
        }
        std::optional<std::string> container = *known;
        // Some containers are named after their app; for others this is simply absent.
        if (!container && platform::isEntryName(run.app))
            container = joinPath(kDataContainers, run.app);
        if (!container) {
            error = Error{std::string(kErrorDomain), kNoDataDirectory, "无法获取应用数据目录"};
            return 0;
        }
        if (const auto ours = mayEmpty(*container, run.app); !ours) {
            interrupt(ours.error().description);
            return 0;
        }
        log("🧹 清理应用: {} 数据路径: {}", run.app, *container);
        for (const std::string_view folder : kCleanedFolders)
            cleaned += cleanFolder(*container, folder, run).value_or(0);
        cleanHiddenRoots(run, cleaned);
        log("✅ 清理完成: {} 清理了 {} 字节", run.app, cleaned);
    } catch (const std::exception& exception) {
        interrupt(exception.what());
    } catch (...) {
        interrupt({});
    }
    if (run.observer != nullptr)
        run.observer->finished({CleanType::ThirdPartyApps, run.app}, cleaned);
    return cleaned;
}

/// An app that was found while its metadata could not be read goes by its container's name, which
/// no whitelist holds.
platform::Result<> ThirdPartyAppCacheManager::mayEmpty(const std::string& container,
                                                       const std::string& bundleIdentifier) {
    if (!services_.files.fileExists(container)) return {};
    const auto owner = ownerOfContainer(services_.files, container);
    if (!owner) return std::unexpected(owner.error());
    if (*owner == bundleIdentifier || !services_.appWhitelist.isAppInWhitelist(*owner)) return {};
    return std::unexpected(Error{std::string(kErrorDomain), kInterrupted,
                                 container + ": belongs to whitelisted " + *owner});
}

std::optional<std::uint64_t> ThirdPartyAppCacheManager::cleanFolder(const std::string& container,
                                                                    std::string_view relative,
                                                                    const Run& run) {
    const std::string path = joinPath(container, relative);
    if (run.isStopped()) return std::nullopt;
    if (const auto there = services_.files.attributes(path, LastLink::Follow); !there) {
        noteUnreadable(path, there.error(), run.observer);
        return std::nullopt;
    }
    const std::uint64_t size = sizeBeneath(container, relative, run.observer);
    // Opened without following a link, not even one planted since: from here on we are in it.
    const auto base = services_.files.openDirectory(container, LastLink::Refuse);
    auto folder = base ? services_.files.openBeneath(*base, relative, Mounts::Refuse)
                       : platform::Result<platform::Directory>(std::unexpected(base.error()));
    if (!folder) {
        log("⚠️ 无法读取目录: {} 错误: {}", path, folder.error().description);
        noteRefused(container, relative, folder.error(), run);
        return std::nullopt;
    }
    const auto emptied = removeEntries(*folder, run);
    if (!emptied) return std::nullopt;
    // What merely failed to go counts all the same: the figure is what was there. But what had to
    // stay does not.
    return emptied->wasStopped || emptied->keptSomething ? emptied->freed : size;
}

void ThirdPartyAppCacheManager::noteRefused(const std::string& container, std::string_view relative,
                                            const Error& error, const Run& run) {
    if (run.observer == nullptr) return;
    const std::string path = joinPath(container, relative);
    for (std::size_t end = container.size(); end != std::string::npos;
         end = end == path.size() ? std::string::npos
                                  : std::min(path.find('/', end + 1), path.size())) {
        const auto step = services_.files.attributes(path.substr(0, end), LastLink::Refuse);
        if (step && step->type == platform::FileType::SymbolicLink)
            return run.kept(path, KeptReason::Link);
    }
    if (error.isMountPoint()) return run.kept(path, KeptReason::MountPoint);
    if (error.isNotDirectory()) return run.kept(path, KeptReason::Failed, error.description);
    noteUnreadable(path, error, run.observer);
}

void ThirdPartyAppCacheManager::cleanHiddenRoots(const Run& run, std::uint64_t& cleaned) {
    const HiddenRoots hiddenRoots(services_.files, unreadableTo(run.observer));
    for (const auto* folder : hiddenRoots.matching(run.app)) {
        if (const auto freed = cleanFolder(folder->root, folder->cacheRelative(), run)) {
            cleaned += *freed;
            log("✅ 清理隐根设备缓存: {}, 大小: {} 字节", folder->cachePath(), *freed);
        }
        if (const auto freed = cleanFolder(folder->root, folder->tmpRelative(), run)) {
            cleaned += *freed;
            log("✅ 清理隐根设备临时文件: {}, 大小: {} 字节", folder->tmpPath(), *freed);
        }
    }
}

bool ThirdPartyAppCacheManager::removeContentsOfDirectory(const std::string& path,
                                                          const Progress& progress,
                                                          const std::string& appName) {
    auto directory = services_.files.openDirectory(path, LastLink::Refuse);
    if (!directory) {
        log("⚠️ 无法读取目录: {} 错误: {}", path, directory.error().description);
        return false;
    }
    return removeEntries(*directory, {appName, progress, observer_, stopToken()}).has_value();
}

std::optional<ThirdPartyAppCacheManager::Emptied> ThirdPartyAppCacheManager::removeEntries(
    platform::Directory& directory, const Run& run) {
    auto names = platform::namesOf(services_.files, directory);
    if (!names) {
        noteUnreadable(directory.path(), names.error(), run.observer);
        log("⚠️ 无法读取目录: {} 错误: {}", directory.path(), names.error().description);
        return std::nullopt;
    }
    const LinkProtection links(services_.files, services_.pathWhitelist, directory);
    const bool isFree =
        services_.pathWhitelist.isFree(directory.path()) && !links.coversDirectory();
    Emptied emptied;
    std::size_t done = 0;
    platform::ProgressThrottle throttle(services_.mainQueue, run.progress);
    const auto count = static_cast<double>(names->size());
    const auto next = [&]() -> std::optional<std::string> {
        if (names->size() == 0) return std::nullopt;
        emptied.wasStopped = run.isStopped();
        return emptied.wasStopped ? std::nullopt : std::optional(names->take());
    };
    const auto remove = [&](const std::string& name) -> MaybeRemoval {
        if (!isFree && (services_.pathWhitelist.isPathInWhitelist(directory.pathOf(name)) ||
                        links.covers(name)))
            return std::nullopt;
        return services_.eraser.removeEntry(directory, name, entryRules());
    };
    const auto account = [&](const std::string& name, const MaybeRemoval& removal) {
        accountFor(directory.pathOf(name), removal, run, emptied);
        throttle.report(run.app, static_cast<double>(++done) / count);
    };
    platform::InOrder<std::string, MaybeRemoval>(services_.eraser.crew())
        .run(next, remove, account);
    throttle.flush();
    return emptied;
}

void ThirdPartyAppCacheManager::noteKept(const std::string& path, const Run& run,
                                         Emptied& emptied) {
    logKept(path, KeptReason::Protected);
    emptied.keptSomething = true;
    if (run.observer != nullptr)
        run.kept(path, KeptReason::Protected,
                 protectingPath(services_.files, services_.pathWhitelist, path));
}

void ThirdPartyAppCacheManager::accountFor(const std::string& path, const MaybeRemoval& done,
                                           const Run& run, Emptied& emptied) {
    if (!done) return noteKept(path, run, emptied);
    const platform::Removal& removal = *done;
    emptied.freed += removal.bytes;
    if (removal.error) {
        log("⚠️ 删除失败: {} 错误: {}", path, removal.error->description);
        emptied.keptSomething = emptied.keptSomething || !removal.mountPoints.empty();
        for (const std::string& mountPoint : removal.mountPoints)
            run.kept(mountPoint, KeptReason::MountPoint);
        // What another has removed meanwhile is gone as it was to be.
        if (!removal.onlyMountPointsStay && !removal.error->isNotFound())
            run.kept(path, KeptReason::Failed, removal.error->description);
    } else if (run.observer != nullptr) {
        run.observer->removed(path, removal.bytes);
    }
}

void ThirdPartyAppCacheManager::cleanCacheForApps(std::vector<std::string> bundleIdentifiers,
                                                  Progress progress, Completion completion,
                                                  Observer observer) {
    scanQueue_->async(
        [this, identifiers = std::move(bundleIdentifiers), progress = std::move(progress),
         completion = std::move(completion), observer = std::move(observer),
         stop = stopToken()] { runBatch(identifiers, {progress, observer, stop}, completion); });
}

void ThirdPartyAppCacheManager::runBatch(const std::vector<std::string>& identifiers,
                                         const Batch& batch, const Completion& completion) {
    // Held throughout, so that no other process comes between two of the apps.
    auto admitted = admission();
    if (!admitted) return postCompletion(completion, 0, admitted.error());
    const std::uint64_t total = cleanBatch(identifiers, batch);
    admitted->reset();
    postCompletion(completion, total, std::nullopt);
}

platform::Result<std::optional<CleanLock::Share>> ThirdPartyAppCacheManager::admission() {
    if (auto ready = readiness(); !ready) return std::unexpected(ready.error());
    if (services_.lock == nullptr) return std::nullopt;
    return services_.lock->share();
}

std::uint64_t ThirdPartyAppCacheManager::cleanBatch(const std::vector<std::string>& identifiers,
                                                    const Batch& batch) {
    CleanObserver* const listener = observerOr(batch.observer);
    // Where the apps' containers can't be listed there may be more of them than we were told.
    const std::string containers(kDataContainers);
    if (const auto opened = services_.files.openDirectory(containers, LastLink::Follow); !opened)
        noteUnreadable(containers, opened.error(), listener);
    std::uint64_t total = 0;
    const auto count = static_cast<double>(identifiers.size());
    for (std::size_t index = 0; index < identifiers.size(); ++index) {
        if (batch.stop.stop_requested()) break;
        Progress inner;
        if (batch.progress) {
            inner = [progress = batch.progress, index, count](const std::string& name,
                                                              double fraction) {
                progress(name, (static_cast<double>(index) + fraction) / count);
            };
        }
        std::optional<Error> error;
        total += cleanAndRecord({identifiers[index], inner, listener, batch.stop}, error);
        if (error && listener != nullptr)
            listener->kept(identifiers[index], KeptReason::Failed, error->description);
    }
    if (total > 0) record(total, "第三方应用缓存（全部）", listener);
    for (const std::string& identifier : identifiers)
        invalidateCacheForApp(identifier);
    return total;
}

void ThirdPartyAppCacheManager::cleanAllThirdPartyAppCaches(Progress progress,
                                                            Completion completion,
                                                            Observer observer) {
    scanQueue_->async([this, progress = std::move(progress), completion = std::move(completion),
                       observer = std::move(observer), stop = stopToken()] {
        AppList apps = scanNow();
        leaveOutSystemApps(apps);
        // Another process may have protected an app since the lists were last read.
        if (const auto ready = readiness(); !ready)
            return postCompletion(completion, 0, ready.error());
        runBatch(withoutWhitelisted(apps), {progress, observer, stop}, completion);
    });
}

std::vector<std::string> ThirdPartyAppCacheManager::withoutWhitelisted(
    const AppList& thirdPartyApps) {
    std::vector<std::string> identifiers;
    for (const AppCacheInfo& app : thirdPartyApps) {
        const std::string identifier = app.bundleIdentifier.value_or("");
        if (services_.appWhitelist.isAppInWhitelist(identifier)) {
            log("✅ 跳过白名单应用: {} ({})", app.appName.value_or(identifier), identifier);
        } else {
            identifiers.push_back(identifier);
        }
    }
    log("📊 白名单过滤后，待清理应用数: {} / {}", identifiers.size(), thirdPartyApps.size());
    return identifiers;
}

platform::Result<> ThirdPartyAppCacheManager::saveCleanStatistics(std::uint64_t bytes) {
    return services_.statistics.recordClean(bytes);
}

void ThirdPartyAppCacheManager::record(std::uint64_t cleaned, const std::string& historyName,
                                       CleanObserver* observer) {
    // What was cleaned is cleaned, and the clean a success, whether or not it can be recorded.
    const auto counted = saveCleanStatistics(cleaned);
    const auto entered =
        services_.history.saveCleanHistoryWithType(CleanType::ThirdPartyApps, cleaned, historyName);
    for (const auto& stored : {counted, entered})
        if (!stored && observer != nullptr) observer->notRecorded(stored.error());
    services_.notifications.post("CleanHistoryUpdated");
}

void ThirdPartyAppCacheManager::postCompletion(Completion completion, std::uint64_t cleaned,
                                               std::optional<Error> error) {
    services_.mainQueue.async(
        [completion = std::move(completion), cleaned, error = std::move(error)] {
            if (completion) completion(!error.has_value(), cleaned, error);
        });
}

}  // namespace sweepwright
