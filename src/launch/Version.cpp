#include "launch/Version.h"

#include <fmt/format.h>

#include "VersionStamp.h"

namespace sweepwright::launch {

Version programVersion() {
    return {.number = stamp::kVersion, .commit = stamp::kCommit, .date = stamp::kDate};
}

std::string versionText(std::string_view program, const Version& version) {
    if (version.commit.empty()) return fmt::format("{} {}", program, version.number);
    return fmt::format("{} {} ({}, {})", program, version.number, version.commit, version.date);
}

}  // namespace sweepwright::launch
