#pragma once

#include "cli/Output.h"
#include "engine/Failures.h"

namespace sweepwright::cli {

/// "1 entry", "12 entries": what could not be removed.
std::string entriesText(std::size_t count);

/// Tells on standard error what a command could not read, remove or record: how many and the first,
/// or all, a line each, with `all` and where a document has no room for them. A document that is an
/// object gets all of them: "unreadable" and "failed", the numbers, "unreadableFolders" and
/// "failedEntries", arrays of {"path", "reason"}, and "recordError". What did not fail is not
/// there.
void tellFailures(Output& output, const Failures& failures, bool all);

}  // namespace sweepwright::cli
