#include "platform/tree/TreeWalker.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <deque>
#include <limits>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/tree/internal/OpenDirectories.h"
#include "platform/tree/internal/SharedWork.h"

namespace sweepwright::platform {

namespace {

/// Directories that a thread keeps open: the last ones that it has to come back to.
constexpr std::size_t kKeptOpen = 2;

/// A directory that waits, and what its entries may.
struct Waiting {
    PlacePointer place;
    int depth = 0;         ///< of its entries
    bool guarded = false;  ///< entries must be asked about
};

struct Frame {
    Waiting directory;
    PackedNames subdirectories;
    bool isToldUnreadable = false;  ///< because of an entry: one call tells of all of them
};

/// What all threads of one walk share.
struct Walk {
    FileManager& files;
    const WalkRules& rules;
    Directory& root;  ///< read by the thread that begins
    Crew& crew;
    std::atomic<std::uint64_t> total{0};
};

/// One thread's share of a walk.
class Walker {
  public:
    explicit Walker(Walk& walk)
        : walk_(&walk),
          opened_(walk.files, walk.root, walk.rules.mounts, kKeptOpen),
          pace_(walk.crew) {}

    void operator()(Waiting first, SharedWork<Waiting>& shared) {
        bytes_ = 0;
        visit(std::move(first));
        while (!frames_.empty()) {
            giveAway(shared);
            Waiting next = takeFrom(frames_.back());
            // What waits is all that is remembered: in a chain of folders, nothing.
            if (frames_.back().subdirectories.empty()) frames_.pop_back();
            visit(std::move(next));
        }
        opened_.closeAll();
        walk_->total.fetch_add(bytes_, std::memory_order_relaxed);
    }

  private:
    [[nodiscard]] Waiting takeFrom(Frame& frame) const {
        const Waiting& above = frame.directory;
        auto place = std::make_shared<const Place>(above.place, frame.subdirectories.take());
        const bool guarded = above.guarded && !walk_->rules.protection->isFree(place->path());
        return {std::move(place), above.depth - 1, guarded};
    }

    void giveAway(SharedWork<Waiting>& shared) {
        while (!frames_.empty()) {
            Frame& oldest = frames_.front();
            const bool isNewest = frames_.size() == 1;
            if ((isNewest && !oldest.subdirectories.holdsSeveral()) || !shared.wantsMore()) return;
            shared.give(takeFrom(oldest));
            if (oldest.subdirectories.empty()) frames_.pop_front();
        }
    }

    void visit(Waiting waiting) {
        if (waiting.place == walk_->root.place()) {
            list(walk_->root, std::move(waiting));
        } else if (auto directory = opened_.open(waiting.place)) {
            if (list(*directory, std::move(waiting))) opened_.keep(*std::move(directory));
        } else {
            const std::string path = waiting.place->path();
            if (directory.error().code == EXDEV) tellMountPoint(path);
            tell(path, directory.error());
        }
        pace_.step();
    }

    /// Whether it has subdirectories, which now wait.
    bool list(Directory& directory, Waiting waiting) {
        Frame frame{std::move(waiting), {}};
        for (;;) {
            const auto entries = walk_->files.readEntries(directory, buffer_);
            if (!entries) tell(directory.path(), entries.error());
            if (!entries || entries->empty()) break;
            for (const DirectoryEntry& entry : *entries)
                count(directory, entry, frame);
        }
        if (frame.subdirectories.empty()) return false;
        frames_.push_back(std::move(frame));
        return true;
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
                return tellMountPoint(directory.pathOf(entry.name));
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

    void tellMountPoint(const std::string& path) const {
        if (walk_->rules.onMountPoint) walk_->rules.onMountPoint(path);
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
    OpenDirectories opened_;
    std::deque<Frame> frames_;  // each with a subdirectory that waits
    EntryBuffer buffer_;
    Pace pace_;
    std::uint64_t bytes_ = 0;
};

}  // namespace

TreeWalker::TreeWalker(FileManager& files, unsigned threads, std::shared_ptr<Crew> crew)
    : files_(files), threads_(threads), crew_(std::move(crew)) {}

bool TreeWalker::admits(const WalkRules& rules, const std::string& path) {
    if (rules.protection != nullptr && rules.protection->isProtected(path)) {
        if (rules.onProtectedRoot) rules.onProtectedRoot(path);
        return false;
    }
    if (rules.maxDepth > 0) return true;
    if (rules.onDepthLimit) rules.onDepthLimit(path);
    return false;
}

std::uint64_t TreeWalker::sizeOfDirectory(const std::string& path, const WalkRules& rules) const {
    if (!admits(rules, path)) return 0;
    auto root = files_.openDirectory(path, LastLink::Refuse);
    if (root) return walk(*root, rules);
    tellUnreadable(files_, path, root.error(), rules.onUnreadable);
    return 0;
}

std::uint64_t TreeWalker::sizeOfDirectory(Directory directory, const WalkRules& rules) const {
    return admits(rules, directory.path()) ? walk(directory, rules) : 0;
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
    if (auto unread = files_.openBeneath(directory, "", Mounts::Refuse)) walk(*unread, rules);
    std::ranges::sort(found);
    return found;
}

std::uint64_t TreeWalker::walk(Directory& root, const WalkRules& rules) const {
    Walk walk{files_, rules, root, *crew_};
    const bool guarded = rules.protection != nullptr && !rules.protection->isFree(root.path());
    SharedWork<Waiting>(*crew_, threads_).run({root.place(), rules.maxDepth, guarded}, [&walk] {
        return Walker(walk);
    });
    return walk.total;
}

}  // namespace sweepwright::platform
