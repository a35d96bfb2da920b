#pragma once

#include <string>

#include "cli/Command.h"
#include "cli/Output.h"

namespace sweepwright::cli {

/// The help about the program (`words` empty), a command, or the commands that begin with `words`;
/// empty when there are none.
std::string helpText(const Commands& commands, const std::string& words);

/// Shows such a text, or the document that holds it.
void showHelp(Output& output, const std::string& text);

}  // namespace sweepwright::cli
