#pragma once

#include <string>
#include <vector>

namespace sweepwright::cli {

/// Runs the program with `words` (without its name) and answers its exit status.
int runProgram(const std::vector<std::string>& words);

}  // namespace sweepwright::cli
