#include "apps/HiddenRoots.h"

namespace sweepwright {

using platform::joinPath;

std::string HiddenRoots::Folder::cacheRelative() const {
    return name + "/mobile/Library/Caches";
}

std::string HiddenRoots::Folder::tmpRelative() const {
    return name + "/tmp";
}

std::string HiddenRoots::Folder::cachePath() const {
    return joinPath(root, cacheRelative());
}

std::string HiddenRoots::Folder::tmpPath() const {
    return joinPath(root, tmpRelative());
}

HiddenRoots::HiddenRoots(platform::FileManager& files,
                         const platform::UnreadableHandler& onUnreadable)
    : files_(files) {
    const std::string groups(kAppGroups);
    const auto names = files.contentsOfDirectory(groups);
    if (!names) {
        platform::tellUnreadable(files, groups, names.error(), onUnreadable);
        return;
    }
    for (const std::string& name : *names)
        if (name.starts_with(kHiddenRootPrefix)) findFolders(joinPath(groups, name), onUnreadable);
}

void HiddenRoots::findFolders(const std::string& path,
                              const platform::UnreadableHandler& onUnreadable) {
    auto root = files_.openDirectory(path, platform::LastLink::Refuse);
    if (!root) return platform::tellUnreadable(files_, path, root.error(), onUnreadable);
    const auto inside = files_.contentsOfDirectory(*root);
    if (!inside) return platform::tellUnreadable(files_, path, inside.error(), onUnreadable);
    for (const std::string& folder : *inside) {
        const auto attributes = files_.attributesAt(*root, folder);
        if (attributes && attributes->type == platform::FileType::Directory)
            folders_.push_back({path, folder, {}, {}});
    }
}

std::vector<const HiddenRoots::Folder*> HiddenRoots::matching(const std::string& identifier) const {
    std::vector<const Folder*> found;
    for (const Folder& folder : folders_) {
        if (folder.name == "var" || (!identifier.empty() && folder.name.contains(identifier)))
            found.push_back(&folder);
    }
    return found;
}

std::optional<std::uint64_t> HiddenRoots::cacheSize(const Folder& folder, const Measure& measure) {
    return measured(&Folder::cacheSize, folder, folder.cacheRelative(), measure);
}

std::optional<std::uint64_t> HiddenRoots::tmpSize(const Folder& folder, const Measure& measure) {
    return measured(&Folder::tmpSize, folder, folder.tmpRelative(), measure);
}

std::optional<std::uint64_t> HiddenRoots::measured(std::optional<std::uint64_t> Folder::* size,
                                                   const Folder& folder,
                                                   const std::string& relative,
                                                   const Measure& measure) {
    const std::lock_guard lock(mutex_);
    Folder& own = folders_[static_cast<std::size_t>(&folder - folders_.data())];
    if (!(own.*size)) {
        if (!files_.fileExists(joinPath(own.root, relative))) return std::nullopt;
        own.*size = measure(own.root, relative);
    }
    return own.*size;
}

}  // namespace sweepwright
