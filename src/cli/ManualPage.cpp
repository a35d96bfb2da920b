#include "cli/ManualPage.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/ProgramDescription.h"
#include "cli/Text.h"
#include "launch/AppOptions.h"

namespace sweepwright::cli {

namespace {

/// A word or line with what mdoc would take for an escape made harmless; a dash stays a dash.
std::string escaped(std::string_view text) {
    std::string safe;
    for (const char c : text) {
        if (c == '\\') {
            safe += "\\e";
        } else if (c == '-') {
            safe += "\\-";
        } else {
            safe += c;
        }
    }
    return safe;
}

/// Words behind a macro, none of which is taken for a macro itself.
std::string arguments(std::string_view words) {
    std::string safe;
    while (!words.empty()) {
        const std::string_view word = words.substr(0, words.find(' '));
        words.remove_prefix(std::min(word.size() + 1, words.size()));
        const bool likeMacro =
            word.size() <= 3 && std::isalpha(static_cast<unsigned char>(word[0]));
        safe += (safe.empty() ? "" : " ") + std::string(likeMacro ? "\\&" : "") + escaped(word);
    }
    return safe;
}

/// "--limit" as "-limit", since Fl writes one dash.
std::string flag(std::string_view name) {
    return escaped(name.substr(1));
}

std::string optionWords(std::string_view name, std::string_view value) {
    std::string words = "Fl " + flag(name);
    return value.empty() ? words : fmt::format("{} Ar {}", words, arguments(value));
}

std::string usageLine(const Command& command) {
    std::string line = "Cm " + arguments(command.words);
    for (const Positional& positional : command.positionals) {
        const std::string word = arguments(positional.name) + (positional.many ? " ..." : "");
        line += positional.optional ? fmt::format(" Op Ar {}", word) : " Ar " + word;
    }
    return line;
}

std::string item(std::string_view head, std::string_view body) {
    return fmt::format(".It {}\n{}\n", head, mdocText(body));
}

std::string commandItem(const Command& command) {
    std::string text = item(usageLine(command), command.summary);
    std::string below;
    for (const Positional& positional : command.positionals) {
        std::string help = positional.help;
        if (!positional.choices.empty())
            help += fmt::format(": {}", fmt::join(positional.choices, ", "));
        below += item("Ar " + arguments(positional.name), help);
    }
    for (const Option& option : command.options)
        below += item(optionWords(option.name, option.value), option.help);
    if (!below.empty()) text += ".Bl -tag -width Ds -compact\n" + below + ".El\n";
    return text;
}

std::string commandSections(const Commands& commands) {
    std::vector<std::string> groups;
    for (const Command& command : commands) {
        if (std::ranges::find(groups, command.group) == groups.end())
            groups.push_back(command.group);
    }
    std::string text;
    for (const std::string& group : groups) {
        text += fmt::format(".Ss {}\n.Bl -tag -width Ds\n", group);
        for (const Command& command : commands)
            if (command.group == group) text += commandItem(command);
        text += ".El\n";
    }
    return text;
}

std::string globalOptionItems() {
    std::string text;
    for (const GlobalOption& option : globalOptions()) {
        const std::string letter =
            option.letter.empty() ? "" : fmt::format("Fl {} , ", flag(option.letter));
        text += item(letter + optionWords(option.name, option.value), option.help);
    }
    return text;
}

std::string statusItems() {
    std::string text;
    for (const ExitStatus& status : exitStatuses())
        text += item(status.status, status.meaning);
    return text;
}

std::string exampleLines(const Commands& commands) {
    std::string text;
    for (const Command& command : commands)
        for (const std::string& example : command.examples)
            text += escaped(example) + "\n";
    return text;
}

/// "November 21, 2026" of "2026-11-21", as .Dd wants it.
std::string longDate(const std::string& date) {
    constexpr std::array kMonths{"January",   "February", "March",    "April",
                                 "May",       "June",     "July",     "August",
                                 "September", "October",  "November", "December"};
    unsigned month = 0;
    unsigned day = 0;
    if (date.size() != 10) return date;
    std::from_chars(&date[5], &date[7], month);
    std::from_chars(&date[8], &date[10], day);
    if (month < 1 || month > kMonths.size()) return date;
    return fmt::format("{} {}, {}", kMonths.at(month - 1), day, date.substr(0, 4));
}

std::string beginning(std::string_view title, std::string_view name, std::string_view purpose,
                      const ManualFacts& facts) {
    return fmt::format(
        ".\\\" Made from the program's own tables of commands and options.\n"
        ".Dd {}\n.Dt {} 1\n.Os\n.Sh NAME\n.Nm {}\n.Nd {}\n.Sh SYNOPSIS\n.Nm\n",
        longDate(facts.date), title, name, purpose);
}

/// What both programs read and write beside the device.
constexpr std::string_view kEnvironment = R"(.Sh ENVIRONMENT
.Bl -tag -width Ds
.It Ev SWEEPWRIGHT_DEVICE_ROOT
The device root where
.Fl \-device\-root
is not given.
.It Ev SWEEPWRIGHT_HOME
The app's home directory on the device where
.Fl \-home
is not given.
.It Ev SWEEPWRIGHT_RESOURCES
The folder of texts and pictures, in place of the installed one.
.It Ev LC_ALL , LC_MESSAGES , LANG
The language that is wanted.
.El
.Sh FILES
.Bl -tag -width Ds
.It Pa $XDG_DATA_HOME/sweepwright/sample\-device
The sample device, by default below
.Pa ~/.local/share .
It is made when no device is named or connected, and may be deleted at any time.
.It Pa $XDG_RUNTIME_DIR/sweepwright
The connected devices, each mounted on a folder below it, and the name of the
one that is used where none is named.
.It Pa $XDG_STATE_HOME/sweepwright/{}.log
Diagnostics of the last calls, by default below
.Pa ~/.local/state .
.It Pa Library/Preferences/com.sweepwright.app.plist
On the device, below the app's home directory: protection lists, custom paths,
history and statistics.
.El
)";

constexpr std::string_view kCommandDescription = R"(.Op Ar OPTIONS
.Ar COMMAND
.Op Ar ARGS
.Sh DESCRIPTION
.Nm
measures what fills an iPhone or iPad and removes what can go: caches, temporary
files, web data, logs, crash reports and app leftovers.
It works on a device root: the folder that is the device's
.Pa / ,
where the device is mounted or was copied to.
.Pp
Nothing is removed without a question or
.Fl \-yes ,
nothing outside the device root is ever touched, and what the whitelists protect
stays.
What a clean would do is shown by its
.Fl \-dry\-run .
.Pp
On a terminal tables have headings and fit its width.
In a pipe they have neither, and every line is complete; control characters in
names are escaped.
Programs that need the very bytes read
.Fl \-json .
.Sh COMMANDS
)";

