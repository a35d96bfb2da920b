#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "platform/plist/PropertyList.h"

namespace sweepwright::platform {
namespace {

using Array = PropertyList::Array;
using Data = PropertyList::Data;
using Dictionary = PropertyList::Dictionary;
using Limits = PropertyList::Limits;

std::string plist(const std::string& content) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n" +
           content + "\n</plist>\n";
}

/// What `content` reads as.
PropertyList read(const std::string& content) {
    const auto list = PropertyList::parse(plist(content));
    EXPECT_TRUE(list.has_value()) << content << "\n" << list.error().description;
    return list.value_or(PropertyList("unreadable"));
}

bool isRefused(const std::string& content) {
    const auto list = PropertyList::parse(plist(content));
    if (list) return false;
    EXPECT_EQ(list.error().domain, kFormatErrorDomain);
    return true;
}

std::string repeated(std::string_view text, std::size_t times) {
    std::string all;
    for (std::size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

TEST(PropertyListXml, ReadsWhatOtherProgramsWrite) {
    EXPECT_EQ(read("<dict>\n\t<key>CFBundleIdentifier</key>\n\t<string>com.example</string>\n"
                   "\t<key>Icons</key><array><string>a</string><integer> 7 </integer></array>"
                   "<key>Empty</key><dict/><key>None</key><array></array>"
                   "<key>On</key><true/><key>Off</key><false></false></dict>"),
              PropertyList(Dictionary{{"CFBundleIdentifier", "com.example"},
                                      {"Icons", Array{"a", 7}},
                                      {"Empty", Dictionary()},
                                      {"None", Array()},
                                      {"On", true},
                                      {"Off", false}}));
}

TEST(PropertyListXml, ReadsAListWithoutItsEnvelope) {
    EXPECT_EQ(PropertyList::parse("<array><true/></array>"), PropertyList(Array{true}));
    EXPECT_EQ(PropertyList::parse(" <string>x</string> "), PropertyList("x"));
}

TEST(PropertyListXml, SpaceMayStandBeforeTheDeclaration) {
    EXPECT_EQ(PropertyList::parse("\r\n\t " + plist("<true/>")), PropertyList(true));
}

TEST(PropertyListXml, TextKeepsItsSpacesAndLosesItsMarkup) {
    EXPECT_EQ(read("<string>  two  </string>"), PropertyList("  two  "));
    EXPECT_EQ(read("<string/>"), PropertyList(""));
    EXPECT_EQ(read("<string>&lt;&gt;&amp;&quot;&apos;&#233;&#x1F9F9;</string>"),
              PropertyList("<>&\"'é🧹"));
    EXPECT_EQ(read("<string>a<![CDATA[<b>&amp;]]>c<!-- </string> -->d</string>"),
              PropertyList("a<b>&amp;cd"));
    EXPECT_EQ(read("<string>a\r\nb\rc\n</string>"), PropertyList("a\nb\nc\n"));
    EXPECT_EQ(read("<dict><key>a&amp;b</key><true/></dict>"),
              PropertyList(Dictionary{{"a&b", true}}));
}

TEST(PropertyListXml, CommentsAndInstructionsMayStandAnywhere) {
    EXPECT_EQ(read("<!-- a > b --><array><?php x ?><!----><true/><!-- y --></array><!-- z -->"),
              PropertyList(Array{true}));
}

TEST(PropertyListXml, ReadsIntegers) {
    EXPECT_EQ(read("<integer>-9223372036854775808</integer>"),
              PropertyList(std::numeric_limits<std::int64_t>::min()));
    EXPECT_EQ(read("<integer>18446744073709551615</integer>"), PropertyList(~std::uint64_t{0}));
    EXPECT_EQ(read("<integer>0x1F</integer>"), PropertyList(31));
    EXPECT_EQ(read("<integer>-0x1f</integer>"), PropertyList(-31));
    EXPECT_EQ(read("<integer>+3</integer>"), PropertyList(3));
    for (const std::string wrong : {"", "x", "1x", "1 2", "--1", "-", "0x", "1.5",
                                    "18446744073709551616", "-9223372036854775809", "+-1"}) {
        EXPECT_TRUE(isRefused("<integer>" + wrong + "</integer>")) << wrong;
    }
}

TEST(PropertyListXml, ReadsReals) {
    EXPECT_EQ(read("<real>-1.5e3</real>"), PropertyList(-1500.0));
    EXPECT_EQ(read("<real> +infinity </real>"),
              PropertyList(std::numeric_limits<double>::infinity()));
    EXPECT_TRUE(std::isnan(read("<real>nan</real>").real().value_or(0)));
    for (const std::string wrong : {"", "x", "1,5", "1e999", "+-1", "0x10"}) {
        EXPECT_TRUE(isRefused("<real>" + wrong + "</real>")) << wrong;
    }
}

TEST(PropertyListXml, ReadsDates) {
    using namespace std::chrono_literals;
    EXPECT_EQ(read("<date>2024-02-29T23:59:59Z</date>"),
              PropertyList(PropertyList::Date(1'709'251'199s)));
    EXPECT_EQ(read("<date>1969-12-31T23:59:59Z</date>"), PropertyList(PropertyList::Date(-1s)));
    EXPECT_EQ(read("<date>1969-12-31T23:59:60Z</date>"), PropertyList(PropertyList::Date(0s)));
    // Beyond what the type holds.
    const auto distant = read("<date>4001-01-01T00:00:00Z</date>");
    ASSERT_NE(distant.date(), nullptr);
    EXPECT_GT(*distant.date(), PropertyList::Date(9'100'000'000s));
    for (const std::string wrong :
         {"", "2024-02-30T00:00:00Z", "2024-13-01T00:00:00Z", "2024-01-01T24:00:00Z",
          "2024-01-01T00:60:00Z", "2024-01-01T00:00:61Z", "2024-01-01T00:00:00", "2024-01-01",
          "2024-01-01 00:00:00Z", "24-01-01T00:00:00Z", "2024-01-01T00:00:00ZZ",
          "-024-01-01T00:00:00Z"}) {
        EXPECT_TRUE(isRefused("<date>" + wrong + "</date>")) << wrong;
    }
}

TEST(PropertyListXml, ReadsData) {
    EXPECT_EQ(read("<data>\n\taGVs\n\tbG8=\n</data>"), PropertyList(Data{"hello"}));
    EXPECT_EQ(read("<data>AP/+</data>"), PropertyList(Data{std::string("\0\xFF\xFE", 3)}));
    EXPECT_EQ(read("<data></data>"), PropertyList(Data{}));
    EXPECT_EQ(read("<data>YQ==</data>"), PropertyList(Data{"a"}));
    for (const std::string wrong : {"a", "aGVsb", "aG!s", "YQ==YQ==", "\xC3\xA9"}) {
        EXPECT_TRUE(isRefused("<data>" + wrong + "</data>")) << wrong;
    }
}

TEST(PropertyListXml, OfEqualKeysTheLastCounts) {
    EXPECT_EQ(read("<dict><key>a</key><true/><key>b</key><true/><key>a</key><false/></dict>"),
              PropertyList(Dictionary{{"a", false}, {"b", true}}));
}

TEST(PropertyListXml, WhatIsNoPropertyListIsRefused) {
    for (const std::string wrong : {"",
                                    "<dict>",
                                    "</dict>",
                                    "<array></dict>",
                                    "<dict><key>a</key></dict>",
                                    "<dict><true/></dict>",
                                    "<dict><key>a</key><key>b</key></dict>",
                                    "<dict><key>a</key></array></dict>",
                                    "<array>text</array>",
                                    "<array><true/>text</array>",
                                    "<true>x</true>",
                                    "<key>a</key>",
                                    "<null/>",
                                    "<set/>",
                                    "<plist/>",
                                    "<>",
                                    "< />",
                                    "<string>a<b/>c</string>",
                                    "<string>a</key>",
                                    "<true/><true/>",
                                    "<string a=\">\">b</string>",
                                    "<string <a>b</string>",
                                    "<!-- open",
                                    "<string><![CDATA[open</string>",
                                    "<?open"}) {
        EXPECT_TRUE(isRefused(wrong)) << wrong;
    }
    for (const std::string whole : {"", " ", "{ a = 1; }", "text", "<plist/>", "<plist></plist>",
                                    "<plist><true/></plist>junk", "<true/><true/>"}) {
        EXPECT_FALSE(PropertyList::parse(whole).has_value()) << whole;
    }
}

TEST(PropertyListXml, TextThatXmlDoesNotAllowIsRefused) {
    EXPECT_TRUE(isRefused("<string>\xFF</string>"));
    EXPECT_TRUE(isRefused("<string>\xED\xA0\x80</string>"));
    EXPECT_TRUE(isRefused("<string>\x01</string>"));
    EXPECT_TRUE(isRefused("<string>&#1;</string>"));
    EXPECT_TRUE(isRefused("<string>" + std::string(1, '\0') + "</string>"));
    EXPECT_TRUE(isRefused("<string>&#0;</string>"));
    EXPECT_TRUE(isRefused("<string>&#xD800;</string>"));
    EXPECT_TRUE(isRefused("<string>&#x110000;</string>"));
}

TEST(PropertyListXml, EntitiesThatAListDefinesAreRefused) {
    const std::string bomb =
        "<?xml version=\"1.0\"?>\n<!DOCTYPE plist [\n<!ENTITY a \"aaaaaaaaaa\">\n"
        "<!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\">\n"
        "<!ENTITY f SYSTEM \"file:///etc/passwd\">\n]>\n";
    for (const std::string value : {"&b;", "&f;", "plain"}) {
        const auto list =
            PropertyList::parse(bomb + "<plist><string>" + value + "</string></plist>");
        ASSERT_FALSE(list.has_value());
        EXPECT_EQ(list.error().description, "an XML property list that defines a document type");
    }
    for (const std::string wrong : {"&a;", "&;", "&", "&amp", "&#;", "&#x;", "&#-1;", "&lt gt;",
                                    "&aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa;"}) {
        EXPECT_TRUE(isRefused("<string>" + wrong + "</string>")) << wrong;
    }
    EXPECT_TRUE(isRefused("<!DOCTYPE plist [<!ENTITY a \"b\">]><true/>"));
    EXPECT_TRUE(isRefused("<array><true/><!DOCTYPE plist></array>"));
}

TEST(PropertyListXml, NestingUpToTheLimitIsReadAndBeyondItRefused) {
    const auto nest = [](std::size_t levels) {
        return repeated("<array>", levels) + repeated("</array>", levels);
    };
    EXPECT_FALSE(isRefused(nest(64)));
    EXPECT_TRUE(isRefused(nest(65)));
    EXPECT_TRUE(isRefused(repeated("<dict><key>a</key>", 65) + repeated("</dict>", 65)));
    const std::string million = plist(nest(1'000'000));
    const auto list = PropertyList::parse(
        million, Limits{.bytes = million.size(), .nodes = 2'000'000, .depth = 64});
    ASSERT_FALSE(list.has_value());
    EXPECT_EQ(list.error().description, "a property list nested too deep");
}

TEST(PropertyListXml, ValuesUpToTheLimitAreReadAndBeyondItRefused) {
    const std::string three = plist("<array><true/><true/></array>");
    EXPECT_TRUE(PropertyList::parse(three, Limits{.nodes = 3}).has_value());
    EXPECT_FALSE(PropertyList::parse(three, Limits{.nodes = 2}).has_value());
    EXPECT_TRUE(isRefused("<array>" + repeated("<true/>", 200'000) + "</array>"));
    EXPECT_FALSE(isRefused("<array>" + repeated("<true/>", 199'999) + "</array>"));
}

TEST(PropertyListXml, OnlyTheEnvelopeHasAttributesAndNotMoreThanALimit) {
    std::string attributes;
    for (int i = 0; i < 8; ++i)
        attributes += " a" + std::to_string(i) + "='1'";
    const auto read = [&](std::size_t nodes) {
        return PropertyList::parse("<plist" + attributes + "><true/></plist>",
                                   Limits{.nodes = nodes});
    };
    EXPECT_TRUE(read(2).has_value());
    EXPECT_FALSE(read(1).has_value());
    EXPECT_TRUE(isRefused("<array a=\"1\"/>"));
    EXPECT_TRUE(isRefused("<plist><true/></plist>"));
}

TEST(PropertyListXml, AsMuchDataAsThereMayBeValuesIsRead) {
    EXPECT_FALSE(isRefused("<array>" + repeated("<data>YQ==</data>", 199'999) + "</array>"));
}

TEST(PropertyListXml, EveryTruncationIsRefused) {
    const std::string whole =
        "<?xml "
        "version=\"1.0\"?><plist><dict><key>a</key><array><string>b&amp;<![CDATA[c]]></string>"
        "<!-- d --><integer>1</integer></array></dict></plist>";
    ASSERT_TRUE(PropertyList::parse(whole).has_value());
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(PropertyList::parse(whole.substr(0, length)).has_value()) << length;
    }
}

TEST(PropertyListXml, ManyKeysOfOneDictionaryAreReadInLinearTime) {
    // Keys that a hash of bytes times 33 can't tell apart. At a quadratic price this would take
    // minutes and the test would run into its time limit.
    std::string entries;
    constexpr unsigned kBits = 16;
    for (unsigned number = 0; number < 1U << kBits; ++number) {
        entries += "<key>";
        for (unsigned bit = 0; bit < kBits; ++bit)
            entries += (number >> bit & 1U) != 0 ? "Aa" : "B@";
        entries += "</key><true/>";
    }
    EXPECT_EQ(read("<dict>" + entries + "</dict>").dictionary()->size(), 1U << kBits);
}

}  // namespace
}  // namespace sweepwright::platform
