#pragma once

#include <string>
#include <string_view>

#include <fmt/core.h>

namespace sweepwright::cli {

/// The texts of the command line are written in English where they are used; that text is the key
/// of its translation in "CommandLine.strings" among the program's resources. A text without one
/// stays English.

/// Whether a person who reads both standard output and standard error, on a terminal, has asked for
/// Chinese by the locale. Pipes and documents are English whatever the locale, so that a script
/// reads the same words everywhere.
bool chineseIsWanted();

/// From here on translated() and told() give Chinese. Called at the start, before other threads
/// use them.
void speakChinese();

/// `english` in the language of this run.
std::string translated(std::string_view english);
/// The same for a word of two meanings, whose translation has a key of its own.
std::string translated(std::string_view english, std::string_view key);

/// The text made of an English format string's translation, whose placeholders are the same or
/// have numbers.
std::string formatTranslated(std::string_view english, fmt::format_args arguments);

/// The same with the English format string checked while it is compiled.
template <class... Arguments>
std::string told(fmt::format_string<Arguments...> english, const Arguments&... arguments) {
    const fmt::string_view text = english;
    return formatTranslated({text.data(), text.size()}, fmt::make_format_args(arguments...));
}

}  // namespace sweepwright::cli
