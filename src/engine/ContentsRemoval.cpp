// Removing the contents of a directory: the one routine behind every category cleaner.

#include "engine/CategoryRules.h"
#include "engine/FileCleanerEngine.h"
#include "engine/KeepRule.h"
#include "engine/LinkProtection.h"
#include "platform/files/EntryNames.h"
#include "platform/log/Log.h"
#include "platform/queue/InOrder.h"
#include "platform/queue/ProgressThrottle.h"

namespace sweepwright {

using platform::FileType;
using platform::LastLink;
using platform::log;
using platform::Mounts;

namespace {

/// What became of an entry.
struct Handled {
    std::optional<KeptReason> kept;
    platform::Removal removal;
};

/// Opens a directory that is no link and, where mounts are refused, no mount point.
platform::Result<platform::Directory> openItself(platform::FileManager& files,
                                                 const std::string& directory, Mounts mounts) {
    if (mounts == Mounts::Cross) return files.openDirectory(directory, LastLink::Refuse);
    const std::string_view name = platform::lastPathComponent(directory);
    const auto parent =
        files.openDirectory(directory.substr(0, directory.rfind(name)), LastLink::Refuse);
    if (!parent) return std::unexpected(parent.error());
    return files.openBeneath(*parent, name, mounts);
}

}  // namespace

std::uint64_t FileCleanerEngine::sizeToClean(const std::string& directory) {
    return walker_.sizeOfDirectory(directory, cleanRules());
}

void FileCleanerEngine::noteRemoved(const std::string& path, std::uint64_t bytes) {
    if (cleanObserver() != nullptr) cleanObserver()->removed(path, bytes);
}

void FileCleanerEngine::noteKept(const std::string& path, KeptReason reason,
                                 const std::string& by) {
    if (cleanObserver() != nullptr) cleanObserver()->kept(path, reason, by);
}

void FileCleanerEngine::noteFailed(const std::string& path, const Error& error) {
    if (error.isNotFound()) return;
    noteKept(path, KeptReason::Failed, error.description);
}

void FileCleanerEngine::noteProtected(const std::string& path) {
    if (cleanObserver() != nullptr && existsToClean(path))
        noteKept(path, KeptReason::Protected,
                 protectingPath(services_.files, services_.pathWhitelist, path));
}

void FileCleanerEngine::noteMountPoints(const platform::Removal& removal) {
    for (const std::string& path : removal.mountPoints)
        noteKept(path, KeptReason::MountPoint);
}

std::shared_ptr<const ProtectedPlaces> FileCleanerEngine::findProtectedPlaces() {
    const std::string defaults = services_.device.userDefaultsFile();
    return std::make_shared<const ProtectedPlaces>(
        ProtectedPlaces::find(services_.files, services_.pathWhitelist,
                              {defaults, defaults + ".lock", CleanLock::fileBeside(defaults)}));
}

LinkProtection FileCleanerEngine::protectionOf(const platform::Directory& directory) {
    return {services_.files, protectedPlaces_ ? protectedPlaces_ : findProtectedPlaces(),
            directory};
}

void FileCleanerEngine::keepMaps(const std::string& path) {
    logKept(path, KeptReason::Maps);
    noteKept(path, KeptReason::Maps);
}

std::uint64_t FileCleanerEngine::removeContentsOfDirectory(const std::string& directory,
                                                           const Progress& progress,
                                                           Mounts mounts) {
    if (isStopped()) return 0;
    if (isPathInWhitelist(directory)) {
        log("🔒 白名单目录跳过删除: {}", directory);
        noteProtected(directory);
        return 0;
    }
    if (isMapsAppPath(directory)) {
        keepMaps(directory);
        return 0;
    }
    if (isSystemPath(directory)) {
        log("🔧 检测到系统路径，使用posix_spawn删除: {}", directory);
        return removeSystemPathWithSystemCommand(directory, mounts);
    }
    auto opened = openToEmpty(directory, mounts);
    return opened ? removeEntriesOf(*opened, progress) : 0;
}

/// Opens a directory once for all that follows: whatever is renamed or swapped for a link
/// meanwhile, we stay in this one. None when it must stay as it is.
std::optional<platform::Directory> FileCleanerEngine::openToEmpty(const std::string& directory,
                                                                  Mounts mounts) {
    auto opened = openItself(services_.files, directory, mounts);
    if (!opened) {
        const auto itself = services_.files.attributes(directory, LastLink::Refuse);
        if (itself && itself->type == FileType::SymbolicLink) {
            noteKept(directory, KeptReason::Link);
        } else if (opened.error().isMountPoint()) {
            noteKept(directory, KeptReason::MountPoint);
        } else {
            noteUnreadable(directory, opened.error(), cleanObserver());
        }
        return std::nullopt;
    }
    if (protectionOf(*opened).coversDirectory()) {
        log("🔒 白名单目录跳过删除: {}", directory);
        noteProtected(directory);
        return std::nullopt;
    }
    return std::move(*opened);
}

std::vector<std::string> FileCleanerEngine::cleanableEntriesOf(const std::string& directory) {
    auto opened = services_.files.openDirectory(directory, LastLink::Refuse);
    auto names = opened
                     ? services_.files.contentsOfDirectory(*opened)
                     : platform::Result<std::vector<std::string>>(std::unexpected(opened.error()));
    if (names) return *std::move(names);
    noteUnreadable(directory, names.error(), cleanObserver());
    return {};
}

std::uint64_t FileCleanerEngine::removeEntriesOf(platform::Directory& directory,
                                                 const Progress& progress, int levels) {
    auto names = platform::namesOf(services_.files, directory);
    if (!names) {
        noteUnreadable(directory.path(), names.error(), cleanObserver());
        return 0;
    }
    const auto count = static_cast<double>(names->size());
    const LinkProtection protection = protectionOf(directory);
    // A cleaner that is called on its own has no throttle yet.
    platform::ProgressThrottle own(services_.mainQueue, progress);
    platform::ProgressThrottle& throttle = throttle_ ? *throttle_ : own;
    std::uint64_t total = 0;
    std::size_t handled = 0;
    const auto next = [&]() -> std::optional<std::string> {
        if (names->size() == 0 || isStopped()) return std::nullopt;
        return names->take();
    };
    const auto handle = [&](const std::string& name) -> Handled {
        const auto reason = reasonToKeep(directory, protection, name, kKeptInFolder);
        if (reason) return {reason, {}};
        // The size is taken file by file right before each goes, by the rules of the size walker.
        return {std::nullopt, services_.eraser.removeEntry(directory, name, cleanRules())};
    };
    const auto account = [&](const std::string& name, const Handled& entry) {
        ++handled;
        if (entry.kept) return noteKeptEntry(directory.pathOf(name), *entry.kept);
        total += accountFor(directory, name, entry.removal, levels);
        if (progress) throttle.report(name, static_cast<double>(handled) / count);
    };
    platform::InOrder<std::string, Handled>(services_.eraser.crew()).run(next, handle, account);
    own.flush();
    return total;
}

platform::Result<platform::FileAttributes> FileCleanerEngine::attributesOf(
    const platform::Directory& directory, const std::string& name) {
    auto attributes = services_.files.attributesAt(directory, name);
    if (attributes) return attributes;
    return services_.files.attributes(directory.pathOf(name), LastLink::Refuse);
}

/// An entry of a folder that is open.
class FileCleanerEngine::FolderEntry final : public EntryInQuestion {
  public:
    FolderEntry(FileCleanerEngine& engine, const platform::Directory& directory,
                const LinkProtection& protection, const std::string& name)
        : EntryInQuestion(name, directory.pathOf(name)),
          engine_(engine),
          directory_(directory),
          protection_(protection) {}

