#include "cli/Help.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/Text.h"
#include "cli/Translation.h"

namespace sweepwright::cli {

namespace {

constexpr std::string_view kGlobalOptions =
    R"(Options, before or after the command:
  --device-root DIR   the folder that is the device's "/": where it is mounted
                      or was copied to ($SWEEPWRIGHT_DEVICE_ROOT); on a device
                      "/", elsewhere a sample device, made on first use
  --home PATH         the app's home directory on the device ($SWEEPWRIGHT_HOME)
  --tmp PATH          the temporary directory on the device (HOME/tmp)
  --idiom KIND        iphone or ipad (iphone)
  --json              one JSON document, and nothing else, on standard output
  --no-progress       no progress line
  -v, --verbose       the diagnostic log on standard error, too, and each folder
                      and entry that could not be read or removed
  -h, --help          this help, or a command's: sweepctl COMMAND --help
  --version           the version
)";

constexpr std::string_view kClosing =
    R"(Exit status:
  0  done
  1  the operation reported an error
  2  the words of the call are wrong
  3  the device root can't be used, or is no device
  4  done, but something that was to go could not be read or removed
  130, 143  stopped by an interrupt or a request to end

Nothing is removed without a question or --yes, nothing outside the device root
is ever touched, and what the whitelists protect stays.
)";

using Entry = std::pair<std::string, std::string>;

constexpr std::size_t kColumns = 80;
constexpr std::size_t kWidestName = 36;  ///< a longer name has its help on the next line

std::string entries(const std::vector<Entry>& list) {
    std::size_t width = 0;
    for (const auto& [name, help] : list) {
        if (name.size() <= kWidestName) width = std::max(width, name.size());
    }
    const std::size_t start = width + 4;
    std::string text;
    for (const auto& [name, help] : list) {
        text += fmt::format("  {:<{}}", name, width);
        text += name.size() > width ? "\n" + std::string(start, ' ') : "  ";
        text += wrapped(help, kColumns, start) + '\n';
    }
    return text;
}

std::string usage(const Command& command) {
    std::string text = command.words;
    for (const Positional& positional : command.positionals) {
        const std::string name = positional.name + (positional.many ? "..." : "");
        text += positional.optional ? fmt::format(" [{}]", name) : " " + name;
    }
    for (const Option& option : command.options) {
        text += fmt::format(" [{}{}]", option.name, option.value.empty() ? "" : " " + option.value);
    }
    return text;
}

/// The commands under their headings, in the order in which the headings first appear.
std::string commandList(const Commands& commands) {
    std::vector<std::string> groups;
    for (const Command& command : commands) {
        if (std::ranges::find(groups, command.group) == groups.end()) {
            groups.push_back(command.group);
        }
    }
    std::string text;
    for (const std::string& group : groups) {
        std::vector<Entry> list;
        for (const Command& command : commands) {
            if (command.group == group)
                list.emplace_back(usage(command), translated(command.summary));
        }
        text += fmt::format("{}\n{}\n", told("{}:", translated(group)), entries(list));
    }
    return text;
}

std::string exampleList(const std::vector<std::string>& examples) {
    return fmt::format("{}\n  {}\n", translated("Examples:"), fmt::join(examples, "\n  "));
}

std::string programHelp(const Commands& commands) {
    std::vector<std::string> examples;
    for (const Command& command : commands) {
        if (!command.examples.empty()) examples.push_back(command.examples.front());
    }
    return fmt::format("sweepctl - {}\n\n{} sweepctl [OPTIONS] COMMAND [ARGS]\n\n{}{}\n{}\n{}",
                       translated("measures and cleans the storage of an iPhone or iPad"),
                       translated("Usage:"), commandList(commands),
                       translated(kGlobalOptions, "options of every command"),
                       exampleList(examples), translated(kClosing, "exit statuses"));
}

std::string commandHelp(const Command& command) {
    std::string text =
        fmt::format("sweepctl {} - {}\n\n{} sweepctl [OPTIONS] {}\n", command.words,
                    translated(command.summary), translated("Usage:"), usage(command));
    std::vector<Entry> list;
    for (const Positional& positional : command.positionals) {
        std::string help = translated(positional.help);
        if (!positional.choices.empty()) {
            help += fmt::format(": {}", fmt::join(positional.choices, ", "));
        }
        list.emplace_back(positional.name, std::move(help));
    }
    for (const Option& option : command.options) {
        list.emplace_back(option.name + (option.value.empty() ? "" : " " + option.value),
                          translated(option.help));
    }
    if (!list.empty()) text += "\n" + entries(list);
    if (!command.examples.empty()) text += "\n" + exampleList(command.examples);
    return fmt::format("{}\n{}\n", text,
                       translated("The options of every command: sweepctl --help"));
}

}  // namespace

std::string helpText(const Commands& commands, const std::string& words) {
    if (words.empty()) return programHelp(commands);
    Commands below;
    const Command* exact = nullptr;
    for (const Command& command : commands) {
        if (command.words == words) exact = &command;
        if (command.words.starts_with(words + " ")) below.push_back(command);
    }
    std::string text = exact != nullptr ? commandHelp(*exact) : "";
    if (!below.empty()) text += (text.empty() ? "" : "\n") + commandList(below);
    return text;
}

void showHelp(Output& output, const std::string& text) {
    output.line(std::string_view(text).substr(0, text.size() - 1));
    output.document(Json{{"help", text}});
}

}  // namespace sweepwright::cli
