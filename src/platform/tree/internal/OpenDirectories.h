#pragma once

#include <cstddef>
#include <list>
#include <vector>

#include "platform/files/FileManager.h"

namespace sweepwright::platform {

/// The directories beneath a start that one thread of a walk or a removal has open. A directory is
/// opened from the nearest one above it that is, so that neither the way down a tree nor the way
/// back up costs more for its depth.
class OpenDirectories {
  public:
    /// `files` and `start` must outlive this; `kept` directories stay open for what is to be done
    /// in them.
    OpenDirectories(FileManager& files, const Directory& start, Mounts mounts, std::size_t kept)
        : files_(&files), start_(&start), mounts_(mounts), mostKept_(kept) {}

    /// Opens the directory at `place`, which lies beneath the start.
    Result<Directory> open(const PlacePointer& place);
    /// The same, or the start, out of what is open if it is; valid until the next call of any of
    /// these.
    Result<const Directory*> of(const PlacePointer& place);
    /// Keeps a directory open that of() will be asked for.
    void keep(Directory directory);
    void closeAll();

  private:
    /// A long way down is opened in stages of so many levels.
    static constexpr std::size_t kStage = 64;
    static constexpr std::size_t kMostStages = 20;

    using Way = std::vector<const PlacePointer*>;  // places, the deepest first

    /// The open directory at `place`, or none.
    const Directory* find(const PlacePointer& place);
    Result<const Directory*> openWay(const Directory* base, const Way& way);

    FileManager* files_;
    const Directory* start_;
    Mounts mounts_;
    std::size_t mostKept_;
    std::list<Directory> kept_;  // most recently used first
    // On the last long way down: where half of it, three quarters, … were behind us; the deepest
    // first. A climb back up goes on from the nearest of them.
    std::list<Directory> stages_;
};

}  // namespace sweepwright::platform
