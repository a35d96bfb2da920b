#include <gtest/gtest.h>

#include "platform/text/Utf16.h"

namespace sweepwright::platform {
namespace {

using namespace std::string_view_literals;

TEST(Utf16, CharactersOfOneAndOfTwoUnitsAreReadAndWritten) {
    for (const auto& [utf8, utf16] :
         {std::pair("A清🔒"sv, "\0A\x6E\x05\xD8\x3D\xDD\x12"sv), std::pair(""sv, ""sv),
          std::pair("\uD7FF\uE000\uFFFF"sv, "\xD7\xFF\xE0\0\xFF\xFF"sv),
          std::pair("\U00010000\U0010FFFF"sv, "\xD8\0\xDC\0\xDB\xFF\xDF\xFF"sv)}) {
        EXPECT_EQ(utf8FromUtf16(utf16), utf8);
        EXPECT_EQ(utf16FromUtf8(utf8), utf16);
    }
}

TEST(Utf16, ALoneSurrogateAndAnOddByteAreNoText) {
    for (const auto bytes :
         {"\xD8\x3D\0A"sv, "\xDD\x12"sv, "\xD8\x3D"sv, "\xD8\x3D\xD8\x3D"sv, "\0A\0"sv}) {
        EXPECT_EQ(utf8FromUtf16(bytes), std::nullopt);
    }
}

}  // namespace
}  // namespace sweepwright::platform
