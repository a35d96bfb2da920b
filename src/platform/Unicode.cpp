#include "platform/Unicode.h"

namespace sweepwright::platform {

void appendUtf8(std::string& out, char32_t codePoint) {
    if (codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF)) {
        codePoint = kReplacementCharacter;
    }
    const auto put = [&](char32_t value) {
        out += static_cast<char>(static_cast<unsigned char>(value));
    };
    const auto tail = [&](unsigned shift) { put(0x80U | ((codePoint >> shift) & 0x3FU)); };
    if (codePoint < 0x80) {
        put(codePoint);
    } else if (codePoint < 0x800) {
        put(0xC0U | codePoint >> 6U);
        tail(0);
    } else if (codePoint < 0x10000) {
        put(0xE0U | codePoint >> 12U);
        tail(6);
        tail(0);
    } else {
        put(0xF0U | codePoint >> 18U);
        tail(12);
        tail(6);
        tail(0);
    }
}

namespace {

/// Bytes of the well-formed sequence that `text` begins with; 0 when it begins with none.
std::size_t sequenceLength(std::string_view text) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned lead = byte(0);
    if (lead < 0x80) return 1;
    if (lead < 0xC2 || lead > 0xF4) return 0;
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (text.size() < length) return 0;
    unsigned least = 0x80;
    unsigned most = 0xBF;
    if (lead == 0xE0) least = 0xA0;
    if (lead == 0xED) most = 0x9F;
    if (lead == 0xF0) least = 0x90;
    if (lead == 0xF4) most = 0x8F;
    if (byte(1) < least || byte(1) > most) return 0;
    for (std::size_t at = 2; at < length; ++at) {
        if ((byte(at) & 0xC0U) != 0x80U) return 0;
    }
    return length;
}

}  // namespace

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = sequenceLength(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string utf8FromUtf16(std::string_view bytes, ByteOrder order) {
    const auto unit = [&](std::size_t at) {
        const char32_t first = static_cast<unsigned char>(bytes[at]);
        const char32_t second = static_cast<unsigned char>(bytes[at + 1]);
        return order == ByteOrder::BigEndian ? first << 8U | second : second << 8U | first;
    };
    std::string out;
    out.reserve(bytes.size());
    std::size_t at = 0;
    for (; at + 1 < bytes.size(); at += 2) {
        char32_t codePoint = unit(at);
        if (isHighSurrogate(codePoint) && at + 3 < bytes.size() && isLowSurrogate(unit(at + 2))) {
            codePoint = joinedSurrogates(codePoint, unit(at + 2));
            at += 2;
        }
        appendUtf8(out, codePoint);
    }
    if (at < bytes.size()) appendUtf8(out, kReplacementCharacter);
    return out;
}

}  // namespace sweepwright::platform
