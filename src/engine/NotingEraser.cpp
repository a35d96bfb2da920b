#include "engine/NotingEraser.h"

#include <algorithm>

#include "platform/tree/TreeWalker.h"

namespace sweepwright {

platform::Removal NotingEraser::removeEntry(const platform::Directory& parent,
                                            const std::string& name,
                                            const platform::WalkRules& rules) {
    const auto attributes = files_.attributesAt(parent, name);
    if (!attributes) return {0, attributes.error()};
    std::uint64_t size = 0;
    if (attributes->isMountPoint) return platform::Removal::around(0, {parent.pathOf(name)});
    if (attributes->type == platform::FileType::Directory) {
        const auto opened = files_.openBeneath(parent, name, platform::Mounts::Refuse);
        if (!opened && opened.error().isMountPoint())
            return platform::Removal::around(0, {parent.pathOf(name)});
        auto mountPoints = opened ? platform::TreeWalker(files_).mountPointsBeneath(*opened)
                                  : std::vector<std::string>{};
        if (!mountPoints.empty()) {
            size = noteAround(parent, name, rules, mountPoints);
            return platform::Removal::around(size, std::move(mountPoints));
        }
        size = platform::TreeWalker(files_).sizeOfDirectory(parent.pathOf(name), rules);
    } else if (attributes->type != platform::FileType::SymbolicLink || rules.countLinks) {
        size = attributes->size;
    }
    files_.hide(parent, name);
    return {size, std::nullopt};
}

std::uint64_t NotingEraser::noteAround(const platform::Directory& parent, const std::string& name,
                                       const platform::WalkRules& rules,
                                       const std::vector<std::string>& mountPoints) {
    auto opened = files_.openBeneath(parent, name, platform::Mounts::Refuse);
    if (!opened) return 0;
    const auto names = files_.contentsOfDirectory(*opened);
    if (!names) {
        platform::tellUnreadable(files_, opened->path(), names.error(), rules.onUnreadable);
        return 0;
    }
    platform::WalkRules inner = rules;
    --inner.maxDepth;
    std::uint64_t total = 0;
    for (const std::string& each : *names) {
        const std::string path = opened->pathOf(each);
        const auto leadsTo = [&path](const std::string& mountPoint) {
            return mountPoint.starts_with(path + "/");
        };
        const bool counts =
            rules.maxDepth > 0 && (rules.countHiddenEntries || !each.starts_with('.'));
        std::uint64_t bytes = 0;
        if (std::ranges::find(mountPoints, path) != mountPoints.end()) continue;
        if (std::ranges::any_of(mountPoints, leadsTo)) {
            bytes = noteAround(*opened, each, inner, mountPoints);
        } else {
            bytes = removeEntry(*opened, each, inner).bytes;
            removed(path, counts ? bytes : 0);
        }
        if (counts) total += bytes;
    }
    return total;
}

/// A quote in the path ends the command's quoting early. An odd one leaves it open, which the shell
/// refuses; after an even number the command names another path, where it may change nothing.
std::optional<std::int32_t> NotingEraser::statusOfOddCommand(const platform::Directory& directory) {
    const auto folder = files_.hostPath(directory);
    if (!folder) return -1;
    const auto quotes = std::ranges::count(*folder, '\'');
    if (quotes == 0) return std::nullopt;
    if (quotes % 2 != 0 || !platform::CommandRunner::confinementAvailable()) return -1;
    return 0;
}

std::int32_t NotingEraser::runShellCommand(const std::string& /*command*/,
                                           const platform::Directory& directory) {
    if (const auto status = statusOfOddCommand(directory)) return *status;
    if (!platform::TreeWalker(files_).mountPointsBeneath(directory).empty()) return -1;
    // The command removes every visible entry of the directory.
    auto opened = files_.openDirectory(directory.path(), platform::LastLink::Refuse);
    if (!opened) return -1;
    const auto names = files_.contentsOfDirectory(*opened);
    if (!names) return -1;
    platform::WalkRules rules;
    rules.maxDepth = platform::kDefaultMaxDepth - 1;  // measured from the directory above
    for (const std::string& name : *names) {
        const std::string path = opened->pathOf(name);
        if (name.starts_with('.')) {
            kept(path, KeptReason::Hidden, {});
        } else if (const auto removal = removeEntry(*opened, name, rules); !removal.error) {
            removed(path, removal.bytes);
        }
    }
    return 0;
}

void NotingEraser::removed(const std::string& path, std::uint64_t bytes) {
    preview_.entries.push_back({path, bytes});
}

void NotingEraser::kept(const std::string& path, KeptReason reason, const std::string& by) {
    // Several steps of a clean come by the same entry.
    if (seen_.emplace(path, reason).second) preview_.kept.push_back({path, reason, by});
}

void NotingEraser::finished(const CleanPart& part, std::uint64_t bytes) {
    const std::size_t all = preview_.entries.size();
    preview_.parts.push_back({part, bytes, all - std::exchange(entriesOfParts_, all)});
}

CleanPreview NotingEraser::take(std::uint64_t wouldFree) {
    preview_.wouldFree = wouldFree;
    // What one step keeps may go with its folder in another.
    std::erase_if(preview_.kept, [this](const CleanPreview::Kept& kept) {
        return !files_.attributes(kept.path, platform::LastLink::Refuse);
    });
    return std::move(preview_);
}

}  // namespace sweepwright
