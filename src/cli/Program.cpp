#include "cli/Program.h"

#include <cstdio>
#include <memory>
#include <stop_token>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "apps/AppNames.h"
#include "cli/Arguments.h"
#include "cli/Completion.h"
#include "cli/Context.h"
#include "cli/FailureReport.h"
#include "cli/Help.h"
#include "cli/Translation.h"
#include "launch/Version.h"
#include "platform/log/Log.h"
#include "platform/process/Terminal.h"

namespace sweepwright::cli {

namespace {

/// Tells of a failure on standard error and, with --json, on standard output.
void report(Output& output, const Failure& failure) {
    if (failure.status != kLeftSomething) complain(failure.error.description);
    if (!failure.documented) output.document(Json{{"error", errorValue(failure.error)}});
}

/// Whoever names no device should not take what they see for their own.
std::string nameOf(const launch::DeviceChoice& choice) {
    if (choice.isSampleDevice) return told("the sample device in {}", choice.options.rootFolder);
    if (!choice.connection.empty()) return told("the connected device {}", choice.connection);
    return platform::runsOnDevice() ? translated("this device") : choice.options.rootFolder;
}

/// The device the call names; none of the sample device is left when its making is interrupted.
platform::Result<launch::DeviceChoice> chooseDevice(const Invocation& invocation,
                                                    Context& context) {
    std::stop_source stop;
    const Interruption::Stoppable stoppable(context.interruption(), [&] { stop.request_stop(); });
    return launch::chooseDevice(invocation.global, launch::processEnvironment(), stop.get_token());
}

/// Wrong words about the device are told from an unusable root.
std::unexpected<Failure> unusable(const platform::Error& error) {
    const bool words = error.domain == platform::kDeviceOptionsErrorDomain;
    return std::unexpected(Failure{words ? kWrongWords : kDeviceUnusable, error, false});
}

/// Opens the device the call names.
Outcome openDevice(const Invocation& invocation, Context& context) {
    const auto choice = chooseDevice(invocation, context);
    if (!choice) return unusable(choice.error());
    if (context.interruption().signal())
        return failed(
            {"CommandLine", kOperationFailed, translated("interrupted; nothing was done")});
    if (auto opened = launch::openCurrentDevice(choice->options); !opened)
        return unusable(opened.error());
    if (choice->made) {
        complain(told("made a sample device of {} files ({}) in {}", choice->made->files,
                      sizeText(choice->made->bytes), choice->options.rootFolder));
    }
    context.setDevice(nameOf(*choice));
    if (choice->isSampleDevice || !choice->connection.empty())
        remark(told("working on {}; --device-root names another", context.device()));
    return {};
}

Outcome runCommand(const Invocation& invocation, Context& context) {
    launch::startProgramLog("sweepctl", invocation.global.verbose, launch::processEnvironment());
    if (invocation.command->needsDevice) {
        if (auto opened = openDevice(invocation, context); !opened) return opened;
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
    tellFailures(output, context.failures(), invocation.global.verbose);
    if (const auto signal = interruption.signal()) status = kSignalBase + *signal;
    return status;
}

void showText(Output& output, const Commands& commands, const Invocation& invocation) {
    if (invocation.kind == Invocation::Kind::Help) {
        showHelp(output, helpText(commands, invocation.commandWords));
    } else {
        const launch::Version version = launch::programVersion();
        output.line(launch::versionText("sweepctl", version));
        const auto known = [](std::string_view text) {
            return text.empty() ? Json(nullptr) : Json(text);
        };
        output.document(Json{{"version", version.number},
                             {"commit", known(version.commit)},
                             {"date", known(version.date)}});
    }
}

}  // namespace

int runProgram(const std::vector<std::string>& words) {
    if (!asksForJson(words) && chineseIsWanted()) speakChinese();
    const Commands commands = allCommands();
    if (asksForCompletion(words)) return complete(commands, {words.begin() + 1, words.end()});
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
        if (!written.error().isBrokenPipe()) complain(written.error().description);
        if (status == kDone) status = kOperationFailed;
    }
    return status;
}

}  // namespace sweepwright::cli
