#pragma once

#include <string_view>

namespace sweepwright::platform {

/// Whether `bytes` is well-formed UTF-8: shortest forms, no surrogates, nothing above U+10FFFF.
bool isUtf8(std::string_view bytes);

}  // namespace sweepwright::platform
