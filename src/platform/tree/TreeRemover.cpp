#include "platform/tree/TreeRemover.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <list>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/tree/internal/SharedWork.h"

namespace sweepwright::platform {

namespace {

/// A folder that others fill while it is emptied is listed again this often.
constexpr int kMaxAttempts = 16;
/// Open directories that a thread keeps for its next steps.
constexpr std::size_t kKeptOpen = 6;
/// A way down of more levels is opened in stages, so that a climb back up a deep tree does not
/// start from the top at each step.
constexpr std::size_t kStage = 64;

/// A directory whose removal has begun. It goes when the last of its subdirectories has gone.
struct Node {
    Node() = default;
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;
    ~Node();

    std::shared_ptr<Node> parent;  ///< none: it is an entry of the directory we start from
    std::string name;
    int depth = 0;       ///< of its entries, as a walk counts it
    bool counts = true;  ///< neither it nor a directory above it is left out of the count
    int attempt = 0;     ///< how often it turned out not to be empty
    PackedNames subdirectories;
    std::optional<Error> listingError;
    std::atomic<bool> keepsSomething{false};
    std::atomic<std::size_t> unfinished{1};  ///< subdirectories, and its own listing
};

using NodePointer = std::shared_ptr<Node>;

/// Releases the nodes above one after the other: a chain of thousands that let go of each other
/// would need more stack than a thread may have.
Node::~Node() {
    static thread_local NodePointer* next = nullptr;
    if (next != nullptr) {
        *next = std::move(parent);
        return;
    }
    NodePointer above = std::move(parent);
    next = &above;
    while (above)
        NodePointer(std::move(above)).reset();
    next = nullptr;
}

struct PendingFolder {
    NodePointer parent;
    std::string name;
    int attempt = 0;
};

/// What all threads of one removal share.
struct Run {
    FileManager& files;
    const WalkRules& rules;
    const Directory& start;
    std::atomic<std::uint64_t> bytes{0};
    std::mutex mutex{};
    std::optional<Error> firstError{};
    std::vector<std::string> mountPoints{};

    void fail(const Error& error) {
        const std::lock_guard lock(mutex);
        if (!firstError) firstError = error;
    }
    void keepMountPoint(std::string path) {
        const std::lock_guard lock(mutex);
        mountPoints.push_back(std::move(path));
    }
    [[nodiscard]] bool isCounted(std::string_view name) const {
        return rules.countHiddenEntries || !name.starts_with('.');
    }
};

/// Whether an entry that is busy, or can't be entered, is so because something is mounted there.
bool isMountPoint(FileManager& files, const Directory& directory, std::string_view name) {
    if (const auto attributes = files.attributesAt(directory, name);
        attributes && attributes->isMountPoint)
        return true;
    const auto opened = files.openBeneath(directory, name, Mounts::Refuse);
    return !opened && opened.error().code == EXDEV;
}

/// The directories that one thread has open.
class OpenDirectories {
  public:
    explicit OpenDirectories(Run& run) : run_(&run) {}

    /// The open directory of `node`, or of the start for none; valid until the next call.
    Result<const Directory*> of(const NodePointer& node) {
        if (!node) return &run_->start;
        if (const Directory* kept = find(node)) return kept;
        std::string relative = node->name;
        NodePointer above = node->parent;
        for (std::size_t levels = 1; above && find(above) == nullptr && levels < kStage; ++levels) {
            relative.insert(0, above->name + "/");
            above = above->parent;
        }
        const auto base = of(above);
        if (!base) return base;
        auto opened = run_->files.openBeneath(**base, relative, Mounts::Refuse);
        if (!opened) return std::unexpected(opened.error());
        return keep(node, std::move(*opened));
    }

    const Directory* keep(NodePointer node, Directory directory) {
        kept_.emplace_front(std::move(node), std::move(directory));
        if (kept_.size() > kKeptOpen) kept_.pop_back();
        return &kept_.front().second;
    }

    void closeAll() { kept_.clear(); }

  private:
    const Directory* find(const NodePointer& node) {
        const auto at = std::ranges::find(kept_, node, &Kept::first);
        if (at == kept_.end()) return nullptr;
        kept_.splice(kept_.begin(), kept_, at);
        return &kept_.front().second;
    }

    using Kept = std::pair<NodePointer, Directory>;
    Run* run_;
    std::list<Kept> kept_;  // most recently used first
};

/// One thread's share of a removal.
class Remover {
  public:
    explicit Remover(Run& run) : run_(&run), opened_(run) {}

