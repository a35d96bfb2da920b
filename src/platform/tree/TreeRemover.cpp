#include "platform/tree/TreeRemover.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <deque>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/files/SharedChain.h"
#include "platform/tree/internal/OpenDirectories.h"
#include "platform/tree/internal/SharedWork.h"

namespace sweepwright::platform {

namespace {

/// A folder that others fill while it is emptied is listed again this often.
constexpr int kMaxAttempts = 16;
/// Directories that a thread keeps open for what waits in them, and to be removed from.
constexpr std::size_t kKeptToEmpty = 4;

/// A directory whose removal has begun. It goes when the last of its subdirectories has gone.
struct Node {
    Node() = default;
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;
    ~Node() { releaseChain(std::move(parent)); }

    std::shared_ptr<Node> parent;  ///< none: it is an entry of the directory we start from
    PlacePointer place;
    int depth = 0;       ///< of its entries, as a walk counts it
    bool counts = true;  ///< neither it nor a directory above it is left out of the count
    std::atomic<bool> keepsSomething{false};
    int attempt = 0;  ///< how often it turned out not to be empty
    PackedNames subdirectories;
    std::unique_ptr<Error> listingError;
    std::atomic<std::size_t> unfinished{1};  ///< subdirectories, and its own listing
};

using NodePointer = std::shared_ptr<Node>;

struct PendingFolder {
    NodePointer parent;
    PlacePointer place;
    int attempt = 0;
};

/// What all threads of one removal share.
struct Run {
    FileManager& files;
    const WalkRules& rules;
    const Directory& start;
    Crew& crew;
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

/// One thread's share of a removal.
class Remover {
  public:
    explicit Remover(Run& run)
        : run_(&run),
          opened_(run.files, run.start, Mounts::Refuse, kKeptToEmpty),
          pace_(run.crew) {}

    void operator()(PendingFolder first, SharedWork<PendingFolder>& shared) {
        visit(std::move(first));
        while (!waiting_.empty() || !again_.empty()) {
            giveAway(shared);
            visit(takeNext());
        }
        opened_.closeAll();
        run_->bytes.fetch_add(std::exchange(bytes_, 0), std::memory_order_relaxed);
    }

  private:
    PendingFolder takeNext() {
        PendingFolder next;
        if (!again_.empty()) {
            next = std::move(again_.back());
            again_.pop_back();
            return next;
        }
        next = takeFrom(waiting_.back());
        if (waiting_.back()->subdirectories.empty()) waiting_.pop_back();
        return next;
    }

    static PendingFolder takeFrom(const NodePointer& node) {
        return {node, std::make_shared<const Place>(node->place, node->subdirectories.take())};
    }

    void giveAway(SharedWork<PendingFolder>& shared) {
        while (!waiting_.empty()) {
            const NodePointer& oldest = waiting_.front();
            const bool isNewest = waiting_.size() == 1;
            if ((isNewest && !oldest->subdirectories.holdsSeveral()) || !shared.wantsMore()) return;
            shared.give(takeFrom(oldest));
            if (oldest->subdirectories.empty()) waiting_.pop_front();
        }
    }

    void visit(PendingFolder waiting) {
        auto node = std::make_shared<Node>();
        node->depth = waiting.parent ? waiting.parent->depth - 1 : run_->rules.maxDepth;
        node->counts =
            !waiting.parent || (waiting.parent->counts && run_->isCounted(waiting.place->part()));
        node->parent = std::move(waiting.parent);
        node->place = std::move(waiting.place);
        node->attempt = waiting.attempt;

        if (const auto emptied = empty(node); !emptied)
            node->listingError = std::make_unique<Error>(emptied.error());
        if (!node->subdirectories.empty()) waiting_.push_back(node);
        finishOne(node);
    }

    /// Removes what is in `node` but its subdirectories, which it notes.
    Result<> empty(const NodePointer& node) {
        if (node->counts && isLimit(*node) && run_->rules.onDepthLimit)
            run_->rules.onDepthLimit(node->place->path());
        auto opened = opened_.open(node->place);
        if (!opened && opened.error().code == EXDEV) {
            node->keepsSomething = true;
            run_->keepMountPoint(node->place->path());
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
        if (!node->subdirectories.empty()) opened_.keep(std::move(*opened));
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
        pace_.step();
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
                    again_.push_back({node->parent, node->place, node->attempt + 1});
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
        if (node.listingError) return run_->fail(*node.listingError);
        // Something may have been mounted there meanwhile.
        const auto above = opened_.of(node.place->above());
        if (!above) return run_->fail(error);
        fail(error, **above, node.place->part());
    }

    Result<> removeEmptied(const Node& node) {
        const auto above = opened_.of(node.place->above());
        const std::string& name = node.place->part();
        // What another has removed or taken away together with the folder it was in is gone too.
        if (!above && above.error().code == ENOENT) return {};
        if (!above) return std::unexpected(above.error());
        auto removed = run_->files.removeDirectoryAt(**above, name);
        pace_.step();
        // Swapped for a file or a link meanwhile: that goes as such.
        if (!removed && removed.error().code == ENOTDIR)
            removed = run_->files.removeFileAt(**above, name);
        if (!removed && removed.error().code == ENOENT) return {};
        return removed;
    }

    static bool isFilledAgain(const Node& node, const Error& error) {
        return !node.listingError && node.attempt + 1 < kMaxAttempts &&
               (error.code == ENOTEMPTY || error.code == EEXIST);
    }

    Run* run_;
    OpenDirectories opened_;
    std::deque<NodePointer> waiting_;  // directories with subdirectories that wait
    std::vector<PendingFolder> again_;
    EntryBuffer buffer_;
    Pace pace_;
    std::uint64_t bytes_ = 0;
};

}  // namespace

Removal Removal::around(std::uint64_t bytes, std::vector<std::string> mountPoints) {
    Error error{std::string(kPosixErrorDomain), EXDEV, mountPoints.front() + ": is a mount point"};
    return {bytes, std::move(error), std::move(mountPoints), true};
}

TreeRemover::TreeRemover(FileManager& files, unsigned threads, std::shared_ptr<Crew> crew)
    : files_(files), threads_(threads), crew_(std::move(crew)) {}

Removal TreeRemover::remove(const Directory& parent, const std::string& name,
                            const WalkRules& rules) const {
    if (!isEntryName(name)) return {0, errorFromErrno(EINVAL, parent.pathOf(name))};
    const auto attributes = files_.attributesAt(parent, name);
    if (!attributes || attributes->type != FileType::Directory) {
        Pace pace(*crew_);
        const auto removed = files_.removeFileAt(parent, name);
        pace.step();
        if (!removed && removed.error().code == EBUSY && isMountPoint(files_, parent, name))
            return Removal::around(0, {parent.pathOf(name)});
        if (!removed) return {0, removed.error()};
        const bool counts =
            attributes && (attributes->type != FileType::SymbolicLink || rules.countLinks);
        return {counts ? attributes->size : 0, std::nullopt};
    }
    Run run{files_, rules, parent, *crew_};
    const auto top = std::make_shared<const Place>(parent.place(), name);
    SharedWork<PendingFolder>(*crew_, threads_).run({nullptr, top}, [&run] {
        return Remover(run);
    });
    if (!run.firstError && !run.mountPoints.empty())
        return Removal::around(run.bytes, std::move(run.mountPoints));
    return {run.bytes, std::move(run.firstError), std::move(run.mountPoints)};
}

}  // namespace sweepwright::platform
