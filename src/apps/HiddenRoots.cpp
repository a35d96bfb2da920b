#include "apps/HiddenRoots.h"

namespace sweepwright {

using platform::joinPath;

std::string HiddenRoots::Folder::cachePath() const {
    return path + "/mobile/Library/Caches";
}

std::string HiddenRoots::Folder::tmpPath() const {
    return path + "/tmp";
}

HiddenRoots::HiddenRoots(platform::FileManager& files) : files_(files) {
    const std::string groups(kAppGroups);
    const auto names = files.contentsOfDirectory(groups);
    if (!names) return;
    for (const std::string& name : *names) {
        if (!name.starts_with(kHiddenRootPrefix)) continue;
        const std::string root = joinPath(groups, name);
        const auto inside = files.contentsOfDirectory(root);
        if (!inside) continue;
        for (const std::string& folder : *inside) {
            const std::string path = joinPath(root, folder);
            const auto attributes = files.attributes(path, platform::LastLink::Refuse);
            if (attributes && attributes->type == platform::FileType::Directory)
                folders_.push_back({path, folder, {}, {}});
        }
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
    return measured(&Folder::cacheSize, folder, folder.cachePath(), measure);
}

std::optional<std::uint64_t> HiddenRoots::tmpSize(const Folder& folder, const Measure& measure) {
    return measured(&Folder::tmpSize, folder, folder.tmpPath(), measure);
}

std::optional<std::uint64_t> HiddenRoots::measured(std::optional<std::uint64_t> Folder::* size,
                                                   const Folder& folder, const std::string& path,
                                                   const Measure& measure) {
    const std::lock_guard lock(mutex_);
    Folder& own = folders_[static_cast<std::size_t>(&folder - folders_.data())];
    if (!(own.*size)) {
        if (!files_.fileExists(path)) return std::nullopt;
        own.*size = measure(path);
    }
    return own.*size;
}

}  // namespace sweepwright
