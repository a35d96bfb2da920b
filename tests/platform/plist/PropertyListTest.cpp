#include <clocale>
#include <cstdlib>
#include <limits>
#include <ostream>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "platform/log/Log.h"
#include "platform/plist/PropertyList.h"
#include "support/TemporaryDevice.h"

namespace sweepwright::platform {

/// How a failed property shows a list.
static std::ostream& operator<<(std::ostream& out, const PropertyList& list) {
    return out << list.toXml();
}

namespace {

using namespace std::chrono_literals;
using namespace std::string_view_literals;
using Array = PropertyList::Array;
using Data = PropertyList::Data;
using Date = PropertyList::Date;
using Dictionary = PropertyList::Dictionary;
using Uid = PropertyList::Uid;

constexpr std::uint64_t kTwoTo63 = std::uint64_t{1} << 63U;
constexpr auto kLowest = std::numeric_limits<std::int64_t>::min();
constexpr auto kHighest = std::numeric_limits<std::int64_t>::max();
constexpr auto kHighestUnsigned = std::numeric_limits<std::uint64_t>::max();

PropertyList throughBinary(const PropertyList& list) {
    const auto read = PropertyList::parse(list.toBinary());
    EXPECT_TRUE(read.has_value()) << read.error().description;
    return read.value_or(PropertyList("unreadable"));
}

PropertyList throughXml(const PropertyList& list) {
    const std::string xml = list.toXml();
    const auto read = PropertyList::parse(xml);
    EXPECT_TRUE(read.has_value()) << read.error().description << "\n" << xml;
    return read.value_or(PropertyList("unreadable"));
}

/// A date of 2023, its microseconds given.
Date dateOf2023(std::chrono::microseconds part) {
    return Date(1'700'000'000s + part);
}

PropertyList everyType() {
    return Dictionary{{"yes", true},
                      {"no", false},
                      {"zero", 0},
                      {"small", -5},
                      {"lowest", kLowest},
                      {"highest", kHighest},
                      {"above", kTwoTo63},
                      {"most", kHighestUnsigned},
                      {"real", 0.1},
                      {"infinite", std::numeric_limits<double>::infinity()},
                      {"text", "plain"},
                      {"empty", ""},
                      {"wide", "清理 <&> \"é\" 🧹"},
                      {"space", " \n\ttwo  "},
                      {"data", Data{std::string("\0\xFF\n", 3)}},
                      {"no data", Data{}},
                      {"uid", Uid{4'000'000'000U}},
                      {"date", dateOf2023(0us)},
                      {"early", Date(-1s)},
                      {"array", Array{1, "two", Array{}, Dictionary{}}},
                      {"nested", Dictionary{{"a", Dictionary{{"b", Array{Array{true}}}}}}}};
}

TEST(PropertyList, EveryTypeSurvivesABinaryFile) {
    EXPECT_EQ(throughBinary(everyType()), everyType());
}

TEST(PropertyList, EveryTypeSurvivesAnXmlFile) {
    EXPECT_EQ(throughXml(everyType()), everyType());
}

TEST(PropertyList, AListThatIsOneValueSurvivesBothFiles) {
    const PropertyList emptyArray((Array()));
    for (const PropertyList& list :
         {PropertyList(), PropertyList(7), PropertyList(kHighestUnsigned), PropertyList(true),
          PropertyList("text"), PropertyList(2.5), PropertyList(Data{"x"}), emptyArray}) {
        EXPECT_EQ(throughBinary(list), list) << list.toXml();
        EXPECT_EQ(throughXml(list), list) << list.toXml();
    }
}

TEST(PropertyList, KeysKeepTheirOrder) {
    const PropertyList list(Dictionary{{"z", 1}, {"a", 2}, {"m", 3}});
    for (const PropertyList& read : {throughBinary(list), throughXml(list)}) {
        ASSERT_NE(read.dictionary(), nullptr);
        EXPECT_EQ(read.dictionary()->entries(), list.dictionary()->entries());
    }
}

TEST(PropertyList, EqualValuesAreWrittenToABinaryFileOnce) {
    const std::string text(1000, 'x');
    const auto size = [](const PropertyList& list) { return list.toBinary().size(); };
    EXPECT_LT(size(Array{text, text, text}), size(Array{text}) + 10);
    EXPECT_LT(size(Array{Dictionary{{text, 1}}, Dictionary{{text, 2}}}), 2 * text.size());
}

TEST(PropertyList, ABinaryFileIsLaidOutAsOtherProgramsDo) {
    // What Python's plistlib writes for the same values.
    EXPECT_EQ(
        PropertyList(Array{1, 300, -2, "a", "清", true, 1, 0.5, Data{std::string(16, 'd')}})
            .toBinary(),
        "bplist00\xA9\x01\x02\x03\x04\x05\x06\x01\x07\x08\x10\x01\x11\x01,"
        "\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFEQaan\x05\x09#?\xE0\x00\x00\x00\x00\x00\x00O\x10\x10"
        "dddddddddddddddd\x08\x12\x14\x17 "
        "\x22%&/"
        "\x00\x00\x00\x00\x00\x00\x01\x01\x00\x00\x00\x00\x00\x00\x00\x09\x00\x00\x00\x00\x00\x00"
        "\x00\x00\x00\x00\x00\x00\x00\x00\x00"
        "B"sv);
}

TEST(PropertyList, AnIntegerAboveTheSignedOnesIsWrittenSixteenBytesWide) {
    // As other readers need it: of 8 bytes they take the highest bit as the sign.
    const std::string wide = "\x14" + std::string(8, '\0') + std::string(8, '\xFF');
    EXPECT_TRUE(PropertyList(Array{kHighestUnsigned}).toBinary().contains(wide));
    EXPECT_TRUE(
        PropertyList(kHighestUnsigned).toXml().contains("<integer>18446744073709551615</integer>"));
    const std::string negative = "\x13" + std::string(8, '\xFF');
    EXPECT_TRUE(PropertyList(Array{-1}).toBinary().contains(negative));
    EXPECT_TRUE(PropertyList(-1).toXml().contains("<integer>-1</integer>"));
}

TEST(PropertyList, EqualBitsOfSignedAndUnsignedStayApartInOneFile) {
    const PropertyList list(Array{-1, kHighestUnsigned, kLowest, kTwoTo63, -1});
    EXPECT_EQ(throughBinary(list), list);
    EXPECT_EQ(throughXml(list), list);
}

TEST(PropertyList, ADateKeepsMicrosecondsInBinaryAndSecondsInXml) {
    const PropertyList date(dateOf2023(123'456us));
    EXPECT_EQ(throughBinary(date), date);
    EXPECT_EQ(throughXml(date), PropertyList(dateOf2023(0us)));
    EXPECT_TRUE(PropertyList(dateOf2023(0us)).toXml().contains("2023-11-14T22:13:20Z"));
    // Before 2001 as well, where the format counts backwards.
    EXPECT_EQ(throughXml(PropertyList(Date(5s + 250ms))), PropertyList(Date(5s)));
}

TEST(PropertyList, ADateDoesNotMoveByBeingReadAndWritten) {
    // A double that counts from 1970 holds this one half a microsecond beside.
    const PropertyList date((Date(2'440'112'488'203'984us)));
    EXPECT_EQ(throughBinary(date), date);
    for (auto part = 0us; part < 2000us; part += 1us) {
        const PropertyList near((Date(8'000'000'000s + part)));
        ASSERT_EQ(throughBinary(near), near) << part.count();
    }
}

TEST(PropertyList, ADateFarAwaySurvives) {
    // 1684, 2191, and the first and the last day that the type holds whole.
    for (const auto seconds : {-9'000'000'000s, 7'000'000'000s, -9'223'286'400s, 9'223'286'400s}) {
        const PropertyList date((Date(seconds)));
        EXPECT_EQ(throughBinary(date), date);
        EXPECT_EQ(throughXml(date), date);
    }
}

TEST(PropertyList, AStringThatIsNoTextIsWrittenAsData) {
    for (const std::string& bytes : {std::string("/var/\xFF\xFE"), std::string("a\0b", 3)}) {
        const PropertyList list(bytes);
        EXPECT_EQ(throughBinary(list), PropertyList(Data{bytes}));
        EXPECT_EQ(throughXml(list), PropertyList(Data{bytes}));
        EXPECT_EQ(*throughBinary(list).bytes(), bytes);
    }
}

TEST(PropertyList, AControlCharacterIsTextInBinaryOnly) {
    for (const std::string& text :
         {std::string("a\x01"), std::string("a\rb"), std::string("\xEF\xBF\xBF")}) {
        const PropertyList list(text);
        EXPECT_EQ(throughBinary(list), list);
        EXPECT_EQ(throughXml(list), PropertyList(Data{text}));
    }
}

TEST(PropertyList, AKeyThatIsNoTextIsLeftOutAndLogged) {
    const LogCapture log;
    const PropertyList list(Dictionary{{"\xFF", 1}, {std::string("a\0b", 3), 2}, {"kept", 3}});
    EXPECT_EQ(throughBinary(list), PropertyList(Dictionary{{"kept", 3}}));
    EXPECT_TRUE(log.contains("⚠️ 属性列表的键不是文本，已略过: \xFF"));
    EXPECT_EQ(log.lines().size(), 2U);
}

TEST(PropertyList, AByteOrderMarkBeforeEitherFileIsSkipped) {
    const PropertyList list(Dictionary{{"a", 1}});
    EXPECT_EQ(PropertyList::parse("\xEF\xBB\xBF" + list.toBinary()), list);
    EXPECT_EQ(PropertyList::parse("\xEF\xBB\xBF" + list.toXml()), list);
}

TEST(PropertyList, ANumberIsHandedOutAsAnyTypeThatHoldsIt) {
    EXPECT_EQ(PropertyList(5).integer(), 5);
    EXPECT_EQ(PropertyList(5).unsignedInteger(), 5U);
    EXPECT_EQ(PropertyList(5).real(), 5.0);
    EXPECT_EQ(PropertyList(-5).unsignedInteger(), std::nullopt);
    EXPECT_EQ(PropertyList(-5).real(), -5.0);
    EXPECT_EQ(PropertyList(kTwoTo63).integer(), std::nullopt);
    EXPECT_EQ(PropertyList(kTwoTo63 - 1).integer(), kHighest);
    EXPECT_EQ(PropertyList(kTwoTo63).real(), 9223372036854775808.0);
    EXPECT_EQ(PropertyList(kHighestUnsigned).real(), std::nullopt);
    EXPECT_EQ(PropertyList(kHighest).real(), std::nullopt);
    EXPECT_EQ(PropertyList(kLowest).real(), -9223372036854775808.0);
    EXPECT_EQ(PropertyList(3.0).integer(), 3);
    EXPECT_EQ(PropertyList(3.5).integer(), std::nullopt);
    EXPECT_EQ(PropertyList(3.5).unsignedInteger(), std::nullopt);
    EXPECT_EQ(PropertyList(-1.0).unsignedInteger(), std::nullopt);
    EXPECT_EQ(PropertyList(9223372036854775808.0).integer(), std::nullopt);
    EXPECT_EQ(PropertyList(9223372036854775808.0).unsignedInteger(), kTwoTo63);
    EXPECT_EQ(PropertyList(18446744073709551616.0).unsignedInteger(), std::nullopt);
    EXPECT_EQ(PropertyList(std::numeric_limits<double>::quiet_NaN()).integer(), std::nullopt);
    EXPECT_EQ(PropertyList(std::numeric_limits<double>::quiet_NaN()).unsignedInteger(),
              std::nullopt);
}

TEST(PropertyList, ABooleanIsNoNumberAndANumberNoBoolean) {
    EXPECT_EQ(PropertyList(true).integer(), std::nullopt);
    EXPECT_EQ(PropertyList(true).unsignedInteger(), std::nullopt);
    EXPECT_EQ(PropertyList(true).real(), std::nullopt);
    EXPECT_EQ(PropertyList(1).boolean(), nullptr);
    EXPECT_NE(PropertyList(true), PropertyList(1));
}

TEST(PropertyList, BytesAreThoseOfAStringOrOfData) {
    EXPECT_EQ(*PropertyList("text").bytes(), "text");
    EXPECT_EQ(*PropertyList(Data{"data"}).bytes(), "data");
    EXPECT_EQ(PropertyList(1).bytes(), nullptr);
    EXPECT_EQ(PropertyList(Data{"data"}).string(), nullptr);
    EXPECT_EQ(PropertyList("text").data(), nullptr);
}

TEST(PropertyList, SignedAndUnsignedAreEqualWhenTheirNumberIs) {
    EXPECT_EQ(PropertyList(std::int64_t{5}), PropertyList(std::uint64_t{5}));
    EXPECT_NE(PropertyList(std::int64_t{-1}), PropertyList(kHighestUnsigned));
    EXPECT_NE(PropertyList(5), PropertyList(6));
    EXPECT_NE(PropertyList(5), PropertyList(5.0));
    EXPECT_NE(PropertyList(5), PropertyList("5"));
    EXPECT_NE(PropertyList("x"), PropertyList(Data{"x"}));
}

TEST(PropertyList, DictionariesAreEqualInWhateverOrder) {
    const auto deep = [](int last) {
        return Dictionary{{"x", Array{Dictionary{{"p", 1}, {"q", last}}}}, {"y", 2}};
    };
    const Dictionary turned{{"y", 2}, {"x", Array{Dictionary{{"q", 9}, {"p", 1}}}}};
    EXPECT_EQ(deep(9), turned);
    EXPECT_NE(deep(8), turned);
    EXPECT_NE((Dictionary{{"a", 1}}), (Dictionary{{"b", 1}}));
    EXPECT_NE((Dictionary{{"a", 1}}), (Dictionary{{"a", 1}, {"b", 1}}));
    EXPECT_NE(PropertyList(Array{1, 2}), PropertyList(Array{2, 1}));
}

TEST(PropertyList, ADictionaryFindsSetsAndRemoves) {
    Dictionary dictionary{{"a", 1}, {"b", 2}};
    dictionary.set("a", "one");
    dictionary.set("c", 3);
    EXPECT_EQ(*dictionary.find("a"), PropertyList("one"));
    EXPECT_EQ(dictionary.find("d"), nullptr);
    EXPECT_TRUE(dictionary.remove("b"));
    EXPECT_FALSE(dictionary.remove("b"));
    ASSERT_EQ(dictionary.size(), 2U);
    EXPECT_EQ(dictionary.entries()[0].first, "a");
    EXPECT_EQ(dictionary.entries()[1].first, "c");
    EXPECT_TRUE(Dictionary().empty());
}

TEST(PropertyList, OfEqualKeysTheFirstKeepsItsPlaceAndTheLastItsValue) {
    const Dictionary dictionary{{"b", 1}, {"a", 2}, {"b", 3}, {"c", 4}, {"b", 5}};
    const std::vector<Dictionary::Entry> expected{{"b", 5}, {"a", 2}, {"c", 4}};
    EXPECT_EQ(dictionary.entries(), expected);
    const Dictionary adjacent{{"a", 1}, {"a", 2}};
    EXPECT_EQ(adjacent.entries(), (std::vector<Dictionary::Entry>{{"a", 2}}));
}

/// Sets a locale whose decimal point is a comma, one made for the test if none is installed; puts
/// things back when it ends.
class CommaLocale {
  public:
    CommaLocale() {
        const std::string made = folder_.path() + "/comma";
        const std::string make = "localedef -i de_DE -f ISO-8859-1 " + made + " >/dev/null 2>&1";
        setenv("LOCPATH", folder_.path().c_str(), 1);
        set_ = std::system(make.c_str()) == 0 && std::setlocale(LC_ALL, "comma") != nullptr &&
               std::string_view(std::localeconv()->decimal_point) == ",";
    }
    ~CommaLocale() {
        std::setlocale(LC_ALL, before_.c_str());
        unsetenv("LOCPATH");
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    [[nodiscard]] bool isSet() const { return set_; }

  private:
    test::TemporaryFolder folder_;
    std::string before_ = std::setlocale(LC_ALL, nullptr);
    bool set_ = false;
};

TEST(PropertyList, NumbersAreWrittenAndReadWithAPointInEveryLanguage) {
    const CommaLocale comma;
    if (!comma.isSet()) GTEST_SKIP() << "localedef can't make a locale with a decimal comma here";
    const std::string xml = PropertyList(2.5).toXml();
    EXPECT_TRUE(xml.contains("<real>2.5")) << xml;
    EXPECT_EQ(PropertyList::parse(xml), PropertyList(2.5));
}

// --- Properties ---

rc::Gen<std::string> text() {
    return rc::gen::map(
        rc::gen::container<std::vector<std::string>>(rc::gen::element<std::string>(
            "a", "Z", " ", "\n", "<", "&", "]]>", "\"", "é", "清", "🧹", "\xEE\x80\x80")),
        [](const std::vector<std::string>& pieces) {
            std::string joined;
            for (const std::string& piece : pieces)
                joined += piece;
            return joined;
        });
}

template <class Value>
rc::Gen<PropertyList> asList(rc::Gen<Value> values) {
    return rc::gen::map(std::move(values),
                        [](Value value) { return PropertyList(std::move(value)); });
}

rc::Gen<PropertyList> scalar() {
    return rc::gen::oneOf(
        asList(rc::gen::arbitrary<bool>()), asList(rc::gen::arbitrary<std::int64_t>()),
        asList(rc::gen::map(rc::gen::arbitrary<std::uint64_t>(),
                            [](std::uint64_t value) { return value | kTwoTo63; })),
        asList(rc::gen::arbitrary<double>()), asList(text()),
        asList(rc::gen::map(rc::gen::arbitrary<std::string>(),
                            [](std::string bytes) { return Data{std::move(bytes)}; })),
        asList(rc::gen::map(rc::gen::arbitrary<std::uint32_t>(),
                            [](std::uint32_t value) { return Uid{value}; })),
        asList(rc::gen::map(
            rc::gen::inRange<std::int64_t>(-9'000'000'000, 9'000'000'000),
            [](std::int64_t seconds) { return Date(std::chrono::seconds(seconds)); })));
}

rc::Gen<PropertyList> list(int levels) {
    if (levels == 0) return scalar();
    const auto inner = rc::gen::lazy([levels] { return list(levels - 1); });
    const auto entries =
        rc::gen::container<std::vector<Dictionary::Entry>>(rc::gen::pair(text(), inner));
    return rc::gen::oneOf(
        scalar(), asList(rc::gen::scale(0.3, rc::gen::container<Array>(inner))),
        asList(rc::gen::map(rc::gen::scale(0.3, entries), [](std::vector<Dictionary::Entry> some) {
            return Dictionary(std::move(some));
        })));
}

RC_GTEST_PROP(PropertyListProperty, AnyListSurvivesABinaryFile, ()) {
    const PropertyList written = *list(3);
    const auto read = PropertyList::parse(written.toBinary());
    RC_ASSERT(read.has_value());
    RC_ASSERT(*read == written);
}

RC_GTEST_PROP(PropertyListProperty, AnyListSurvivesAnXmlFile, ()) {
    const PropertyList written = *list(3);
    const auto read = PropertyList::parse(written.toXml());
    RC_ASSERT(read.has_value());
    RC_ASSERT(*read == written);
}

RC_GTEST_PROP(PropertyListProperty, AnyBytesOfAStringSurviveBothFiles, ()) {
    const auto bytes = *rc::gen::arbitrary<std::string>();
    const PropertyList written(Array{bytes});
    for (const std::string& file : {written.toBinary(), written.toXml()}) {
        const auto read = PropertyList::parse(file);
        RC_ASSERT(read.has_value());
        RC_ASSERT(*read->array()->front().bytes() == bytes);
    }
}

RC_GTEST_PROP(PropertyListProperty, NoDamageToAFileDoesMoreThanRefuseIt, ()) {
    const PropertyList written = *list(2);
    std::string file = *rc::gen::arbitrary<bool>() ? written.toBinary() : written.toXml();
    const auto changes = *rc::gen::inRange(1, 4);
    for (int change = 0; change < changes; ++change) {
        file[*rc::gen::inRange<std::size_t>(0, file.size())] = *rc::gen::arbitrary<char>();
    }
    // Whatever it reads as is a list that can be written again.
    if (const auto read = PropertyList::parse(file)) {
        RC_ASSERT(PropertyList::parse(read->toBinary()).has_value());
    }
}

}  // namespace
}  // namespace sweepwright::platform
