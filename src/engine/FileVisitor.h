#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/files/FileManager.h"
#include "platform/tree/Unreadable.h"

namespace sweepwright {

/// Visits the files beneath a directory in listing order, links followed. A directory already on
/// the way down is not entered again, so that a link cycle ends where it closes; and only so many
/// links are followed, since a few dozen that lead to each other would make a walk without end.
class FileVisitor {
  public:
    /// Links to directories that one walk follows.
    static constexpr int kMaxFollowedLinks = 1'000;

    /// Hears of a file, with the attributes of the entry itself or nullptr when they can't be read;
    /// answers whether to go on.
    using Visit = std::function<bool(const std::string& path, const std::string& name,
                                     const platform::FileAttributes* attributes)>;
    /// Hears of a directory that lies too deep.
    using DepthLimit = std::function<void(const std::string& path)>;

    /// `files` must outlive this. What can't be read is passed by and told.
    FileVisitor(platform::FileManager& files, Visit visit, platform::UnreadableHandler onUnreadable,
                DepthLimit onDepthLimit = {});

    /// Entries of `directory` are at depth `maxDepth`. False when a visit asked to stop.
    bool walk(const std::string& directory, int maxDepth);

  private:
    bool visitEntries(const std::string& directory, int maxDepth);
    bool visitEntry(const std::string& path, const std::string& name, int maxDepth);

    platform::FileManager& files_;
    Visit visit_;
    platform::UnreadableHandler onUnreadable_;
    DepthLimit onDepthLimit_;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> way_;  ///< devices and inodes
    int followedLinks_ = 0;
};

}  // namespace sweepwright
