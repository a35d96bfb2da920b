#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "cli/Candidates.h"
#include "cli/Failure.h"

namespace sweepwright::cli {

class Context;

/// A word or words that a command takes by their place. Required unless `optional`.
struct Positional {
    std::string name;  ///< as help shows it: "PATH"
    std::string help;
    bool many = false;                   ///< one or more; only as the last
    bool optional = false;               ///< may be left out (none or more, with `many`)
    std::vector<std::string> choices{};  ///< the words allowed; empty: any that is not empty
    Candidates candidates{};             ///< words that a shell may offer; unset: none
    bool isHostFolder = false;           ///< names a folder of this computer
};

/// An option of one command.
struct Option {
    std::string name;   ///< "--limit"
    std::string value;  ///< what help calls its value, "N"; empty for a switch
    std::string help;
    bool isText = false;      ///< the value is any text that is not empty, else
    std::uint64_t least = 0;  ///< the value is a whole number, from this one ...
    std::uint64_t most = std::numeric_limits<std::uint64_t>::max();  ///< ... to this one
    Candidates candidates{};  ///< values that a shell may offer; unset: none
};

/// The words of one call, as the command's description sorts them.
class Call {
  public:
    /// Whether the switch or option was given.
    [[nodiscard]] bool has(const std::string& option) const { return options_.contains(option); }
    /// The number given with an option.
    [[nodiscard]] std::optional<std::uint64_t> number(const std::string& option) const;
    /// The text given with an option.
    [[nodiscard]] std::optional<std::string> text(const std::string& option) const;
    /// The words given for a positional; empty when it was left out.
    [[nodiscard]] const std::vector<std::string>& words(const std::string& positional) const;
    /// The one word given for a required positional.
    [[nodiscard]] const std::string& word(const std::string& positional) const {
        return words(positional).front();
    }

    void setOption(const std::string& option, std::uint64_t value) { options_[option] = value; }
    void setOption(const std::string& option, std::string text) {
        options_[option] = std::move(text);
    }
    void setWords(const std::string& positional, std::vector<std::string> words) {
        words_[positional] = std::move(words);
    }

  private:
    std::map<std::string, std::variant<std::uint64_t, std::string>> options_;  // a switch holds 1
    std::map<std::string, std::vector<std::string>> words_;
};

/// A command: what it is called and takes, and what it does. Parsing, help and completion are made
/// of this description, so that a new command is described once.
struct Command {
    std::string words;    ///< "whitelist paths add"
    std::string group;    ///< the heading it stands under in the help
    std::string summary;  ///< one line: "protect paths"
    std::vector<Positional> positionals{};
    std::vector<Option> options{};
    std::vector<std::string> examples{};  ///< whole lines of a call
    bool needsDevice = true;              ///< whether the device is opened before it runs
    std::function<Outcome(Context&, const Call&)> run;
};

using Commands = std::vector<Command>;

/// Every command, in the order of the help.
Commands allCommands();

/// What each source of commands adds.
void addConnectCommands(Commands& commands);
void addScanCommands(Commands& commands);
void addCleanCommands(Commands& commands);
void addLookCommands(Commands& commands);
void addAnalyzeCommands(Commands& commands);
void addAppCommands(Commands& commands);
void addHistoryCommands(Commands& commands);
void addLanguageCommands(Commands& commands);
void addProtectionCommands(Commands& commands);
void addSampleCommands(Commands& commands);
void addHelpCommands(Commands& commands);

}  // namespace sweepwright::cli
