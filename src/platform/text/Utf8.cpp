#include "platform/text/Utf8.h"

namespace sweepwright::platform {
namespace {

/// What may follow a first byte: how many bytes, and the range of the first of them.
struct Form {
    std::size_t following = 0;
    unsigned low = 0x80;
    unsigned high = 0xBF;
};

constexpr std::size_t kNoForm = 4;

Form formOf(unsigned first) {
    if (first < 0x80) return {};
    if (first < 0xC2) return {.following = kNoForm};
    if (first < 0xE0) return {.following = 1};
    if (first == 0xE0) return {.following = 2, .low = 0xA0};
    if (first == 0xED) return {.following = 2, .high = 0x9F};
    if (first < 0xF0) return {.following = 2};
    if (first == 0xF0) return {.following = 3, .low = 0x90};
    if (first < 0xF4) return {.following = 3};
    if (first == 0xF4) return {.following = 3, .high = 0x8F};
    return {.following = kNoForm};
}

}  // namespace

Utf8Character firstUtf8Character(std::string_view text) {
    if (text.empty()) return {};
    const auto at = [&](std::size_t i) { return unsigned{static_cast<unsigned char>(text[i])}; };
    const Form form = formOf(at(0));
    if (form.following == kNoForm || text.size() <= form.following) return {};
    if (form.following == 0) return {at(0), 1};
    if (at(1) < form.low || at(1) > form.high) return {};
    char32_t code = at(0) & (0x3FU >> form.following);
    for (std::size_t i = 1; i <= form.following; ++i) {
        if ((at(i) & 0xC0U) != 0x80U) return {};
        code = (code << 6U) | (at(i) & 0x3FU);
    }
    return {code, form.following + 1};
}

bool isUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t length = firstUtf8Character(bytes).bytes;
        if (length == 0) return false;
        bytes.remove_prefix(length);
    }
    return true;
}

void appendUtf8(std::string& text, char32_t character) {
    const auto append = [&](char32_t byte) { text += static_cast<char>(byte); };
    const auto tail = [&](unsigned shift) { append(0x80U | ((character >> shift) & 0x3FU)); };
    if (character < 0x80U) {
        append(character);
    } else if (character < 0x800U) {
        append(0xC0U | (character >> 6U));
        tail(0);
    } else if (character < 0x10000U) {
        append(0xE0U | (character >> 12U));
        tail(6);
        tail(0);
    } else {
        append(0xF0U | (character >> 18U));
        tail(12);
        tail(6);
        tail(0);
    }
}

}  // namespace sweepwright::platform
