#pragma once

#include <string>

#include "cli/Command.h"

namespace sweepwright::cli {

/// The help about the program (`words` empty), a command, or the commands that begin with `words`.
std::string helpText(const Commands& commands, const std::string& words);

}  // namespace sweepwright::cli
