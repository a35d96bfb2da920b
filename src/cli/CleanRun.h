#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "cli/Context.h"
#include "cli/Failure.h"
#include "platform/base/Error.h"

namespace sweepwright::cli {

using CleanProgress = std::function<void(const std::string& item, double fraction)>;
using CleanCompletion = std::function<void(bool success, std::uint64_t cleanedBytes,
                                           const std::optional<platform::Error>& error)>;

/// A clean that runs elsewhere and reports on the main queue.
struct CleanJob {
    std::function<void(CleanProgress progress, CleanCompletion completion)> start;
    std::function<void()> stop;  ///< ends it after the entry in hand
    /// What it reports was measured before and counts what then failed to go, too.
    bool countsWhatWasThere = false;
};

/// Runs a clean of the context's engine or apps to its end or to the first interrupt, shows its
/// progress and tells what it freed.
Outcome runClean(Context& context, const CleanJob& job);

}  // namespace sweepwright::cli
