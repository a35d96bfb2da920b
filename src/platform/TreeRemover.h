#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/FileManager.h"
#include "platform/TreeWalker.h"

namespace sweepwright::platform {

/// What became of a removal.
struct Removal {
    /// Bytes of what went, by the rules given, each file's size taken right before it was removed.
    /// Of a removal that failed, what went before it failed.
    std::uint64_t bytes = 0;
    /// The first thing that could not be removed; none when all is gone.
    std::optional<Error> error;
};

/// Removes whole trees by descriptor: no link is followed, no mount point entered, and nothing
/// outside the directory it starts from is touched, whatever is renamed or swapped meanwhile.
class TreeRemover {
  public:
    explicit TreeRemover(FileManager& files, unsigned threads = kDefaultThreads);

    /// Two threads unlink in different directories at once; more wait for the same journal.
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
};

}  // namespace sweepwright::platform
