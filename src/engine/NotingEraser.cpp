#include "engine/NotingEraser.h"

#include <algorithm>

#include "platform/files/EntryNames.h"
#include "platform/tree/TreeWalker.h"

namespace sweepwright {

platform::Removal NotingEraser::removeEntry(const platform::Directory& parent,
                                            const std::string& name,
                                            const platform::WalkRules& rules) {
    const auto attributes = files_.attributesAt(parent, name);
    if (!attributes) return {0, attributes.error()};
    if (attributes->isMountPoint) return platform::Removal::around(0, {parent.pathOf(name)});
    if (attributes->type == platform::FileType::Directory) return removeFolder(parent, name, rules);
    files_.hide(parent, name);
    const bool counts = attributes->type != platform::FileType::SymbolicLink || rules.countLinks;
    return {counts ? attributes->size : 0, std::nullopt};
}

platform::Removal NotingEraser::removeFolder(const platform::Directory& parent,
                                             const std::string& name,
                                             const platform::WalkRules& rules) {
    auto opened = files_.openBeneath(parent, name, platform::Mounts::Refuse);
    if (!opened && opened.error().isMountPoint())
        return platform::Removal::around(0, {parent.pathOf(name)});
    std::uint64_t size = 0;
    if (opened) {
        // What is hidden holds no mount points.
        auto mountPoints = wholeWalker_.mountPointsBeneath(*opened);
        if (!mountPoints.empty()) {
            size = noteAround(*std::move(opened), rules, mountPoints);
            return platform::Removal::around(size, std::move(mountPoints));
        }
        size = walker_.sizeOfDirectory(*std::move(opened), rules);
    } else {
        platform::tellUnreadable(files_, parent.pathOf(name), opened.error(), rules.onUnreadable);
    }
    files_.hide(parent, name);
    return {size, std::nullopt};
}

std::uint64_t NotingEraser::noteAround(platform::Directory directory,
                                       const platform::WalkRules& rules,
                                       const std::vector<std::string>& mountPoints) {
    std::vector<Around> left;
    left.push_back({std::move(directory), rules});
    std::uint64_t total = 0;
    while (!left.empty()) {
        Around around = std::move(left.back());
        left.pop_back();
        auto names = platform::namesOf(files_, around.directory);
        if (!names) {
            platform::tellUnreadable(files_, around.directory.path(), names.error(),
                                     rules.onUnreadable);
            continue;
        }
        while (names->size() > 0)
            total += noteBeside(around, names->take(), mountPoints, left);
    }
    return total;
}

std::uint64_t NotingEraser::noteBeside(const Around& around, const std::string& name,
                                       const std::vector<std::string>& mountPoints,
                                       std::vector<Around>& left) {
    const std::string path = around.directory.pathOf(name);
    if (std::ranges::binary_search(mountPoints, path)) return 0;
    const bool counts = around.counts && around.rules.maxDepth > 0 &&
                        (around.rules.countHiddenEntries || !name.starts_with('.'));
    platform::WalkRules inner = around.rules;
    --inner.maxDepth;
    const auto inside = std::ranges::lower_bound(mountPoints, path + "/");
    if (inside != mountPoints.end() && inside->starts_with(path + "/")) {
        auto opened = files_.openBeneath(around.directory, name, platform::Mounts::Refuse);
        if (opened) left.push_back({*std::move(opened), std::move(inner), counts});
        return 0;
    }
    const std::uint64_t bytes = removeEntry(around.directory, name, inner).bytes;
    removed(path, counts ? bytes : 0);
    return counts ? bytes : 0;
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
    if (!wholeWalker_.mountPointsBeneath(directory).empty()) return -1;
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
    const std::lock_guard lock(mutex_);
    preview_.entries.push_back({path, bytes});
}

void NotingEraser::kept(const std::string& path, KeptReason reason, const std::string& by) {
    const std::lock_guard lock(mutex_);
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
