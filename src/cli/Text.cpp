#include "cli/Text.h"

#include <algorithm>
#include <cstdint>
#include <ranges>
#include <span>
#include <vector>

#include <fmt/format.h>

#include "cli/Translation.h"
#include "platform/text/TextWidth.h"
#include "platform/text/Utf8.h"

namespace sweepwright::cli {

namespace {

using platform::Glyph;

/// How many of `glyphs` fit into `columns`.
template <class Glyphs>
std::size_t fitting(const Glyphs& glyphs, std::size_t columns) {
    std::size_t count = 0;
    for (const Glyph& glyph : glyphs) {
        if (glyph.columns > columns) break;
        columns -= glyph.columns;
        ++count;
    }
    return count;
}

std::string joined(std::span<const Glyph> glyphs) {
    std::string text;
    for (const Glyph& glyph : glyphs)
        text += glyph.bytes;
    return text;
}

/// `text` with what does not fit left out after its first `head` columns.
std::string cut(std::string_view text, std::size_t columns, std::size_t head,
                std::string_view ellipsis) {
    if (platform::displayWidth(text) <= columns) return std::string(text);
    const std::vector<Glyph> glyphs = platform::glyphsOf(text);
    const std::size_t first = fitting(glyphs, head);
    const std::size_t tail = columns - head - platform::displayWidth(ellipsis);
    const std::size_t last = fitting(glyphs | std::views::reverse, tail);
    return joined(std::span(glyphs).first(first)) + std::string(ellipsis) +
           joined(std::span(glyphs).last(last));
}

}  // namespace

std::string repeated(std::string_view piece, std::size_t times) {
    std::string text;
    for (std::size_t i = 0; i < times; ++i)
        text += piece;
    return text;
}

std::string cutAtEnd(std::string_view text, std::size_t columns, std::string_view ellipsis) {
    const std::size_t sign = platform::displayWidth(ellipsis);
    if (columns < sign) return cut(text, columns, columns, {});
    return cut(text, columns, columns - sign, ellipsis);
}

std::string cutInMiddle(std::string_view text, std::size_t columns, std::string_view ellipsis) {
    const std::size_t sign = platform::displayWidth(ellipsis);
    if (columns < sign + 2) return cutAtEnd(text, columns, ellipsis);
    return cut(text, columns, (columns - sign) / 3, ellipsis);
}

std::string wrapped(std::string_view text, std::size_t columns, std::size_t indent) {
    std::string lines;
    std::size_t column = indent;
    const auto breakLine = [&] {
        lines += '\n' + std::string(indent, ' ');
        column = indent;
    };
    while (!text.empty()) {
        const std::string_view word = text.substr(0, text.find(' '));
        text.remove_prefix(std::min(word.size() + 1, text.size()));
        if (column > indent && column + 1 + platform::displayWidth(word) > columns) {
            breakLine();
        } else if (column > indent) {
            lines += ' ';
            ++column;
        }
        for (const Glyph& glyph : platform::glyphsOf(word)) {
            if (column > indent && column + glyph.columns > columns) breakLine();
            lines += glyph.bytes;
            column += glyph.columns;
        }
    }
    return lines;
}

std::string replacingBadBytes(std::string_view bytes) {
    std::string text;
    while (!bytes.empty()) {
        const std::size_t length = platform::firstUtf8Character(bytes).bytes;
        text += length > 0 ? bytes.substr(0, length) : std::string_view("\uFFFD");
        bytes.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return text;
}

std::string base64(std::string_view bytes) {
    static constexpr std::string_view kDigits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t start = 0; start < bytes.size(); start += 3) {
        const std::string_view group = bytes.substr(start, 3);
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            bits = (bits << 8U) | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0U);
        }
        for (std::size_t i = 0; i < 4; ++i) {
            text += i <= group.size() ? kDigits[(bits >> (18 - 6 * i)) & 63U] : '=';
        }
    }
    return text;
}

std::string counted(std::uint64_t count, std::string_view one, std::string_view many) {
    return fmt::format("{} {}", count, translated(count == 1 ? one : many));
}

}  // namespace sweepwright::cli
