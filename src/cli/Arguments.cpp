// The only source that includes CLI11, whose headers take long to compile.
#include "cli/Arguments.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/ProgramDescription.h"
#include "cli/Suggestion.h"
#include "cli/Translation.h"

namespace sweepwright::cli {

namespace {

const std::string kProgram = "sweepctl";

/// The program or command that a message is about.
std::string calledAs(const std::string& commandWords) {
    return commandWords.empty() ? kProgram : commandWords;
}

std::string seeHelp(const std::string& commandWords) {
    return told("see {} --help",
                commandWords.empty() ? kProgram : fmt::format("{} {}", kProgram, commandWords));
}

/// The value of a switch that takes one; none when it is no word for yes or no.
std::optional<bool> readSwitch(std::string_view word) {
    const auto isOneOf = [&](std::initializer_list<std::string_view> words) {
        return std::ranges::find(words, word) != words.end();
    };
    if (isOneOf({"true", "yes", "on", "1"})) return true;
    if (isOneOf({"false", "no", "off", "0"})) return false;
    return std::nullopt;
}

/// The parser for one set of commands, made of their descriptions.
class Parser {
  public:
    explicit Parser(const Commands& commands) : commands_(commands) {
        app_.set_help_flag("");
        app_.require_subcommand(0, 1);
        app_.allow_extras();
        addGlobalOptions();
        for (const Command& command : commands_)
            addCommand(command);
    }

    std::expected<Invocation, Failure> parse(std::vector<std::string> words) {
        std::ranges::reverse(words);  // as CLI11 takes them
        try {
            app_.parse(std::move(words));
        } catch (const CLI::ParseError& error) {
            return wrongWords(fmt::format("{}; {}", error.what(), seeHelp("")));
        }
        const CLI::App& chosen = deepest();
        const std::string commandWords = nodeWords_.at(&chosen);
        Invocation invocation;
        invocation.commandWords = commandWords;
        if (auto read = readGlobalOptions(invocation); !read) return std::unexpected(read.error());
        if (invocation.kind != Invocation::Kind::Run) return invocation;
        if (auto checked = checkExtras(chosen, commandWords); !checked) {
            return std::unexpected(checked.error());
        }
        const auto found = commandOf_.find(&chosen);
        if (found == commandOf_.end()) return missingCommand(chosen, commandWords);
        invocation.command = found->second;
        auto read = readCommand(chosen, *found->second, invocation.call);
        if (!read) return std::unexpected(read.error());
        return invocation;
    }

  private:
    void addGlobalOptions() {
        for (const GlobalOption& option : globalOptions()) {
            const std::string names =
                option.letter.empty() ? option.name : option.letter + "," + option.name;
            if (!option.value.empty()) {
                // The last one counts, so that an alias can be overruled.
                app_.add_option(names)->take_last()->type_name("value");
            } else if (option.name == "--json") {
                app_.add_flag(names);  // takes a yes or a no
            } else {
                app_.add_flag(names)->disable_flag_override();
            }
        }
        nodeWords_[&app_] = "";
    }

    void addCommand(const Command& command) {
        CLI::App* node = &app_;
        std::string soFar;
        for (const std::string& word : CLI::detail::split(command.words, ' ')) {
            soFar += (soFar.empty() ? "" : " ") + word;
            CLI::App*& next = nodes_[soFar];
            if (next == nullptr) next = addNode(*node, word, soFar);
            node = next;
        }
        commandOf_[node] = &command;
        for (const Positional& positional : command.positionals) {
            CLI::Option* words = node->add_option(positional.name);
            if (positional.many) words->expected(1, -1)->allow_extra_args();
        }
        for (const Option& option : command.options) {
            if (option.value.empty()) {
                node->add_flag(option.name)->disable_flag_override();
            } else {
                node->add_option(option.name)->take_last()->type_name("value");
            }
        }
    }

    CLI::App* addNode(CLI::App& parent, const std::string& word, const std::string& words) {
        CLI::App* node = parent.add_subcommand(word)->fallthrough();
        node->set_help_flag("");
        node->require_subcommand(0, 1);
        nodeWords_[node] = words;
        return node;
    }

    [[nodiscard]] const CLI::App& deepest() const {
        const CLI::App* node = &app_;
        while (!node->get_subcommands().empty())
            node = node->get_subcommands().front();
        return *node;
    }

    [[nodiscard]] bool given(const std::string& option) const { return app_.count(option) > 0; }

    [[nodiscard]] std::optional<std::string> value(const std::string& option) const {
        if (!given(option)) return std::nullopt;
        return app_.get_option(option)->results().back();
    }

    Outcome readGlobalOptions(Invocation& invocation) const {
        if (const auto word = value("--json")) {
            const auto wanted = readSwitch(*word);
            if (!wanted) return wrongWords(told("--json is yes or no, not \"{}\"", *word));
            invocation.json = *wanted;
        }
        invocation.progress = !given("--no-progress");
        invocation.global.verbose = given("--verbose");
        invocation.global.deviceRoot = value("--device-root");
        invocation.global.home = value("--home");
        invocation.global.temporaryDirectory = value("--tmp");
        if (given("--help")) invocation.kind = Invocation::Kind::Help;
        if (given("--version")) invocation.kind = Invocation::Kind::Version;
        if (const auto idiom = value("--idiom")) {
            if (*idiom != "iphone" && *idiom != "ipad") {
                return wrongWords(told("--idiom must be iphone or ipad, not \"{}\"", *idiom));
            }
            invocation.global.idiom =
                *idiom == "ipad" ? platform::Idiom::Pad : platform::Idiom::Phone;
        }
        return {};
    }

