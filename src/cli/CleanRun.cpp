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

void showPreview(Output& output, const CleanPreview& preview) {
    Json entries = Json::array();
    Table table({{}, {.align = Align::Right}, {.holds = Holds::Path}});
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
