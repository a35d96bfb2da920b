#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace sweepwright::platform {

/// What stands for text that can't be read.
inline constexpr char32_t kReplacementCharacter = 0xFFFD;

enum class ByteOrder : std::uint8_t { LittleEndian, BigEndian };

/// UTF-16 as UTF-8. A lone surrogate and a last odd byte become the replacement character.
std::string utf8FromUtf16(std::string_view bytes, ByteOrder order);

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

/// A code unit that is no half of a pair, as a code point: itself, or the replacement character.
inline char32_t codePointOf(char32_t unit) {
    return isHighSurrogate(unit) || isLowSurrogate(unit) ? kReplacementCharacter : unit;
}

}  // namespace sweepwright::platform
