#pragma once

#include <expected>
#include <string>
#include <vector>

#include "cli/Command.h"
#include "cli/Failure.h"
#include "launch/GlobalOptions.h"

namespace sweepwright::cli {

/// One call of the program, understood.
struct Invocation {
    enum class Kind { Run, Help, Version };

    Kind kind = Kind::Run;
    launch::GlobalOptions global;
    bool json = false;
    bool progress = true;
    const Command* command = nullptr;  ///< set for Run; points into the commands given
    std::string commandWords;          ///< what help is wanted about; empty: the whole program
    Call call;
};

/// Understands `words` (without the program's name). Global options may stand before or after the
/// command; what follows "--" is never an option. A failure is of status kWrongWords.
std::expected<Invocation, Failure> parseArguments(const Commands& commands,
                                                  const std::vector<std::string>& words);

/// Whether `words` ask for JSON ("--json", "--json=1"), for telling of an error in them in that
/// form.
bool asksForJson(const std::vector<std::string>& words);

}  // namespace sweepwright::cli
