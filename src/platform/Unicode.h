#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace sweepwright::platform {

/// What stands for text that can't be read.
inline constexpr char32_t kReplacementCharacter = 0xFFFD;

/// Appends a code point as UTF-8; what is none (a surrogate, too large) as the replacement
/// character.
void appendUtf8(std::string& out, char32_t codePoint);

/// Whether `text` is well-formed UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
bool isUtf8(std::string_view text);

enum class ByteOrder : std::uint8_t { LittleEndian, BigEndian };

/// UTF-16 as UTF-8. A lone surrogate and a last odd byte become the replacement character.
std::string utf8FromUtf16(std::string_view bytes, ByteOrder order);

inline bool isHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
inline bool isLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}
inline char32_t joinedSurrogates(char32_t high, char32_t low) {
    return 0x10000 + ((high - 0xD800) << 10U) + (low - 0xDC00);
}

}  // namespace sweepwright::platform