    void operator()(PendingFolder first, SharedWork<PendingFolder>& shared) {
        visit(std::move(first));
        while (!stack_.empty() || !again_.empty()) {
            if (!again_.empty()) {
                PendingFolder next = std::move(again_.back());
                again_.pop_back();
                visit(std::move(next));
            } else if (stack_.back()->subdirectories.empty()) {
                stack_.pop_back();
            } else {
                visit({stack_.back(), stack_.back()->subdirectories.take()});
                giveAway(shared);
            }
        }
        opened_.closeAll();
        run_->bytes.fetch_add(std::exchange(bytes_, 0), std::memory_order_relaxed);
    }

  private:
    void giveAway(SharedWork<PendingFolder>& shared) {
        while (!stack_.empty() && stack_.back()->subdirectories.empty())
            stack_.pop_back();
        for (const NodePointer& node : stack_) {
            const bool newest = node == stack_.back();
            while (newest ? node->subdirectories.holdsSeveral() : !node->subdirectories.empty()) {
                if (!shared.wantsMore()) return;
                shared.give({node, node->subdirectories.take()});
            }
        }
    }

    void visit(PendingFolder waiting) {
        auto node = std::make_shared<Node>();
        node->depth = waiting.parent ? waiting.parent->depth - 1 : run_->rules.maxDepth;
        node->counts = !waiting.parent || (waiting.parent->counts && run_->isCounted(waiting.name));
        node->parent = std::move(waiting.parent);
        node->name = std::move(waiting.name);
        node->attempt = waiting.attempt;

        if (const auto emptied = empty(node); !emptied) node->listingError = emptied.error();
        if (!node->subdirectories.empty()) stack_.push_back(node);
        finishOne(node);
    }

    /// Removes what is in `node` but its subdirectories, which it notes.
    Result<> empty(const NodePointer& node) {
        const auto above = opened_.of(node->parent);
        if (!above) return std::unexpected(above.error());
        if (node->counts && isLimit(*node) && run_->rules.onDepthLimit)
            run_->rules.onDepthLimit((*above)->pathOf(node->name));
        auto opened = run_->files.openBeneath(**above, node->name, Mounts::Refuse);
        if (!opened && opened.error().code == EXDEV) {
            node->keepsSomething = true;
            run_->keepMountPoint((*above)->pathOf(node->name));
            return {};
        }
        if (!opened) return std::unexpected(opened.error());
        for (;;) {
            const auto entries = run_->files.readEntries(*opened, buffer_);
            if (!entries) return std::unexpected(entries.error());
            if (entries->empty()) break;
            // In the order of inodes, which is that of the disk.
            std::ranges::sort(buffer_.entries, {}, &DirectoryEntry::inode);
            for (const DirectoryEntry& entry : buffer_.entries)
                remove(*opened, entry, *node);
        }
        if (!node->subdirectories.empty()) opened_.keep(node, std::move(*opened));
        return {};
    }

    void remove(const Directory& directory, const DirectoryEntry& entry, Node& node) {
        FileType type = entry.type;
        std::uint64_t size = 0;
        const bool counts = node.counts && node.depth > 0 && run_->isCounted(entry.name);
        if (type == FileType::Unknown || (counts && type == FileType::Regular) ||
            (counts && type == FileType::SymbolicLink && run_->rules.countLinks)) {
            if (const auto attributes = run_->files.attributesAt(directory, entry.name)) {
                type = attributes->type;
                if (counts && (type != FileType::SymbolicLink || run_->rules.countLinks))
                    size = attributes->size;
            }
        }
        if (type == FileType::Directory) return noteSubdirectory(node, entry.name);
        const auto removed = run_->files.removeFileAt(directory, entry.name);
        if (removed) {
            bytes_ += size;
        } else if (isDirectory(removed.error(), directory, entry.name)) {
            noteSubdirectory(node, entry.name);
        } else if (removed.error().code != ENOENT) {
            node.keepsSomething = true;
            fail(removed.error(), directory, entry.name);
        }
    }

    /// Tells why an entry stays.
    void fail(const Error& error, const Directory& directory, std::string_view name) {
        if (error.code == EBUSY && isMountPoint(run_->files, directory, name)) {
            run_->keepMountPoint(directory.pathOf(name));
        } else {
            run_->fail(error);
        }
    }

