#pragma once

#include <string>
#include <vector>

#include "cli/Failure.h"

namespace sweepwright::cli {

/// Refuses paths by which a protection list could not recognise what it protects, since it compares
/// names: relative ones, "/" itself, ones with ".", ".." or doubled "/", and ones through
/// "/private" where "/var" leads there too. The failure is of status kWrongWords.
Outcome checkDevicePaths(const std::vector<std::string>& paths);

}  // namespace sweepwright::cli
