#include "platform/ControlText.h"

#include <cstddef>
#include <cstdint>

#include <fmt/format.h>

namespace sweepwright::platform {

namespace {

struct Decoded {
    char32_t character = 0;
    std::size_t length = 0;  ///< bytes; 0 when they are not UTF-8
};

/// The character at the start of `text`, which is not empty.
Decoded decode(std::string_view text) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80) return {lead, 1};
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return {};
    char32_t character = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80) return {};
        character = (character << 6U) | (byte(i) & 0x3FU);
    }
    const bool tooLong = (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
    const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
    if (tooLong || surrogate || character > 0x10FFFF) return {};
    return {character, length};
}

bool isHarmful(char32_t c) {
    const bool control = c < 0x20 || (c >= 0x7F && c < 0xA0);
    const bool separator = c == 0x2028 || c == 0x2029;
    const bool turnsDirection =
        c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
    return control || separator || turnsDirection;
}

void appendEscaped(std::string& out, char32_t c) {
    switch (c) {
        case U'\n':
            out += "\\n";
            break;
        case U'\r':
            out += "\\r";
            break;
        case U'\t':
            out += "\\t";
            break;
        default: {
            const auto code = static_cast<std::uint32_t>(c);
            out += c < 0x80 ? fmt::format("\\x{:02X}", code) : fmt::format("\\u{{{:04X}}}", code);
        }
    }
}

}  // namespace

std::string escapedControls(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const Decoded next = decode(text);
        if (next.length == 0) {
            out += fmt::format("\\x{:02X}", static_cast<unsigned char>(text.front()));
            text.remove_prefix(1);
            continue;
        }
        if (isHarmful(next.character)) {
            appendEscaped(out, next.character);
        } else {
            out += text.substr(0, next.length);
        }
        text.remove_prefix(next.length);
    }
    return out;
}

}  // namespace sweepwright::platform
