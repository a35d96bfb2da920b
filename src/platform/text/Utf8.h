#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace sweepwright::platform {

/// Whether `bytes` is well-formed UTF-8: shortest forms, no surrogates, nothing above U+10FFFF.
bool isUtf8(std::string_view bytes);

/// A character and how many bytes it took; 0 bytes when there is none.
struct Utf8Character {
    char32_t code = 0;
    std::size_t bytes = 0;
};

/// The character that `text` begins with; none when `text` is empty or begins with what is not
/// well-formed: then one may skip a byte and go on.
Utf8Character firstUtf8Character(std::string_view text);

/// Appends `character`, which is no surrogate, to `text`.
void appendUtf8(std::string& text, char32_t character);

}  // namespace sweepwright::platform
