#include "cli/Text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>

#include <fmt/format.h>

#include "platform/Utf8.h"

namespace sweepwright::cli {

namespace {

/// One step through bytes: a character, or one bad byte.
struct Character {
    char32_t code = 0;
    bool valid = false;
};

/// Calls `each(character, its bytes)` for all of `bytes`.
template <class Each>
void forEachCharacter(std::string_view bytes, Each each) {
    while (!bytes.empty()) {
        const platform::Utf8Character next = platform::firstUtf8Character(bytes);
        const std::string_view its = bytes.substr(0, std::max<std::size_t>(next.bytes, 1));
        each(Character{next.code, next.bytes > 0}, its);
        bytes.remove_prefix(its.size());
    }
}

struct Range {
    char32_t first;
    char32_t last;
};

bool isIn(std::span<const Range> ranges, char32_t code) {
    const auto above = std::ranges::upper_bound(ranges, code, {}, &Range::first);
    return above != ranges.begin() && code <= std::prev(above)->last;
}

constexpr auto kWide = std::to_array<Range>({
    {0x1100, 0x115F},   {0x231A, 0x231B},   {0x2329, 0x232A},   {0x23E9, 0x23EC},
    {0x23F0, 0x23F0},   {0x23F3, 0x23F3},   {0x25FD, 0x25FE},   {0x2614, 0x2615},
    {0x2648, 0x2653},   {0x267F, 0x267F},   {0x2693, 0x2693},   {0x26A1, 0x26A1},
    {0x26AA, 0x26AB},   {0x26BD, 0x26BE},   {0x26C4, 0x26C5},   {0x26CE, 0x26CE},
    {0x26D4, 0x26D4},   {0x26EA, 0x26EA},   {0x26F2, 0x26F3},   {0x26F5, 0x26F5},
    {0x26FA, 0x26FA},   {0x26FD, 0x26FD},   {0x2705, 0x2705},   {0x270A, 0x270B},
    {0x2728, 0x2728},   {0x274C, 0x274C},   {0x274E, 0x274E},   {0x2753, 0x2755},
    {0x2757, 0x2757},   {0x2795, 0x2797},   {0x27B0, 0x27B0},   {0x27BF, 0x27BF},
    {0x2B1B, 0x2B1C},   {0x2B50, 0x2B50},   {0x2B55, 0x2B55},   {0x2E80, 0x303E},
    {0x3041, 0x3247},   {0x3250, 0x4DBF},   {0x4E00, 0xA4C6},   {0xA960, 0xA97C},
    {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE10, 0xFE19},   {0xFE30, 0xFE6B},
    {0xFF01, 0xFF60},   {0xFFE0, 0xFFE6},   {0x16FE0, 0x16FE4}, {0x17000, 0x18CD5},
    {0x1AFF0, 0x1B2FB}, {0x1F004, 0x1F004}, {0x1F0CF, 0x1F0CF}, {0x1F18E, 0x1F18E},
    {0x1F191, 0x1F19A}, {0x1F200, 0x1F265}, {0x1F300, 0x1F320}, {0x1F32D, 0x1F335},
    {0x1F337, 0x1F37C}, {0x1F37E, 0x1F393}, {0x1F3A0, 0x1F3CA}, {0x1F3CF, 0x1F3D3},
    {0x1F3E0, 0x1F3F0}, {0x1F3F4, 0x1F3F4}, {0x1F3F8, 0x1F43E}, {0x1F440, 0x1F440},
    {0x1F442, 0x1F4FC}, {0x1F4FF, 0x1F53D}, {0x1F54B, 0x1F567}, {0x1F57A, 0x1F57A},
    {0x1F595, 0x1F596}, {0x1F5A4, 0x1F5A4}, {0x1F5FB, 0x1F64F}, {0x1F680, 0x1F6C5},
    {0x1F6CC, 0x1F6CC}, {0x1F6D0, 0x1F6D2}, {0x1F6D5, 0x1F6DF}, {0x1F6EB, 0x1F6EC},
    {0x1F6F4, 0x1F6FC}, {0x1F7E0, 0x1F7F0}, {0x1F90C, 0x1F93A}, {0x1F93C, 0x1F945},
    {0x1F947, 0x1F9FF}, {0x1FA70, 0x1FAFF}, {0x20000, 0x3FFFD},
});

constexpr auto kCombining = std::to_array<Range>({
    {0x0300, 0x036F}, {0x0483, 0x0489},   {0x0591, 0x05BD},   {0x05BF, 0x05BF}, {0x05C1, 0x05C2},
    {0x0610, 0x061A}, {0x064B, 0x065F},   {0x0670, 0x0670},   {0x06D6, 0x06DC}, {0x0900, 0x0902},
    {0x093C, 0x093C}, {0x0941, 0x0948},   {0x094D, 0x094D},   {0x0E31, 0x0E31}, {0x0E34, 0x0E3A},
    {0x0E47, 0x0E4E}, {0x1AB0, 0x1AFF},   {0x1DC0, 0x1DFF},   {0x200B, 0x200F}, {0x2060, 0x2064},
    {0x20D0, 0x20F0}, {0x302A, 0x302D},   {0x3099, 0x309A},   {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F},
    {0xFEFF, 0xFEFF}, {0xE0020, 0xE007F}, {0xE0100, 0xE01EF},
});

std::size_t widthOf(const Character& character) {
    if (!character.valid) return 1;
    if (isIn(kCombining, character.code)) return 0;
    return isIn(kWide, character.code) ? 2 : 1;
}

}  // namespace

std::string replacingBadBytes(std::string_view bytes) {
    std::string text;
    forEachCharacter(bytes, [&](const Character& character, std::string_view its) {
        text += character.valid ? its : std::string_view("\uFFFD");
    });
    return text;
}

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    forEachCharacter(
        text, [&](const Character& character, std::string_view) { width += widthOf(character); });
    return width;
}

std::string truncatedToWidth(std::string_view text, std::size_t columns) {
    if (displayWidth(text) <= columns) return std::string(text);
    if (columns == 0) return {};
    std::string cut;
    std::size_t width = 0;
    bool full = false;
    forEachCharacter(text, [&](const Character& character, std::string_view its) {
        width += widthOf(character);
        full = full || width > columns - 1;
        if (!full) cut += its;
    });
    return cut + "…";
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
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

}  // namespace sweepwright::cli
