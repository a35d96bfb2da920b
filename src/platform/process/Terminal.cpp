#include "platform/process/Terminal.h"

#include <cstdlib>
#include <string>
#include <string_view>

#include <sys/ioctl.h>
#include <unistd.h>

#include "platform/text/PathText.h"

namespace sweepwright::platform {

namespace {

/// The environment's locale for one category; empty when it names none.
std::string localeOf(const char* category) {
    for (const char* name : {"LC_ALL", category, "LANG"}) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != '\0') return value;
    }
    return {};
}

}  // namespace

bool isTerminal(StandardStream stream) {
    return isatty(static_cast<int>(stream)) == 1;
}

bool terminalIsDumb() {
    const char* value = std::getenv("TERM");
    return value == nullptr || *value == '\0' || std::string_view(value) == "dumb";
}

std::size_t terminalColumns(StandardStream stream) {
    constexpr std::size_t kUsual = 80;
    winsize size{};
    if (ioctl(static_cast<int>(stream), TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsual;
    return size.ws_col;
}

bool localeIsUtf8() {
    const std::string locale = lowerCased(localeOf("LC_CTYPE"));
    return locale.contains("utf-8") || locale.contains("utf8");
}

std::string localeLanguage() {
    const std::string locale = localeOf("LC_MESSAGES");
    return locale.substr(0, locale.find_first_of("_.@"));
}

}  // namespace sweepwright::platform
