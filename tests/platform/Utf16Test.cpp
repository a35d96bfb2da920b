#include <gtest/gtest.h>

#include "platform/Utf16.h"

namespace sweepwright::platform {
namespace {

using namespace std::string_view_literals;

TEST(Utf16, EitherByteOrderIsRead) {
    EXPECT_EQ(utf8FromUtf16("A\0\x05\x6E\x3D\xD8\x12\xDD"sv, ByteOrder::LittleEndian), "A清🔒");
    EXPECT_EQ(utf8FromUtf16("\0A\x6E\x05\xD8\x3D\xDD\x12"sv, ByteOrder::BigEndian), "A清🔒");
}

TEST(Utf16, LoneSurrogatesAndAnOddByteBecomeTheReplacementCharacter) {
    EXPECT_EQ(utf8FromUtf16("\xD8\x3D\0A"sv, ByteOrder::BigEndian), "\uFFFDA");
    EXPECT_EQ(utf8FromUtf16("\xDD\x12"sv, ByteOrder::BigEndian), "\uFFFD");
    EXPECT_EQ(utf8FromUtf16("\xD8\x3D"sv, ByteOrder::BigEndian), "\uFFFD");
    EXPECT_EQ(utf8FromUtf16("\0A\0"sv, ByteOrder::BigEndian), "A\uFFFD");
}

}  // namespace
}  // namespace sweepwright::platform
