#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/files/FileManager.h"
#include "platform/queue/Crew.h"
#include "platform/tree/TreeWalker.h"

namespace sweepwright::platform {

/// What became of a removal.
struct Removal {
    /// Bytes of what went, by the rules given, each file's size taken right before it was removed.
    /// Of a removal that failed, what went before it failed.
    std::uint64_t bytes = 0;
    /// The first thing that could not be removed, a mount point only if nothing else stayed; none
    /// when all is gone.
    std::optional<Error> error;
    /// Device paths of the mount points that were kept, with the folders on the way to them.
    std::vector<std::string> mountPoints{};
    /// Nothing else stayed.
    bool onlyMountPointsStay = false;

    /// What became of what holds, or is, these mount points and lost all else.
    static Removal around(std::uint64_t bytes, std::vector<std::string> mountPoints);
};

/// Removes whole trees by descriptor: no link is followed, no mount point entered or removed, and
/// nothing outside the directory it starts from is touched, whatever is renamed or swapped
/// meanwhile.
class TreeRemover {
  public:
    /// `threads` at most on a near device, as those of a walk.
    explicit TreeRemover(FileManager& files, unsigned threads = kDefaultThreads,
                         std::shared_ptr<Crew> crew = std::make_shared<Crew>());

    /// Two threads unlink in different directories at once; more wait for the same journal, unless
    /// what they wait for is a far device.
    static constexpr unsigned kDefaultThreads = 2;

    /// Removes entry `name` of `parent`: a file, a link, or a directory with all that is in it,
    /// however deep. `rules` say which bytes count beneath it, as in a walk that starts from it
    /// (protection is not asked here); a file counts whatever its name. Goes on past what can't be
    /// removed.
    [[nodiscard]] Removal remove(const Directory& parent, const std::string& name,
                                 const WalkRules& rules) const;

  private:
    FileManager& files_;
    unsigned threads_;
    std::shared_ptr<Crew> crew_;
};

}  // namespace sweepwright::platform
