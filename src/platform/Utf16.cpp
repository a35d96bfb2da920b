#include "platform/Utf16.h"

#include "platform/Utf8.h"

namespace sweepwright::platform {

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
        const char32_t first = unit(at);
        if (isHighSurrogate(first) && at + 3 < bytes.size() && isLowSurrogate(unit(at + 2))) {
            appendUtf8(out, joinedSurrogates(first, unit(at + 2)));
            at += 2;
        } else {
            appendUtf8(out, codePointOf(first));
        }
    }
    if (at < bytes.size()) appendUtf8(out, kReplacementCharacter);
    return out;
}

}  // namespace sweepwright::platform
