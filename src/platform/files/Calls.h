#pragma once

namespace sweepwright::platform {

/// How the host's kernel is spoken to.
enum class Calls {
    Native,    ///< openat2, getdents64 and statx, each falling back where the kernel lacks it
    Portable,  ///< openat component by component, readdir and fstatat: any POSIX host
};

/// Native on Linux unless the environment sets SWEEPWRIGHT_PORTABLE_CALLS, else Portable.
Calls defaultCalls();

}  // namespace sweepwright::platform
