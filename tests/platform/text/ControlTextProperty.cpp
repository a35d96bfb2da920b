// What may be shown of any bytes on a terminal, checked byte by byte.
#include <string>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "platform/text/ControlText.h"
#include "platform/text/Utf8.h"

namespace sweepwright::platform {
namespace {

/// Bytes in which the sequences that act on a terminal are frequent.
rc::Gen<std::string> names() {
    const auto pieces = rc::gen::container<std::vector<std::string>>(rc::gen::oneOf(
        rc::gen::element<std::string>("\x1b[2J", "\x1b]0;title\x07", "\n", "\r", "\b", "\x7f",
                                      "\xC2\x9B", "\xC2\x85", "\x9B", "\xE2\x80\xA8",
                                      "\xE2\x80\xAE", "\xE2\x81\xA9", "\xD8\x9C", "清", "🧹", "é",
                                      "\\x1B", std::string(1, '\0')),
        rc::gen::arbitrary<std::string>()));
    return rc::gen::map(pieces, [](const std::vector<std::string>& some) {
        std::string joined;
        for (const std::string& piece : some)
            joined += piece;
        return joined;
    });
}

RC_GTEST_PROP(ControlTextProperty, NoBytesCanActOnATerminal, ()) {
    const std::string shown = escapedControls(*names());
    RC_ASSERT(isUtf8(shown));
    for (std::size_t at = 0; at < shown.size(); ++at) {
        const auto byte = static_cast<unsigned char>(shown[at]);
        RC_ASSERT(byte >= 0x20 && byte != 0x7F);
        // The controls above ASCII, U+0080 to U+009F, are C2 and a byte below A0.
        if (byte == 0xC2) RC_ASSERT(static_cast<unsigned char>(shown.at(at + 1)) >= 0xA0);
    }
    for (const char* mark :
         {"\xD8\x9C", "\xE2\x80\x8E", "\xE2\x80\x8F", "\xE2\x80\xA8", "\xE2\x80\xA9",
          "\xE2\x80\xAA", "\xE2\x80\xAB", "\xE2\x80\xAC", "\xE2\x80\xAD", "\xE2\x80\xAE",
          "\xE2\x81\xA6", "\xE2\x81\xA7", "\xE2\x81\xA8", "\xE2\x81\xA9"})
        RC_ASSERT(!shown.contains(mark));
}

RC_GTEST_PROP(ControlTextProperty, WhatIsFitToBeShownIsShownAsItIs, ()) {
    const std::string shown = escapedControls(*names());
    RC_ASSERT(escapedControls(shown) == shown);
}

}  // namespace
}  // namespace sweepwright::platform
