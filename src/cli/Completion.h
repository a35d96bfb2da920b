#pragma once

#include <string>
#include <vector>

#include "cli/Command.h"

namespace sweepwright::cli {

/// "sweepctl complete WORD...", which shells call to complete what is typed behind "sweepctl". It
/// is no command for people: help and the manual leave it out.
bool asksForCompletion(const std::vector<std::string>& words);

/// Writes the words that may stand in place of the last of `words`, which may be empty, a line
/// each: the word and, after a tab, what it stands for. A line of a tab and "folders" asks the
/// shell for folders of this computer. Words with control characters are left out. Opens the device
/// that `words` or the environment names, where candidates lie on it; makes no sample device and
/// says nothing of what is wrong. The answer is the exit status.
int complete(const Commands& commands, const std::vector<std::string>& words);

}  // namespace sweepwright::cli
