#pragma once

#include <span>
#include <string_view>

namespace sweepwright::launch {

/// An option of the app, as its help and its manual page tell of it. It stands here so that the
/// page can be written without Qt.
struct AppOption {
    std::string_view letter;  ///< "v"; empty for none
    std::string_view name;    ///< "device-root", without the dashes
    std::string_view value;   ///< what help calls its value; empty for a switch
    std::string_view help;
};

/// All of them, in the order of the help.
std::span<const AppOption> appOptions();

}  // namespace sweepwright::launch
