#pragma once

#include <string>
#include <string_view>

namespace sweepwright::platform {

/// `text` fit for one line of a log or a terminal: control characters (escapes and newlines, which
/// a name could forge lines with), line separators, marks that turn the writing direction and bytes
/// that are not UTF-8 become "\n", "\t", "\r", "\xNN" or "\u{NNNN}".
std::string escapedControls(std::string_view text);

}  // namespace sweepwright::platform
