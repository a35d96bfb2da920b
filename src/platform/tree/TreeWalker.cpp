#include "platform/tree/TreeWalker.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <limits>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/tree/internal/SharedWork.h"

namespace sweepwright::platform {

namespace {

/// A directory that waits: its path beneath the root ("" is the root) and what its entries may.
struct Waiting {
    std::string relative;
    int depth = 0;         ///< of its entries
    bool guarded = false;  ///< entries must be asked about
};

struct Frame {
    Waiting directory;
    PackedNames subdirectories;
    bool isToldUnreadable = false;  ///< because of an entry: one call tells of all of them
};

std::string beneath(const std::string& relative, const std::string& name) {
    return relative.empty() ? name : relative + "/" + name;
}

/// What all threads of one walk share.
struct Walk {
    FileManager& files;
    const WalkRules& rules;
    const Directory& root;
    std::atomic<std::uint64_t> total{0};
};

/// One thread's share of a walk.
class Walker {
  public:
    explicit Walker(Walk& walk) : walk_(&walk) {}

    void operator()(Waiting first, SharedWork<Waiting>& shared) {
        bytes_ = 0;
        visit(std::move(first));
        while (!frames_.empty()) {
            if (frames_.back().subdirectories.empty()) {
                frames_.pop_back();
                continue;
            }
            visit(takeFrom(frames_.back()));
            giveAway(shared);
        }
        walk_->total.fetch_add(bytes_, std::memory_order_relaxed);
    }

  private:
    [[nodiscard]] Waiting takeFrom(Frame& frame) const {
        Waiting next{beneath(frame.directory.relative, frame.subdirectories.take()),
                     frame.directory.depth - 1, false};
        next.guarded = frame.directory.guarded &&
                       !walk_->rules.protection->isFree(walk_->root.pathOf(next.relative));
        return next;
    }

    void giveAway(SharedWork<Waiting>& shared) {
        while (!frames_.empty() && frames_.back().subdirectories.empty())
            frames_.pop_back();
        for (Frame& frame : frames_) {
            const bool newest = &frame == &frames_.back();
            while (newest ? frame.subdirectories.holdsSeveral() : !frame.subdirectories.empty()) {
                if (!shared.wantsMore()) return;
                shared.give(takeFrom(frame));
            }
        }
    }

    void visit(Waiting waiting) {
        auto directory =
            walk_->files.openBeneath(walk_->root, waiting.relative, walk_->rules.mounts);
        if (!directory) {
            if (directory.error().code == EXDEV) tellMountPoint(walk_->root, waiting.relative);
            const std::string& at = walk_->root.path();
            return tell(waiting.relative.empty() ? at : joinPath(at, waiting.relative),
                        directory.error());
        }
        Frame frame{std::move(waiting), {}};
        for (;;) {
            const auto entries = walk_->files.readEntries(*directory, buffer_);
            if (!entries) tell(directory->path(), entries.error());
            if (!entries || entries->empty()) break;
            for (const DirectoryEntry& entry : *entries)
                count(*directory, entry, frame);
        }
        if (!frame.subdirectories.empty()) frames_.push_back(std::move(frame));
    }

    void count(const Directory& directory, const DirectoryEntry& entry, Frame& frame) {
        const WalkRules& rules = walk_->rules;
        if (!rules.countHiddenEntries && entry.name.starts_with('.')) return;
        if (frame.directory.guarded && isProtected(directory.pathOf(entry.name))) return;

        FileType type = entry.type;
        std::uint64_t size = 0;
        if (type == FileType::Unknown || type == FileType::Regular ||
            (type == FileType::SymbolicLink && rules.countLinks)) {
            const auto attributes = walk_->files.attributesAt(directory, entry.name);
            if (!attributes) return tellEntry(directory, entry.name, attributes.error(), frame);
            if (attributes->isMountPoint && rules.mounts == Mounts::Refuse)
                return tellMountPoint(directory, entry.name);
            type = attributes->type;
            size = attributes->size;
        }
        if (type == FileType::Directory) {
            enter(directory, entry.name, frame);
        } else if (type != FileType::SymbolicLink || rules.countLinks) {
            bytes_ += size;
        }
    }

    void enter(const Directory& directory, std::string_view name, Frame& frame) const {
        if (frame.directory.depth > 1) {
            frame.subdirectories.add(name);
        } else if (walk_->rules.onDepthLimit) {
            walk_->rules.onDepthLimit(directory.pathOf(name));
        }
    }

    void tellMountPoint(const Directory& directory, std::string_view relative) const {
        if (walk_->rules.onMountPoint) walk_->rules.onMountPoint(directory.pathOf(relative));
    }

    void tell(const std::string& path, const Error& error) const {
        tellUnreadable(walk_->files, path, error, walk_->rules.onUnreadable);
    }

    void tellEntry(const Directory& directory, std::string_view name, const Error& error,
                   Frame& frame) const {
        if (error.code == ENOENT || std::exchange(frame.isToldUnreadable, true)) return;
        tell(directory.pathOf(name), error);
    }

    [[nodiscard]] bool isProtected(const std::string& path) const {
        if (!walk_->rules.protection->isProtected(path)) return false;
        if (walk_->rules.onProtectedEntry) walk_->rules.onProtectedEntry(path);
        return true;
    }

    Walk* walk_;
    std::vector<Frame> frames_;
    EntryBuffer buffer_;
    std::uint64_t bytes_ = 0;
};

}  // namespace

TreeWalker::TreeWalker(FileManager& files, unsigned threads) : files_(files), threads_(threads) {}

std::uint64_t TreeWalker::sizeOfDirectory(const std::string& path, const WalkRules& rules) const {
    if (rules.protection != nullptr && rules.protection->isProtected(path)) {
        if (rules.onProtectedRoot) rules.onProtectedRoot(path);
        return 0;
    }
    if (rules.maxDepth <= 0) {
        if (rules.onDepthLimit) rules.onDepthLimit(path);
        return 0;
    }
    const auto root = files_.openDirectory(path, LastLink::Refuse);
    if (root) return walk(*root, rules);
    tellUnreadable(files_, path, root.error(), rules.onUnreadable);
    return 0;
}

std::vector<std::string> TreeWalker::mountPointsBeneath(const Directory& directory) const {
    std::vector<std::string> found;
    std::mutex mutex;
    WalkRules rules;
    rules.countHiddenEntries = true;
    rules.maxDepth = std::numeric_limits<int>::max();
    rules.mounts = Mounts::Refuse;
    rules.onMountPoint = [&](const std::string& path) {
        const std::lock_guard lock(mutex);
        found.push_back(path);
    };
    walk(directory, rules);
    std::ranges::sort(found);
    return found;
}

std::uint64_t TreeWalker::walk(const Directory& root, const WalkRules& rules) const {
    Walk walk{files_, rules, root};
    const bool guarded = rules.protection != nullptr && !rules.protection->isFree(root.path());
    SharedWork<Waiting>(threads_).run({"", rules.maxDepth, guarded},
                                      [&walk] { return Walker(walk); });
    return walk.total;
}

}  // namespace sweepwright::platform
