#pragma once

#include <string>

#include "cli/Failure.h"

namespace sweepwright::cli {

/// Asks whether to do what can't be undone. `sure` (the person said --yes) needs no question. On a
/// terminal the question is put on standard error and only "y" or "yes" agrees: the failure is then
/// of status kOperationFailed. Without a terminal nobody can answer, and the failure is of status
/// kWrongWords.
Outcome confirm(const std::string& question, bool sure);

}  // namespace sweepwright::cli