constexpr std::string_view kAppDescription = R"(.Op Ar OPTIONS
.Sh DESCRIPTION
.Nm
is the app that goes with
.Xr sweepctl 1 :
it shows in a window what fills an iPhone or iPad, and removes what can go.
It asks before it deletes.
Both programs share lists, history and statistics, which are stored on the
device.
.Sh OPTIONS
.Bl -tag -width Ds
)";

std::string ending(std::string_view other, const ManualFacts& facts) {
    return fmt::format(".Sh SEE ALSO\n.Xr {} 1\n.Pp\n.Lk {}\n", other, facts.website);
}

}  // namespace

std::string mdocText(std::string_view text) {
    std::string lines;
    while (!text.empty()) {
        const std::size_t end = text.find(". ");
        const bool more = end != std::string_view::npos;
        lines += wrapped(text.substr(0, more ? end + 1 : end), 76) + '\n';
        text.remove_prefix(more ? end + 2 : text.size());
    }
    std::string safe;
    for (std::size_t start = 0; start < lines.size();) {
        const std::size_t end = lines.find('\n', start);
        if (lines[start] == '.' || lines[start] == '\'') safe += "\\&";
        safe += escaped(std::string_view(lines).substr(start, end - start)) + '\n';
        start = end + 1;
    }
    return safe.substr(0, safe.empty() ? 0 : safe.size() - 1);
}

std::string commandManual(const Commands& commands, const ManualFacts& facts) {
    return beginning("SWEEPCTL", "sweepctl", programPurpose(), facts) +
           std::string(kCommandDescription) + commandSections(commands) +
           ".Sh OPTIONS\nThese may stand before or after the command.\n"
           ".Bl -tag -width Ds\n" +
           globalOptionItems() + ".El\n" + fmt::format(kEnvironment, "sweepctl") +
           ".Sh EXIT STATUS\n.Bl -tag -width Ds\n" + statusItems() +
           ".El\n.Sh EXAMPLES\n.Bd -literal -offset indent\n" + exampleLines(commands) + ".Ed\n" +
           ending("sweepwright", facts);
}

std::string appManual(const ManualFacts& facts) {
    std::string options;
    for (const launch::AppOption& option : launch::appOptions()) {
        const std::string letter =
            option.letter.empty() ? "" : fmt::format("Fl {} , ", option.letter);
        options +=
            item(letter + optionWords(fmt::format("--{}", option.name), option.value), option.help);
    }
    return beginning("SWEEPWRIGHT", "sweepwright",
                     "shows and cleans the storage of an iPhone or iPad", facts) +
           std::string(kAppDescription) + options + ".El\n" +
           fmt::format(kEnvironment, "sweepwright") + ending("sweepctl", facts);
}

}  // namespace sweepwright::cli
