#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/files/FileManager.h"
#include "platform/queue/Crew.h"
#include "platform/tree/Unreadable.h"

namespace sweepwright::platform {

/// Depth limit of every directory size in the product, in levels below and including the root.
inline constexpr int kDefaultMaxDepth = 100;

/// What a walk must leave out because it is protected. Asked from several threads at once.
class TreeProtection {
  public:
    virtual ~TreeProtection() = default;
    /// Whether `path` must be left out.
    virtual bool isProtected(const std::string& path) const = 0;
    /// Whether nothing in, at or above `path` can be protected, so that no entry beneath it need be
    /// asked about.
    virtual bool isFree(const std::string& path) const = 0;
};

/// What counts, and who hears of what was left out. The hooks run on the walk's threads.
struct WalkRules {
    bool countHiddenEntries = false;  ///< names that begin with "."
    bool countLinks = false;          ///< a link by its own size; never followed
    int maxDepth = kDefaultMaxDepth;  ///< entries of the root are at this depth
    Mounts mounts = Mounts::Cross;    ///< refused: a mount point counts 0 and is told
    const TreeProtection* protection = nullptr;
    std::function<void(const std::string& path)> onProtectedRoot;
    std::function<void(const std::string& path)> onProtectedEntry;
    std::function<void(const std::string& path)> onDepthLimit;
    std::function<void(const std::string& path)> onMountPoint;
    UnreadableHandler onUnreadable;  ///< whose content counts 0, or the part that can't be told
};

/// The one measurer of directories. It reads each directory once, on several threads, asks for the
/// size of regular files only and never follows a link; its memory does not grow
/// with the tree, but by a name for each level.
class TreeWalker {
  public:
    /// `threads` at most on a near device; the caller's is one of them, and the crew's help only
    /// when a tree proves large enough. `files` must outlive this.
    explicit TreeWalker(FileManager& files, unsigned threads = kDefaultThreads,
                        std::shared_ptr<Crew> crew = std::make_shared<Crew>());

    /// Warm, 2 cores are busy with 2 threads and 8 cost nothing more; cold, 8 keep the disk's queue
    /// filled and 16 gain nothing. A far device's calls are journeys, of which as many as the crew
    /// has threads are made at once.
    static constexpr unsigned kDefaultThreads = 8;

    /// Bytes of what counts beneath directory `path`. What can't be read counts 0 and is told; so
    /// counts, untold, a `path` that is itself a link: it could not be emptied either.
    [[nodiscard]] std::uint64_t sizeOfDirectory(const std::string& path,
                                                const WalkRules& rules) const;

    /// The same of an open directory that has not been read.
    [[nodiscard]] std::uint64_t sizeOfDirectory(Directory directory, const WalkRules& rules) const;

    /// Device paths of the mount points beneath an open directory, however deep, sorted. What lies
    /// behind them is not looked at; what can't be read holds none.
    [[nodiscard]] std::vector<std::string> mountPointsBeneath(const Directory& directory) const;

  private:
    /// Whether the rules let `path` be walked; tells why not.
    static bool admits(const WalkRules& rules, const std::string& path);
    std::uint64_t walk(Directory& root, const WalkRules& rules) const;

    FileManager& files_;
    unsigned threads_;
    std::shared_ptr<Crew> crew_;
};

}  // namespace sweepwright::platform
