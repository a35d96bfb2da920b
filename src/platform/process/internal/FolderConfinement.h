#pragma once

#include <string>

namespace sweepwright::platform {

/// Lets the kernel (Linux with Landlock) refuse changes outside one folder.
///
/// Confined are creating, removing, renaming, linking, opening for writing and, from Linux 6.2,
/// truncating. Reading and executing stay free everywhere, and so do what Landlock does not know:
/// modes, owners, dates and attributes of files, signals and sockets.
class FolderConfinement {
  public:
    /// Whether this host offers it to this process.
    static bool available();

    /// From now on the calling thread, and every process and thread it starts, can change files
    /// only beneath the host folder `writableFolder`, and write to "/dev/null". It can't be taken
    /// back; other threads that run already are not touched. No new privileges are gained by what
    /// the thread starts (set-user-id programs run as the caller).
    ///
    /// `writableFolder` is absolute and names the folder itself: if it is absent or a link stands
    /// anywhere on the way, nothing at all is writable, so that a folder swapped for a link never
    /// makes the link's target writable.
    ///
    /// Returns 0, or the errno value of what failed; the thread may then be confined in part.
    static int restrictThisThread(const std::string& writableFolder);
};

}  // namespace sweepwright::platform
