#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/text/TextWidth.h"

namespace sweepwright::platform {
namespace {

using testing::ElementsAre;

std::vector<std::string> partsOf(std::string_view text) {
    std::vector<std::string> parts;
    for (const Glyph& glyph : glyphsOf(text))
        parts.emplace_back(glyph.bytes);
    return parts;
}

TEST(TextWidth, WideCharactersTakeTwoColumns) {
    EXPECT_EQ(displayWidth(""), 0U);
    EXPECT_EQ(displayWidth("abc"), 3U);
    EXPECT_EQ(displayWidth("é…█"), 3U);
    EXPECT_EQ(displayWidth("缓存文件"), 8U);
    EXPECT_EQ(displayWidth("はなみカメラ"), 12U);
    EXPECT_EQ(displayWidth("나래"), 4U);
    EXPECT_EQ(displayWidth("，！"), 4U);
    EXPECT_EQ(displayWidth("🧹🎉"), 4U);
}

TEST(TextWidth, MarksThatCombineTakeNone) {
    EXPECT_EQ(displayWidth("e\u0301"), 1U);
    EXPECT_EQ(displayWidth("\u05E9\u05C1"), 1U);        // a Hebrew letter with its dot
    EXPECT_EQ(displayWidth("\u0E17\u0E35\u0E48"), 1U);  // a Thai letter with a vowel and a tone
    EXPECT_EQ(displayWidth("か\u3099"), 2U);
    EXPECT_EQ(displayWidth("a\u200Db\uFE0F"), 2U);
}

TEST(TextWidth, TerminalsGiveASpacingMarkAColumn) {
    EXPECT_EQ(displayWidth("\u0930\u0938\u094B\u0908"), 4U);  // "kitchen" in Hindi
}

TEST(TextWidth, AKoreanSyllableInLettersIsAsWideAsInOneCharacter) {
    EXPECT_EQ(displayWidth("\u1102\u1161\u1105\u1162"), displayWidth("나래"));
    EXPECT_EQ(displayWidth("\u1112\u1161\u11AB"), displayWidth("한"));
}

TEST(TextWidth, EachBadByteTakesOne) {
    EXPECT_EQ(displayWidth("\xFF"), 1U);
    EXPECT_EQ(displayWidth("a\xE6\xB8"), 3U);
}

TEST(TextWidth, AGlyphIsALetterWithItsMarksOrAnEmojiWithItsParts) {
    EXPECT_THAT(partsOf("ae\u0301b"), ElementsAre("a", "e\u0301", "b"));
    EXPECT_THAT(partsOf("缓存"), ElementsAre("缓", "存"));
    EXPECT_THAT(partsOf("👨\u200D👩\u200D👧x"), ElementsAre("👨\u200D👩\u200D👧", "x"));
    EXPECT_THAT(partsOf("\xFF\xFE"
                        "e\u0301"),
                ElementsAre("\xFF", "\xFE", "e\u0301"));
    EXPECT_THAT(partsOf("\u0301a"), ElementsAre("\u0301", "a"));
    EXPECT_THAT(partsOf(""), ElementsAre());
}

TEST(TextWidth, TheColumnsOfTheGlyphsAreThoseOfTheText) {
    for (const char* text : {"ae\u0301b", "缓存 x", "👨\u200D👩\u200D👧", "a\xFF"}) {
        std::size_t columns = 0;
        for (const Glyph& glyph : glyphsOf(text))
            columns += glyph.columns;
        EXPECT_EQ(columns, displayWidth(text)) << text;
    }
}

}  // namespace
}  // namespace sweepwright::platform