    /// Whether an entry could not be removed because it has become a directory, for which some
    /// systems say EPERM.
    bool isDirectory(const Error& error, const Directory& directory, std::string_view name) const {
        if (error.code != EPERM) return error.code == EISDIR;
        const auto attributes = run_->files.attributesAt(directory, name);
        return attributes && attributes->type == FileType::Directory;
    }

    /// Whether the count ends at `node`; told once, as a walk tells it.
    [[nodiscard]] bool isLimit(const Node& node) const {
        const bool isStart = !node.parent;
        return node.attempt == 0 && (node.depth == 0 || (isStart && node.depth < 0));
    }

    static void noteSubdirectory(Node& node, std::string_view name) {
        node.unfinished.fetch_add(1, std::memory_order_relaxed);
        node.subdirectories.add(name);
    }

    /// One of what `node` waits for is done; removes it, and those above it, when that was the
    /// last.
    void finishOne(NodePointer node) {
        while (node && node->unfinished.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            if (!node->keepsSomething) {
                const auto removed = removeEmptied(*node);
                if (!removed && isFilledAgain(*node, removed.error())) {
                    again_.push_back({node->parent, node->name, node->attempt + 1});
                    return;
                }
                if (!removed) {
                    node->keepsSomething = true;
                    failEmptied(*node, removed.error());
                }
            }
            if (node->keepsSomething && node->parent) node->parent->keepsSomething = true;
            node = node->parent;
        }
    }

    void failEmptied(const Node& node, const Error& error) {
        const auto above = opened_.of(node.parent);
        if (node.listingError || !above) {
            run_->fail(node.listingError.value_or(error));
        } else {
            fail(error, **above, node.name);  // something may have been mounted there meanwhile
        }
    }

    Result<> removeEmptied(const Node& node) {
        const auto above = opened_.of(node.parent);
        // What another has removed or taken away together with the folder it was in is gone too.
        if (!above && above.error().code == ENOENT) return {};
        if (!above) return std::unexpected(above.error());
        auto removed = run_->files.removeDirectoryAt(**above, node.name);
        // Swapped for a file or a link meanwhile: that goes as such.
        if (!removed && removed.error().code == ENOTDIR)
            removed = run_->files.removeFileAt(**above, node.name);
        if (!removed && removed.error().code == ENOENT) return {};
        return removed;
    }

    static bool isFilledAgain(const Node& node, const Error& error) {
        return !node.listingError && node.attempt + 1 < kMaxAttempts &&
               (error.code == ENOTEMPTY || error.code == EEXIST);
    }

    Run* run_;
    OpenDirectories opened_;
    std::vector<NodePointer> stack_;
    std::vector<PendingFolder> again_;
    EntryBuffer buffer_;
    std::uint64_t bytes_ = 0;
};

}  // namespace

Removal Removal::around(std::uint64_t bytes, std::vector<std::string> mountPoints) {
    Error error{std::string(kPosixErrorDomain), EXDEV, mountPoints.front() + ": is a mount point"};
    return {bytes, std::move(error), std::move(mountPoints), true};
}

TreeRemover::TreeRemover(FileManager& files, unsigned threads) : files_(files), threads_(threads) {}

Removal TreeRemover::remove(const Directory& parent, const std::string& name,
                            const WalkRules& rules) const {
    if (!isEntryName(name)) return {0, errorFromErrno(EINVAL, parent.pathOf(name))};
    const auto attributes = files_.attributesAt(parent, name);
    if (!attributes || attributes->type != FileType::Directory) {
        const auto removed = files_.removeFileAt(parent, name);
        if (!removed && removed.error().code == EBUSY && isMountPoint(files_, parent, name))
            return Removal::around(0, {parent.pathOf(name)});
        if (!removed) return {0, removed.error()};
        const bool counts =
            attributes && (attributes->type != FileType::SymbolicLink || rules.countLinks);
        return {counts ? attributes->size : 0, std::nullopt};
    }
    Run run{files_, rules, parent};
    SharedWork<PendingFolder>(threads_).run({nullptr, name}, [&run] { return Remover(run); });
    if (!run.firstError && !run.mountPoints.empty())
        return Removal::around(run.bytes, std::move(run.mountPoints));
    return {run.bytes, std::move(run.firstError), std::move(run.mountPoints)};
}

}  // namespace sweepwright::platform
