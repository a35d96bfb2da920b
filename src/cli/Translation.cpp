#include "cli/Translation.h"

#include <optional>

#include <fmt/format.h>

#include "platform/log/Log.h"
#include "platform/process/Terminal.h"
#include "platform/system/ResourceBundle.h"

namespace sweepwright::cli {

namespace {

/// The folder of the texts in the language of this run; none for English.
std::optional<platform::ResourceBundle>& translations() {
    static std::optional<platform::ResourceBundle> folder;
    return folder;
}

}  // namespace

bool chineseIsWanted() {
    using platform::StandardStream;
    return platform::isTerminal(StandardStream::Output) &&
           platform::isTerminal(StandardStream::Error) && platform::localeIsUtf8() &&
           platform::localeLanguage() == "zh";
}

void speakChinese() {
    translations() = platform::ResourceBundle::main().folderResource("zh-Hans", "lproj");
}

std::string translated(std::string_view english) {
    return translated(english, english);
}

std::string translated(std::string_view english, std::string_view key) {
    const auto& folder = translations();
    return folder ? folder->localizedString(key, english, "CommandLine") : std::string(english);
}

std::string formatTranslated(std::string_view english, fmt::format_args arguments) {
    try {
        return fmt::vformat(translated(english), arguments);
    } catch (const fmt::format_error& error) {
        platform::log("⚠️ CommandLine.strings: {}: {}", english, error.what());
        return fmt::vformat(english, arguments);
    }
}

}  // namespace sweepwright::cli
