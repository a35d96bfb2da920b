#include "cli/Help.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/ProgramDescription.h"
#include "cli/Text.h"
#include "cli/Translation.h"

namespace sweepwright::cli {

namespace {

using Entry = std::pair<std::string, std::string>;

constexpr std::size_t kColumns = 80;
constexpr std::size_t kWidestName = 36;  ///< a longer name has its help on the next line

/// Names and their help in two columns, the first at least `width` wide.
std::string entries(const std::vector<Entry>& list, std::size_t width = 0) {
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

std::string globalOptionList() {
    std::vector<Entry> list;
    for (const GlobalOption& option : globalOptions()) {
        list.emplace_back(
            fmt::format("{}{}{}{}{}", option.letter, option.letter.empty() ? "" : ", ", option.name,
                        option.value.empty() ? "" : " ", option.value),
            translated(option.help));
    }
    constexpr std::size_t kWidth = 18;
    return translated("Options, before or after the command:") + "\n" + entries(list, kWidth);
}

std::string closing() {
    std::string text = translated("Exit status:") + "\n";
    for (const ExitStatus& status : exitStatuses())
        text += fmt::format("  {}  {}\n", status.status, translated(status.meaning));
    return fmt::format("{}\n{}\n", text,
                       translated("Nothing is removed without a question or --yes, nothing outside "
                                  "the device root\nis ever touched, and what the whitelists "
                                  "protect stays."));
}

std::string programHelp(const Commands& commands) {
    std::vector<std::string> examples;
    for (const Command& command : commands) {
        if (!command.examples.empty()) examples.push_back(command.examples.front());
    }
    return fmt::format("sweepctl - {}\n\n{} sweepctl [OPTIONS] COMMAND [ARGS]\n\n{}{}\n{}\n{}",
                       translated(programPurpose()), translated("Usage:"), commandList(commands),
                       globalOptionList(), exampleList(examples), closing());
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
