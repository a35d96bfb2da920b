#pragma once

#include <cstddef>
#include <string>

#include "platform/base/Error.h"

namespace sweepwright::platform {

/// A folder of the host that comes into being whole or not at all. It is filled in a staging
/// folder; finish() puts it in place. Without that, the staging folder goes, so do the folders made
/// above it, and the target is as it was before.
class NewHostFolder {
  public:
    /// Prepares `target`, a host path: absent, or an empty folder. Folders above an absent one are
    /// made. Errors: ENOTEMPTY, ENOTDIR, EEXIST (a link that leads nowhere), or what the
    /// host says.
    static Result<NewHostFolder> begin(const std::string& target);

    ~NewHostFolder();
    NewHostFolder(NewHostFolder&& other) noexcept;
    NewHostFolder& operator=(NewHostFolder&& other) = delete;
    NewHostFolder(const NewHostFolder&) = delete;
    NewHostFolder& operator=(const NewHostFolder&) = delete;

    /// The folder to fill: empty, and nobody else's.
    [[nodiscard]] const std::string& staging() const { return staging_; }

    /// Puts what was filled in place. An absent target appears in one step; into one that was
    /// there, and may be somebody's current folder or a mount point, the entries are moved.
    Result<> finish();

  private:
    NewHostFolder(std::string target, bool targetExists);
    [[nodiscard]] Result<> makeFoldersAbove();
    void removeFoldersAbove() const;
    [[nodiscard]] Result<> moveEntries() const;
    std::string target_;
    std::string staging_;  ///< empty as long as, or once, there is none to remove
    bool targetExists_;
    std::size_t foldersMade_ = 0;  ///< how many of the folders right above the target
};

}  // namespace sweepwright::platform
