#include "cli/CleanRun.h"

#include <string>

#include <fmt/format.h>

#include "cli/FailureReport.h"
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

/// "10 B"; "up to 10 B; 2 entries could not be removed" where the figure may hold what stayed.
std::string freedText(const CleanEnd& end, const CleanJob& job, const FailureList& failed) {
    const std::string size = sizeText(end.cleanedBytes);
    if (!job.countsWhatWasThere || failed.count == 0) return size;
    return fmt::format("up to {}; {} could not be removed", size, entriesText(failed.count));
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
    output.line(fmt::format("freed {}{}", freedText(end, job, failed),
                            stopped ? " before it was interrupted" : ""));
    if (end.error) return std::unexpected(Failure{kOperationFailed, *end.error, true});
    if (failed.count + failures.unreadableFolders().count > 0) return leftSomething();
    return {};
}

void showPreview(Output& output, const CleanPreview& preview) {
    Json entries = Json::array();
    Table table({Align::Left, Align::Right, Align::Left});
    for (const CleanPreview::Entry& entry : preview.entries) {
        Json value = Json::object();
        setPath(value, "path", entry.path);
        value["size"] = entry.size;
        entries.push_back(std::move(value));
        table.row({"remove", sizeText(entry.size), entry.path});
    }
    Json kept = Json::array();
    for (const CleanPreview::Kept& entry : preview.kept) {
        Json value = Json::object();
        setPath(value, "path", entry.path);
        value["reason"] = keptReasonName(entry.reason);
        setPath(value, "by", entry.by);
        kept.push_back(std::move(value));
        table.row({"keep", std::string(keptReasonName(entry.reason)), entry.path});
    }
    output.document(Json{{"wouldFree", preview.wouldFree},
                         {"entries", std::move(entries)},
                         {"kept", std::move(kept)}});
    output.table(table);
    output.line(fmt::format("would free {}", sizeText(preview.wouldFree)));
}

}  // namespace sweepwright::cli
