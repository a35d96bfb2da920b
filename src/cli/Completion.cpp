#include "cli/Completion.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/Output.h"
#include "cli/ProgramDescription.h"
#include "launch/GlobalOptions.h"

namespace sweepwright::cli {

namespace {

constexpr std::string_view kFolders = "folders";

using Words = std::vector<std::string>;

/// An option as completion needs it, whether of a command or of all.
struct KnownOption {
    std::string name;
    std::string letter{};
    std::string help;
    bool takesValue = false;
    Words choices{};
    Candidates candidates{};
    bool isHostFolder = false;
};

/// What is typed, sorted as the parser would sort it.
class Typed {
  public:
    Typed(const Commands& commands, const Words& words) : commands_(commands) {
        for (std::size_t i = 0; i + 1 < words.size(); ++i)
            take(words[i]);
        last_ = words.empty() ? "" : words.back();
    }

    /// What may stand in place of the last word; words that begin otherwise may be among them.
    std::vector<Candidate> candidates() {
        if (awaitsValue_) return values(*awaitsValue_, last_);
        if (!optionsEnded_ && last_.starts_with('-')) return optionsBegun();
        std::vector<Candidate> found;
        if (words_.empty() && !optionsEnded_) found = nextWords(path_);
        std::ranges::move(positionalWords(), std::back_inserter(found));
        return found;
    }

    [[nodiscard]] const std::string& last() const { return last_; }

  private:
    void take(const std::string& word) {
        if (awaitsValue_) {
            note(*awaitsValue_, word);
            awaitsValue_.reset();
        } else if (!optionsEnded_ && word == "--") {
            optionsEnded_ = true;
        } else if (!optionsEnded_ && word.size() > 1 && word.starts_with('-')) {
            takeOption(word);
        } else if (words_.empty() && !optionsEnded_ && leadsOn(extended(word))) {
            path_ = extended(word);
        } else {
            words_.push_back(word);
        }
    }

    void takeOption(const std::string& word) {
        const std::size_t equals = word.find('=');
        const auto option = optionNamed(word.substr(0, equals));
        if (!option || !option->takesValue) return;
        if (equals == std::string::npos) {
            awaitsValue_ = option;
        } else {
            note(*option, word.substr(equals + 1));
        }
    }

    /// Keeps what says which device is meant.
    void note(const KnownOption& option, const std::string& value) {
        if (option.name == "--device-root") device_.deviceRoot = withHome(value);
        if (option.name == "--home") device_.home = value;
        if (option.name == "--tmp") device_.temporaryDirectory = value;
    }

    /// Shells pass "~/phone" as it is typed.
    static std::string withHome(const std::string& folder) {
        const auto home = launch::processEnvironment()("HOME");
        if (!home || (folder != "~" && !folder.starts_with("~/"))) return folder;
        return *home + folder.substr(1);
    }

    [[nodiscard]] std::string extended(const std::string& word) const {
        return path_.empty() ? word : path_ + " " + word;
    }

    [[nodiscard]] bool leadsOn(const std::string& path) const {
        return std::ranges::any_of(commands_, [&](const Command& command) {
            return command.words == path || command.words.starts_with(path + " ");
        });
    }

    [[nodiscard]] const Command* command() const {
        const auto found = std::ranges::find(commands_, path_, &Command::words);
        return found == commands_.end() ? nullptr : &*found;
    }

    /// The words that lead on from `path` to commands.
    [[nodiscard]] std::vector<Candidate> nextWords(const std::string& path) const {
        const std::string start = path.empty() ? "" : path + " ";
        std::vector<Candidate> found;
        for (const Command& command : commands_) {
            if (!command.words.starts_with(start)) continue;
            const std::string rest = command.words.substr(start.size());
            const std::string word = rest.substr(0, rest.find(' '));
            if (std::ranges::find(found, word, &Candidate::word) != found.end()) continue;
            found.push_back({word, word == rest ? command.summary : ""});
        }
        return found;
    }

