#include "platform/text/Utf16.h"

#include "platform/text/Utf8.h"

namespace sweepwright::platform {

std::optional<std::string> utf8FromUtf16(std::string_view bytes) {
    const auto unit = [&](std::size_t at) {
        const char32_t high = static_cast<unsigned char>(bytes[at]);
        return high << 8U | static_cast<unsigned char>(bytes[at + 1]);
    };
    if (bytes.size() % 2 != 0) return std::nullopt;
    std::string text;
    text.reserve(bytes.size());
    for (std::size_t at = 0; at < bytes.size(); at += 2) {
        char32_t character = unit(at);
        if (isHighSurrogate(character) && at + 2 < bytes.size() && isLowSurrogate(unit(at + 2))) {
            at += 2;
            character = joinedSurrogates(character, unit(at));
        } else if (isHighSurrogate(character) || isLowSurrogate(character)) {
            return std::nullopt;
        }
        appendUtf8(text, character);
    }
    return text;
}

std::string utf16FromUtf8(std::string_view text) {
    std::string bytes;
    const auto append = [&](char32_t unit) {
        bytes += static_cast<char>(unit >> 8U);
        bytes += static_cast<char>(unit & 0xFFU);
    };
    while (!text.empty()) {
        const Utf8Character next = firstUtf8Character(text);
        if (next.code < 0x10000) {
            append(next.code);
        } else {
            append(0xD800 + ((next.code - 0x10000) >> 10U));
            append(0xDC00 + (next.code & 0x3FFU));
        }
        text.remove_prefix(next.bytes);
    }
    return bytes;
}

}  // namespace sweepwright::platform