    /// Refuses the first word that no description has a place for.
    [[nodiscard]] Outcome checkExtras(const CLI::App& chosen,
                                      const std::string& commandWords) const {
        const std::vector<std::string> extras = app_.remaining();
        if (extras.empty()) return {};
        const std::string& extra = extras.front();
        if (extra.size() > 1 && extra.starts_with('-')) {
            return wrongWords(told("{} has no option {}; {}", calledAs(commandWords), extra,
                                   seeHelp(commandWords)));
        }
        std::vector<std::string> known;
        for (const CLI::App* node : chosen.get_subcommands({}))
            known.push_back(node->get_name());
        if (known.empty()) {
            return wrongWords(told("{} has no use for \"{}\"; {}", calledAs(commandWords), extra,
                                   seeHelp(commandWords)));
        }
        const auto meant = nearest(extra, known);
        return wrongWords(
            told("{} has no command \"{}\"; {}", calledAs(commandWords), extra,
                 meant ? told("did you mean \"{}\"?", *meant) : seeHelp(commandWords)));
    }

    static std::unexpected<Failure> missingCommand(const CLI::App& chosen,
                                                   const std::string& commandWords) {
        std::vector<std::string> known;
        for (const CLI::App* node : chosen.get_subcommands({}))
            known.push_back(node->get_name());
        if (commandWords.empty()) return wrongWords(told("no command is given; {}", seeHelp("")));
        return wrongWords(told("{} needs one of: {}; {}", calledAs(commandWords),
                               fmt::join(known, ", "), seeHelp(commandWords)));
    }

    static Outcome readCommand(const CLI::App& node, const Command& command, Call& call) {
        for (const Positional& positional : command.positionals) {
            const auto words = node.get_option(positional.name)->results();
            if (auto good = checkWords(command, positional, words); !good) return good;
            call.setWords(positional.name, words);
        }
        for (const Option& option : command.options) {
            if (node.count(option.name) == 0) continue;
            if (option.value.empty()) {
                call.setOption(option.name, std::uint64_t{1});
                continue;
            }
            const std::string value = node.get_option(option.name)->results().back();
            if (option.isText) {
                if (value.empty()) return wrongWords(told("{} may not be empty", option.name));
                call.setOption(option.name, value);
                continue;
            }
            const auto number = readNumber(option, value);
            if (!number) return std::unexpected(number.error());
            call.setOption(option.name, *number);
        }
        return {};
    }

    static std::expected<std::uint64_t, Failure> readNumber(const Option& option,
                                                            const std::string& text) {
        std::uint64_t number = 0;
        const char* const end = text.data() + text.size();
        const auto [stop, bad] = std::from_chars(text.data(), end, number);
        if (bad == std::errc() && stop == end && number >= option.least && number <= option.most) {
            return number;
        }
        if (option.most == std::numeric_limits<std::uint64_t>::max())
            return wrongWords(told("{} must be a whole number of at least {}, not \"{}\"",
                                   option.name, option.least, text));
        return wrongWords(told("{} must be a whole number from {} to {}, not \"{}\"", option.name,
                               option.least, option.most, text));
    }

    static Outcome checkWords(const Command& command, const Positional& positional,
                              const std::vector<std::string>& words) {
        if (words.empty() && !positional.optional && !positional.choices.empty()) {
            return wrongWords(told("{} needs {}, one of {}; {}", calledAs(command.words),
                                   positional.name, fmt::join(positional.choices, ", "),
                                   seeHelp(command.words)));
        }
        if (words.empty() && !positional.optional) {
            return wrongWords(told("{} needs {}; {}", calledAs(command.words), positional.name,
                                   seeHelp(command.words)));
        }
        for (const std::string& word : words) {
            if (word.empty()) return wrongWords(told("{} may not be empty", positional.name));
            if (!positional.choices.empty() &&
                std::ranges::find(positional.choices, word) == positional.choices.end()) {
                return wrongWords(told("{} must be one of {}, not \"{}\"", positional.name,
                                       fmt::join(positional.choices, ", "), word));
            }
        }
        return {};
    }

    const Commands& commands_;
    CLI::App app_;
    std::map<std::string, CLI::App*> nodes_;
    std::map<const CLI::App*, std::string> nodeWords_;
    std::map<const CLI::App*, const Command*> commandOf_;
};

}  // namespace

std::expected<Invocation, Failure> parseArguments(const Commands& commands,
                                                  const std::vector<std::string>& words) {
    return Parser(commands).parse(words);
}

bool asksForJson(const std::vector<std::string>& words) {
    constexpr std::string_view kSwitch = "--json";
    bool wanted = false;
    for (const std::string_view word : words) {
        if (word == "--") break;
        if (word == kSwitch) wanted = true;
        if (word.starts_with("--json="))
            wanted = readSwitch(word.substr(kSwitch.size() + 1)).value_or(true);
    }
    return wanted;
}

}  // namespace sweepwright::cli
