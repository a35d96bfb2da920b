#include "platform/text/ControlText.h"

#include <cstddef>
#include <cstdint>

#include <fmt/format.h>

#include "platform/text/Utf8.h"

namespace sweepwright::platform {

namespace {

bool isHarmful(char32_t c) {
    const bool control = c < 0x20 || (c >= 0x7F && c < 0xA0);
    const bool separator = c == 0x2028 || c == 0x2029;
    const bool turnsDirection = c == 0x061C || c == 0x200E || c == 0x200F ||
                                (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
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
        const Utf8Character next = firstUtf8Character(text);
        if (next.bytes == 0) {
            out += fmt::format("\\x{:02X}", static_cast<unsigned char>(text.front()));
            text.remove_prefix(1);
            continue;
        }
        if (isHarmful(next.code)) {
            appendEscaped(out, next.code);
        } else {
            out += text.substr(0, next.bytes);
        }
        text.remove_prefix(next.bytes);
    }
    return out;
}

}  // namespace sweepwright::platform
