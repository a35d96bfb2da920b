#include "cli/Program.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "apps/AppNames.h"
#include "cli/Arguments.h"
#include "cli/Context.h"
#include "cli/Help.h"
#include "platform/Log.h"
#include "platform/Terminal.h"

namespace sweepwright::cli {

namespace {

constexpr const char* kVersion = SWEEPWRIGHT_VERSION;

/// Tells of a failure on standard error and, with --json, on standard output.
void report(Output& output, const Failure& failure) {
    complain(failure.error.description);
    if (!failure.documented) output.document(Json{{"error", errorValue(failure.error)}});
}

/// Opens the device the call names; wrong words about it are told from an unusable root.
Outcome openDevice(const Invocation& invocation) {
    const auto choice = launch::openCurrentDevice(invocation.global, launch::processEnvironment());
    if (!choice) {
        const bool words = choice.error().domain == platform::kDeviceOptionsErrorDomain;
        return std::unexpected(
            Failure{words ? kWrongWords : kDeviceUnusable, choice.error(), false});
    }
    if (choice->made) {
        complain(fmt::format("made a sample device of {} files ({}) in {}", choice->made->files,
                             sizeText(choice->made->bytes), choice->options.rootFolder));
    }
    return {};
}

Outcome runCommand(const Invocation& invocation, Context& context) {
    launch::startProgramLog("sweepctl", invocation.global.verbose, launch::processEnvironment());
    if (invocation.command->needsDevice) {
        if (auto opened = openDevice(invocation); !opened) return opened;
    }
    return invocation.command->run(context, invocation.call);
}

int runInvocation(const Invocation& invocation, Output& output) {
    const auto progress = Progress::onStandardError(invocation.progress);
    Interruption interruption([&progress] { progress->clear(); });
    Context context(output, *progress, interruption);
    const Outcome outcome = runCommand(invocation, context);
    progress->clear();
    platform::flushLog();
    int status = kDone;
    if (!outcome) {
        report(output, outcome.error());
        status = outcome.error().status;
    }
    if (const auto signal = interruption.signal()) status = kSignalBase + *signal;
    return status;
}

void showText(Output& output, const Commands& commands, const Invocation& invocation) {
    if (invocation.kind == Invocation::Kind::Help) {
        const std::string text = helpText(commands, invocation.commandWords);
        output.line(std::string_view(text).substr(0, text.size() - 1));
        output.document(Json{{"help", text}});
    } else {
        output.line(fmt::format("sweepctl {}", kVersion));
        output.document(Json{{"version", kVersion}});
    }
}

}  // namespace

int runProgram(const std::vector<std::string>& words) {
    const Commands commands = allCommands();
    const auto invocation = parseArguments(commands, words);
    const bool json = invocation ? invocation->json : asksForJson(words);
    Output output(json, platform::isTerminal(platform::StandardStream::Output),
                  [](const std::string& path) { return AppNames::sharedNames().ownerOf(path); });

    int status = kDone;
    if (!invocation) {
        report(output, invocation.error());
        status = invocation.error().status;
    } else if (invocation->kind == Invocation::Kind::Run) {
        status = runInvocation(*invocation, output);
    } else {
        showText(output, commands, *invocation);
    }
    if (auto written = output.flush(); !written) {
        // A reader that has gone (a pipe into `head`) has seen what it wanted.
        if (written.error().code != EPIPE) complain(written.error().description);
        if (status == kDone) status = kOperationFailed;
    }
    return status;
}

}  // namespace sweepwright::cli
