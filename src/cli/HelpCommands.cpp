#include <algorithm>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/Command.h"
#include "cli/Context.h"
#include "cli/Help.h"
#include "cli/Suggestion.h"
#include "cli/Translation.h"

namespace sweepwright::cli {

namespace {

Outcome help(Context& context, const Call& call) {
    const Commands commands = allCommands();
    const std::string words = fmt::format("{}", fmt::join(call.words("COMMAND"), " "));
    const std::string text = helpText(commands, words);
    if (!text.empty()) {
        showHelp(context.output(), text);
        return {};
    }
    std::vector<std::string> known(commands.size());
    std::ranges::transform(commands, known.begin(), &Command::words);
    const auto meant = nearest(words, known);
    return wrongWords(
        told("there is no command \"{}\"; {}", words,
             meant ? told("did you mean \"{}\"?", *meant) : told("see {} --help", "sweepctl")));
}

}  // namespace

void addHelpCommands(Commands& commands) {
    commands.push_back({.words = "help",
                        .group = "Try it out",
                        .summary = "tell about the program or a command",
                        .positionals = {{.name = "COMMAND",
                                         .help = "the words of a command",
                                         .many = true,
                                         .optional = true}},
                        .examples = {"sweepctl help clean"},
                        .needsDevice = false,
                        .run = help});
}

}  // namespace sweepwright::cli
