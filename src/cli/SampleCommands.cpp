#include <chrono>
#include <stop_token>

#include <fmt/format.h>

#include "cli/Command.h"
#include "cli/Context.h"
#include "cli/Translation.h"
#include "sample/SampleDevice.h"

namespace sweepwright::cli {

namespace {

Outcome makeSample(Context& context, const Call& call) {
    const std::string& folder = call.word("DIR");
    const auto scale = static_cast<unsigned>(call.number("--scale").value_or(1));
    std::stop_source stop;
    const Interruption::Stoppable stoppable(context.interruption(), [&] { stop.request_stop(); });
    context.progress().update(translated("making a sample device"), 0);
    const auto made =
        sample::makeSampleDevice(folder, scale, std::chrono::system_clock::now(), stop.get_token());
    context.progress().clear();
    if (!made) return failed(made.error());

    Output& output = context.output();
    Json document = Json::object();
    setPath(document, "root", folder);
    document["files"] = made->files;
    document["bytes"] = made->bytes;
    output.document(document);
    output.line(
        told("{} files, {}, in {}", made->files, sizeText(made->bytes), output.shown(folder)));
    return {};
}

}  // namespace

void addSampleCommands(Commands& commands) {
    commands.push_back({.words = "sample-device",
                        .group = "Try it out",
                        .summary = "make a sample device tree",
                        .positionals = {{.name = "DIR",
                                         .help = "a folder, absent or empty",
                                         .isHostFolder = true}},
                        .options = {{.name = "--scale",
                                     .value = "N",
                                     .help = "how many times as many files (1)",
                                     .least = 1,
                                     .most = 1000}},
                        .examples = {"sweepctl sample-device /tmp/phone"},
                        .needsDevice = false,
                        .run = makeSample});
}

}  // namespace sweepwright::cli
