#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sweepwright::platform {

/// Big-endian UTF-16 as UTF-8; none when it is not well-formed: a surrogate alone, an odd byte.
std::optional<std::string> utf8FromUtf16(std::string_view bytes);

/// Well-formed UTF-8 as big-endian UTF-16.
std::string utf16FromUtf8(std::string_view text);

inline bool isHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
inline bool isLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// The code point that two surrogates make.
inline char32_t joinedSurrogates(char32_t high, char32_t low) {
    return 0x10000 + ((high - 0xD800) << 10U) + (low - 0xDC00);
}

}  // namespace sweepwright::platform