    std::vector<Candidate> positionalWords() {
        const Command* const chosen = command();
        if (chosen == nullptr || chosen->positionals.empty()) return {};
        // What help is about is a command, too.
        if (chosen->words == "help") return nextWords(fmt::format("{}", fmt::join(words_, " ")));
        const auto& places = chosen->positionals;
        if (words_.size() >= places.size() && !places.back().many) return {};
        const Positional& place = places[std::min(words_.size(), places.size() - 1)];
        if (place.isHostFolder) return {{"", std::string(kFolders)}};
        auto found =
            place.candidates ? onDevice(place.candidates, last_) : candidatesFrom(place.choices);
        std::erase_if(found, [this](const Candidate& candidate) {
            return std::ranges::find(words_, candidate.word) != words_.end();
        });
        return found;
    }

    [[nodiscard]] std::vector<KnownOption> options() const {
        std::vector<KnownOption> known;
        if (const Command* const chosen = command()) {
            for (const Option& option : chosen->options) {
                known.push_back({.name = option.name,
                                 .help = option.help,
                                 .takesValue = !option.value.empty(),
                                 .candidates = option.candidates});
            }
        }
        for (const GlobalOption& option : globalOptions()) {
            known.push_back({.name = option.name,
                             .letter = option.letter,
                             .help = option.help,
                             .takesValue = !option.value.empty(),
                             .choices = option.choices,
                             .candidates = option.isDevicePath ? devicePaths : Candidates(),
                             .isHostFolder = option.isHostFolder});
        }
        return known;
    }

    [[nodiscard]] std::optional<KnownOption> optionNamed(const std::string& name) const {
        for (const KnownOption& option : options())
            if (option.name == name || option.letter == name) return option;
        return std::nullopt;
    }

    /// For a word that begins with "-": names of options, or values behind "--name=".
    std::vector<Candidate> optionsBegun() {
        std::vector<Candidate> found;
        const std::size_t equals = last_.find('=');
        if (equals == std::string::npos) {
            for (const KnownOption& option : options())
                found.push_back({option.name, option.help});
            return found;
        }
        const auto option = optionNamed(last_.substr(0, equals));
        if (!option) return {};
        found = values(*option, last_.substr(equals + 1));
        for (Candidate& candidate : found) {
            if (!candidate.word.empty()) candidate.word.insert(0, option->name + "=");
        }
        return found;
    }

    std::vector<Candidate> values(const KnownOption& option, const std::string& begun) {
        if (option.isHostFolder) return {{"", std::string(kFolders)}};
        if (option.candidates) return onDevice(option.candidates, begun);
        return candidatesFrom(option.choices);
    }

    [[nodiscard]] std::vector<Candidate> onDevice(const Candidates& candidates,
                                                  const std::string& begun) const {
        const auto choice = launch::nameDevice(device_, launch::processEnvironment());
        if (!choice || !launch::openCurrentDevice(choice->options)) return {};
        return candidates(begun);
    }

    const Commands& commands_;
    launch::GlobalOptions device_;
    std::string path_;  ///< the words of a command so far
    Words words_;       ///< behind them
    std::string last_;
    bool optionsEnded_ = false;
    std::optional<KnownOption> awaitsValue_;
};

/// A name with control characters could not be typed, or would forge a line.
bool isPlain(const std::string& word) {
    return Output::shown(word) == word;
}

}  // namespace

bool asksForCompletion(const std::vector<std::string>& words) {
    return !words.empty() && words.front() == "complete";
}

int complete(const Commands& commands, const std::vector<std::string>& words) {
    Typed typed(commands, words);
    Output output(false, false);
    for (const Candidate& candidate : typed.candidates()) {
        if (!candidate.word.empty() && !candidate.word.starts_with(typed.last())) continue;
        if (!isPlain(candidate.word)) continue;
        const bool told = !candidate.help.empty();
        output.line(candidate.word + (told ? "\t" + Output::shown(candidate.help) : ""));
    }
    return output.flush() ? kDone : kOperationFailed;
}

}  // namespace sweepwright::cli
