#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "platform/text/Utf8.h"

namespace sweepwright::platform {
namespace {

TEST(Utf8, TextOfEveryLengthOfSequenceIsWellFormed) {
    EXPECT_TRUE(isUtf8(""));
    EXPECT_TRUE(isUtf8("plain"));
    EXPECT_TRUE(isUtf8("é清🧹"));
    EXPECT_TRUE(isUtf8(std::string_view("\0", 1)));
}

TEST(Utf8, TheEdgesOfEachRangeAreWellFormed) {
    for (const char* edge : {"\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
                             "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"})
        EXPECT_TRUE(isUtf8(edge)) << testing::PrintToString(std::string(edge));
}

TEST(Utf8, OverlongFormsSurrogatesAndNumbersTooLargeAreNot) {
    for (const char* wrong : {"\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80",
                              "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF"})
        EXPECT_FALSE(isUtf8(wrong)) << testing::PrintToString(std::string(wrong));
}

TEST(Utf8, ASequenceCutShortIsNot) {
    for (const char* wrong : {"\xC3", "a\xE6\xB8", "\xF0\x9F\xA7", "\xC3(", "\xE6(\x85",
                              "\xE6\xB8(", "\xF0\x9F\xA7(", "\x80", "a\xBF"})
        EXPECT_FALSE(isUtf8(wrong)) << testing::PrintToString(std::string(wrong));
}

TEST(Utf8, AppendedCharactersAreWellFormedAtTheEdgesOfEachLength) {
    std::string text;
    for (const char32_t character :
         {U'\x7F', U'\x80', U'\x7FF', U'\x800', U'\xFFFF', U'\x10000', U'\x10FFFF'})
        appendUtf8(text, character);
    EXPECT_EQ(text, "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

}  // namespace
}  // namespace sweepwright::platform
