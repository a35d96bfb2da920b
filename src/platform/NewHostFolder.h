#pragma once

#include <string>

#include "platform/Error.h"

namespace sweepwright::platform {

/// A folder of the host that comes into being whole or not at all. It is filled in a staging
/// folder; finish() puts it in place. Without that, the staging folder goes and the target is as it
/// was before.
class NewHostFolder {
  public:
    /// Prepares `target`, a host path: absent, or an empty folder. Folders above an absent one are
    /// made and stay. Errors: ENOTEMPTY, ENOTDIR, EEXIST (a link that leads nowhere), or what the
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
    NewHostFolder(std::string target, std::string staging, bool targetExists);
    [[nodiscard]] Result<> moveEntries() const;
    std::string target_;
    std::string staging_;  ///< empty once there is nothing left to remove
    bool targetExists_;
};

}  // namespace sweepwright::platform
