#include "platform/Utf8.h"

#include <cstddef>

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

bool isUtf8(std::string_view bytes) {
    const auto at = [&](std::size_t i) { return unsigned{static_cast<unsigned char>(bytes[i])}; };
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const Form form = formOf(at(i));
        if (form.following == kNoForm || bytes.size() - i <= form.following) return false;
        if (form.following == 0) continue;
        if (at(i + 1) < form.low || at(i + 1) > form.high) return false;
        for (std::size_t k = 2; k <= form.following; ++k) {
            if ((at(i + k) & 0xC0U) != 0x80U) return false;
        }
        i += form.following;
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
