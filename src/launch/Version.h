#pragma once

#include <string>
#include <string_view>

namespace sweepwright::launch {

/// What the running program was built from.
struct Version {
    std::string_view number;  ///< "0.2.0"
    std::string_view commit;  ///< with "-dirty" where the checkout had changes; empty: not known
    std::string_view date;    ///< of the commit, "2026-11-21"; empty with it
};

/// This program's.
Version programVersion();

/// "sweepctl 0.2.0 (1a2b3c4d5e6f, 2026-11-21)", or without the brackets where no commit is known.
std::string versionText(std::string_view program, const Version& version = programVersion());

}  // namespace sweepwright::launch
