#pragma once

#include <string>
#include <string_view>

namespace sweepwright::platform {

/// Whether `bytes` is well-formed UTF-8: shortest forms, no surrogates, nothing above U+10FFFF.
bool isUtf8(std::string_view bytes);

/// Appends `character`, which is no surrogate, to `text`.
void appendUtf8(std::string& text, char32_t character);

}  // namespace sweepwright::platform
