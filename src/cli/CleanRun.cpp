#include "cli/CleanRun.h"

#include <string>

#include <fmt/format.h>

#include "platform/DispatchQueue.h"

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
    job.start([&](const std::string& item,
                  double fraction) { context.progress().update(item, fraction); },
              [&](bool success, std::uint64_t bytes, const std::optional<platform::Error>& error) {
                  end = CleanEnd{success, bytes, error};
              });
    // Starting makes the job forget an earlier stop, so a stop can be asked for from here on.
    const Interruption::Stoppable stoppable(context.interruption(), job.stop);
    platform::MainQueue::shared().runUntil([&] { return end.has_value(); });
    context.progress().clear();
    return *end;
}

}  // namespace

Outcome runClean(Context& context, const CleanJob& job) {
    const CleanEnd end = awaitClean(context, job);
    Output& output = context.output();
    output.document(Json{{"success", end.success},
                         {"cleanedBytes", end.cleanedBytes},
                         {"error", end.error ? errorValue(*end.error) : Json(nullptr)}});
    const bool stopped = context.interruption().signal().has_value();
    output.line(fmt::format("freed {}{}", sizeText(end.cleanedBytes),
                            stopped ? " before it was interrupted" : ""));
    if (!end.error) return {};
    return std::unexpected(Failure{kOperationFailed, *end.error, true});
}

}  // namespace sweepwright::cli
