#pragma once

#include <string>
#include <vector>

#include "platform/base/Error.h"

namespace sweepwright::platform {

/// Whether a program of that name is on $PATH.
bool hasHostProgram(const std::string& name);

/// Runs a program of this computer, found on $PATH, with this process's streams and environment,
/// and waits for its end: its exit status, or 128 plus the number of the signal that ended it. No
/// shell reads the words.
Result<int> runHostProgram(const std::vector<std::string>& words);

}  // namespace sweepwright::platform
