#include "cli/CleanRun.h"

#include <string>

#include <fmt/format.h>

#include "cli/FailureReport.h"
#include "cli/Text.h"
#include "cli/Translation.h"
#include "platform/queue/DispatchQueue.h"

namespace sweepwright::cli {

namespace {

struct CleanEnd {
    bool success = false;
    std::uint64_t cleanedBytes = 0;
    std::optional<platform::Error> error;
};

/// Turns the main queue until the clean has reported.
CleanEnd awaitClean(Context& context, const CleanJob& job) {
    std::optional<CleanEnd> end;
    const auto progress = [&](const std::string& item, double fraction) {
        context.progress().update(item, fraction);
    };
    const auto completion = [&](bool success, std::uint64_t bytes,
                                const std::optional<platform::Error>& error) {
        end = CleanEnd{success, bytes, error};
    };
    // Starting makes the job forget an earlier stop: a signal waits until it has started.
    const Interruption::Stoppable stoppable(context.interruption(), job.stop,
                                            [&] { job.start(progress, completion); });
    platform::MainQueue::shared().runUntil([&] { return end.has_value(); });
    context.progress().clear();
    return *end;
}

/// "10 B"; "up to 10 B; 2 entries could not be removed" where the figure may hold what stayed.
std::string freedText(const CleanEnd& end, const CleanJob& job, const FailureList& failed) {
    std::string size = sizeText(end.cleanedBytes);
    if (!job.countsWhatWasThere || failed.count == 0) return size;
    return told("up to {}; {} could not be removed", size,
                counted(failed.count, "entry", "entries"));
}

}  // namespace

Outcome runClean(Context& context, const CleanJob& job) {
    const CleanEnd end = awaitClean(context, job);
    Output& output = context.output();
    output.document(Json{{"success", end.success},
                         {"cleanedBytes", end.cleanedBytes},
                         {"error", end.error ? errorValue(*end.error) : Json(nullptr)}});
    const bool stopped = context.interruption().signal().has_value();
    const Failures& failures = context.failures();
    const FailureList failed = failures.failedEntries();
    const std::string freed = freedText(end, job, failed);
    output.line(stopped ? told("freed {} before it was interrupted", freed)
                        : told("freed {}", freed));
    if (end.error) return std::unexpected(Failure{kOperationFailed, *end.error, true});
    if (failed.count + failures.unreadableFolders().count > 0) return leftSomething();
    return {};
}

}  // namespace sweepwright::cli