    [[nodiscard]] bool isProtected() const override {
        return engine_.isPathInWhitelist(path()) || protection_.covers(name());
    }
    [[nodiscard]] bool isLink() const override {
        const auto attributes = engine_.attributesOf(directory_, std::string(name()));
        return attributes && attributes->type == FileType::SymbolicLink;
    }

  private:
    FileCleanerEngine& engine_;
    const platform::Directory& directory_;
    const LinkProtection& protection_;
};

/// A folder known by its path.
class FileCleanerEngine::Location final : public EntryInQuestion {
  public:
    Location(const FileCleanerEngine& engine, const std::string& path)
        : EntryInQuestion(platform::lastPathComponent(path), path), engine_(engine) {}
    [[nodiscard]] bool isProtected() const override { return engine_.isPathInWhitelist(path()); }

  private:
    const FileCleanerEngine& engine_;
};

void FileCleanerEngine::noteKeptEntry(const std::string& path, KeptReason reason) {
    logKept(path, reason);
    if (reason == KeptReason::Protected) {
        noteProtected(path);
    } else {
        noteKept(path, reason);
    }
}

std::optional<KeptReason> FileCleanerEngine::reasonToKeep(const platform::Directory& directory,
                                                          const LinkProtection& protection,
                                                          const std::string& name,
                                                          std::span<const KeptReason> asked) {
    return sweepwright::reasonToKeep(FolderEntry(*this, directory, protection, name), asked);
}

bool FileCleanerEngine::keeps(const EntryInQuestion& entry, std::span<const KeptReason> asked) {
    const auto reason = sweepwright::reasonToKeep(entry, asked);
    if (reason) noteKeptEntry(entry.path(), *reason);
    return reason.has_value();
}

bool FileCleanerEngine::keepsEntry(const platform::Directory& directory,
                                   const LinkProtection& protection, const std::string& name,
                                   std::span<const KeptReason> asked) {
    return keeps(FolderEntry(*this, directory, protection, name), asked);
}

bool FileCleanerEngine::keepsLocation(const std::string& path, std::span<const KeptReason> asked) {
    return keeps(Location(*this, path), asked);
}

std::uint64_t FileCleanerEngine::accountFor(const platform::Directory& directory,
                                            const std::string& name,
                                            const platform::Removal& removal, int levels) {
    const std::string path = directory.pathOf(name);
    if (!removal.error) {
        noteRemoved(path, removal.bytes);
        return removal.bytes;
    }
    log("⚠️ 无法删除文件: {}, 错误: {}", path, removal.error->description);
    noteMountPoints(removal);
    if (removal.onlyMountPointsStay) return removal.bytes;
    noteFailed(path, *removal.error);
    // What went before the failure is gone and counts; then whatever else can go.
    if (isSystemPath(path))
        return removal.bytes + removeContentsOfDirectory(path, {}, Mounts::Refuse);
    if (levels == 0) return removal.bytes;
    auto rest = services_.files.openBeneath(directory, name, Mounts::Refuse);
    return removal.bytes + (rest ? removeEntriesOf(*rest, {}, levels - 1) : 0);
}

}  // namespace sweepwright
