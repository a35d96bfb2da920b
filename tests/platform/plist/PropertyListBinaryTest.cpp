#include <chrono>
#include <limits>
#include <numeric>

#include <gtest/gtest.h>

#include "platform/plist/BinaryListBuilder.h"
#include "platform/plist/PropertyList.h"

namespace sweepwright::platform {
namespace {

using test::BinaryListBuilder;
using Array = PropertyList::Array;
using Dictionary = PropertyList::Dictionary;
using Limits = PropertyList::Limits;

const std::string kTrue = "\x09";

/// A list of one object, marker included.
std::string only(std::string object) {
    BinaryListBuilder builder;
    builder.add(std::move(object));
    return builder.build();
}

void expectRefused(const std::string& bytes, std::string_view why) {
    const auto read = PropertyList::parse(bytes);
    ASSERT_FALSE(read.has_value()) << read->toXml();
    EXPECT_EQ(read.error(), formatError("", why));
}

/// `levels` arrays in one another.
std::string nest(std::size_t levels) {
    BinaryListBuilder builder;
    for (std::size_t level = 1; level < levels; ++level) {
        builder.add(BinaryListBuilder::array({level}));
    }
    builder.add(BinaryListBuilder::array({}));
    return builder.build();
}

TEST(PropertyListBinary, ReadsIntegersOfEveryWidth) {
    // Those of less than 8 bytes have no sign.
    EXPECT_EQ(PropertyList::parse(only("\x10\xFF")), PropertyList(255));
    EXPECT_EQ(PropertyList::parse(only("\x11\xFF\xFE")), PropertyList(65534));
    EXPECT_EQ(PropertyList::parse(only("\x12\xFF\xFF\xFF\xFF")),
              PropertyList(std::int64_t{4294967295}));
    EXPECT_EQ(PropertyList::parse(only("\x13" + std::string(8, '\xFF'))), PropertyList(-1));
    EXPECT_EQ(PropertyList::parse(only("\x14" + std::string(8, '\0') + std::string(8, '\xFF'))),
              PropertyList(~std::uint64_t{0}));
    EXPECT_EQ(PropertyList::parse(only("\x14" + std::string(15, '\0') + "\x07")), PropertyList(7));
}

TEST(PropertyListBinary, ReadsRealsOfBothWidthsAndReferencesOfEachWidth) {
    EXPECT_EQ(PropertyList::parse(only(std::string("\x22\x3F\x80\0\0", 5))), PropertyList(1.0));
    EXPECT_EQ(PropertyList::parse(only("\x23\x3F\xF0" + std::string(6, '\0'))), PropertyList(1.0));
    EXPECT_EQ(PropertyList::parse(only("\x80\x07")), PropertyList(PropertyList::Uid{7}));
    EXPECT_EQ(PropertyList::parse(only("\x81\x01\x02")), PropertyList(PropertyList::Uid{258}));
    EXPECT_EQ(PropertyList::parse(only(std::string("\x83\0\0\x01\x02", 5))),
              PropertyList(PropertyList::Uid{258}));
}

TEST(PropertyListBinary, ADateBeyondTheTypeIsTheNearestThatItHolds) {
    const auto read = PropertyList::parse(only("\x33\x42\x2D\x42\xD1\xEE" + std::string(3, '\0')));
    ASSERT_TRUE(read.has_value());
    ASSERT_NE(read->date(), nullptr);
    EXPECT_GT(*read->date(), PropertyList::Date(std::chrono::seconds(9'100'000'000)));
}

TEST(PropertyListBinary, SharedObjectsAreReadWhereverTheyAreReferredTo) {
    BinaryListBuilder builder;
    builder.add(BinaryListBuilder::dictionary({1, 2}, {3, 3}));
    builder.add(BinaryListBuilder::ascii("a"));
    builder.add(BinaryListBuilder::utf16(u"清🧹"));
    builder.add(BinaryListBuilder::array({4, 4}));
    builder.add(kTrue);
    const PropertyList pair(Array{true, true});
    EXPECT_EQ(PropertyList::parse(builder.build()),
              PropertyList(Dictionary{{"a", pair}, {"清🧹", pair}}));
}

TEST(PropertyListBinary, OfEqualKeysTheLastCounts) {
    BinaryListBuilder builder;
    builder.add(BinaryListBuilder::dictionary({1, 1}, {2, 3}));
    builder.add(BinaryListBuilder::ascii("a"));
    builder.add("\x10\x01");
    builder.add("\x10\x02");
    EXPECT_EQ(PropertyList::parse(builder.build()), PropertyList(Dictionary{{"a", 2}}));
}

TEST(PropertyListBinary, EveryTruncationIsRefused) {
    const std::string whole =
        PropertyList(Dictionary{{"list", Array{1, "two", 3.0, PropertyList::Data{"four"}}},
                                {"清", PropertyList::Date()},
                                {"big", ~std::uint64_t{0}}})
            .toBinary();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const auto read = PropertyList::parse(whole.substr(0, length));
        ASSERT_FALSE(read.has_value()) << length;
        EXPECT_EQ(read.error().domain, kFormatErrorDomain);
    }
}

TEST(PropertyListBinary, EveryByteInEveryStateIsReadOrRefused) {
    const std::string whole =
        PropertyList(Dictionary{{"list", Array{1, "two", PropertyList::Data{"x"}}}}).toBinary();
    std::size_t refused = 0;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (unsigned value = 0; value < 256; ++value) {
            std::string damaged = whole;
            damaged[at] = static_cast<char>(value);
            const auto read = PropertyList::parse(damaged);
            if (!read) {
                ++refused;
            } else {
                EXPECT_TRUE(PropertyList::parse(read->toBinary()).has_value());
            }
        }
    }
    EXPECT_GT(refused, whole.size() * 100);
}

TEST(PropertyListBinary, NestingUpToTheLimitIsReadAndBeyondItRefused) {
    EXPECT_TRUE(PropertyList::parse(nest(64)).has_value());
    expectRefused(nest(65), "a property list nested too deep");
    // Also where the depth is found out by a reference to what was measured before.
    BinaryListBuilder builder;
    builder.add(BinaryListBuilder::array({1, 2}));
    builder.add(BinaryListBuilder::array({3}));
    builder.add(BinaryListBuilder::array({1}));
    builder.add(BinaryListBuilder::array({}));
    EXPECT_TRUE(PropertyList::parse(builder.build(), Limits{.depth = 4}).has_value());
    EXPECT_FALSE(PropertyList::parse(builder.build(), Limits{.depth = 3}).has_value());
}

TEST(PropertyListBinary, AMillionLevelsAreRefused) {
    const std::string bytes = nest(1'000'000);
    // It is larger than a file may be; the depth alone must be enough, too.
    Limits limits{.bytes = bytes.size(), .nodes = 2'000'000};
    const auto read = PropertyList::parse(bytes, limits);
    ASSERT_FALSE(read.has_value());
    EXPECT_EQ(read.error().description, "a property list nested too deep");
    limits.depth = 10'000'000;  // the guard caps what a caller may allow
    EXPECT_FALSE(PropertyList::parse(bytes, limits).has_value());
}

TEST(PropertyListBinary, SharedReferencesThatExpandExponentiallyAreRefused) {
    for (const std::size_t levels : {20U, 50U}) {
        BinaryListBuilder builder;
        for (std::size_t level = 1; level < levels; ++level) {
            builder.add(BinaryListBuilder::array({level, level}));
        }
        builder.add(kTrue);
        expectRefused(builder.build(), "a property list of too many values");
    }
}

TEST(PropertyListBinary, ValuesUpToTheLimitAreReadAndBeyondItRefused) {
    BinaryListBuilder builder;  // 1 + 2 * (1 + 3) values after expansion, 3 objects
    builder.add(BinaryListBuilder::array({1, 1}));
    builder.add(BinaryListBuilder::array({2, 2, 2}));
    builder.add(kTrue);
    EXPECT_TRUE(PropertyList::parse(builder.build(), Limits{.nodes = 9}).has_value());
    EXPECT_FALSE(PropertyList::parse(builder.build(), Limits{.nodes = 8}).has_value());
}

TEST(PropertyListBinary, SharedBytesThatExpandBeyondTheLimitAreRefused) {
    BinaryListBuilder builder;
    builder.add(BinaryListBuilder::array(std::vector<std::size_t>(1000, 1)));
    builder.add(BinaryListBuilder::ascii(std::string(100'000, 'x')));
    expectRefused(builder.build(), "a property list of too many bytes");
}

TEST(PropertyListBinary, ObjectsThatOverlapAreRefusedBeforeTheyCostTime) {
    // Many objects that are one and the same large string, and the same large array.
    BinaryListBuilder strings;
    std::vector<std::size_t> all(50'000);
    std::iota(all.begin(), all.end(), std::size_t{1});
    strings.add(BinaryListBuilder::array(all));
    const std::size_t text = strings.add(BinaryListBuilder::ascii(std::string(1'000'000, 'x')));
    while (strings.addAlias(text) < all.size()) {
    }
    expectRefused(strings.build(), "a property list of too many bytes");

    BinaryListBuilder arrays;
    arrays.add(BinaryListBuilder::array(all));
    const std::size_t array =
        arrays.add(BinaryListBuilder::array(std::vector<std::size_t>(50'000, all.size() + 1)));
    while (arrays.addAlias(array) < all.size()) {
    }
    arrays.add(kTrue);
    expectRefused(arrays.build(), "a property list of too many values");
}

TEST(PropertyListBinary, AListThatContainsItselfIsRefused) {
    const std::string_view why = "a property list that contains itself";
    expectRefused(only(BinaryListBuilder::array({0})), why);
    BinaryListBuilder builder;
    builder.add(BinaryListBuilder::array({1}));
    builder.add(BinaryListBuilder::dictionary({2}, {0}));
    builder.add(BinaryListBuilder::ascii("a"));
    expectRefused(builder.build(), why);
}

TEST(PropertyListBinary, AClaimedLengthBeyondTheFileIsRefused) {
    for (const std::uint64_t length :
         {std::uint64_t{1000}, std::uint64_t{1} << 32U, std::uint64_t{1} << 61U,
          std::uint64_t{1} << 62U, std::uint64_t{1} << 63U, ~std::uint64_t{0}}) {
        for (const unsigned type : {0x4U, 0x5U, 0x6U, 0xAU, 0xDU}) {
            EXPECT_FALSE(PropertyList::parse(only(BinaryListBuilder::head(type, length))))
                << type << " " << length;
        }
    }
    expectRefused(only("\x4F\x14" + std::string(16, '\0')),
                  "a binary property list with a damaged length");
    expectRefused(only("\x4F\x23" + std::string(8, '\0')),
                  "a binary property list with a damaged length");
}

TEST(PropertyListBinary, ADamagedTrailerIsRefused) {
    BinaryListBuilder builder;
    builder.add(kTrue);
    using Trailer = BinaryListBuilder::Trailer;
    constexpr auto kHuge = std::numeric_limits<std::int64_t>::max();
    for (const Trailer& trailer :
         {Trailer{.offsetWidth = 0}, Trailer{.offsetWidth = 9}, Trailer{.referenceWidth = 0},
          Trailer{.referenceWidth = 9}, Trailer{.objects = 0}, Trailer{.objects = 2},
          Trailer{.objects = kHuge}, Trailer{.root = 1}, Trailer{.root = ~std::uint64_t{0}},
          Trailer{.table = 0}, Trailer{.table = 8}, Trailer{.table = 10},
          Trailer{.table = kHuge}}) {
        EXPECT_FALSE(PropertyList::parse(builder.build(trailer)).has_value());
    }
    EXPECT_TRUE(PropertyList::parse(builder.build()).has_value());
    std::string wrongVersion = builder.build();
    wrongVersion[7] = '1';
    expectRefused(wrongVersion, "not a whole binary property list");
}

TEST(PropertyListBinary, AReferenceOutsideOfTheListIsRefused) {
    expectRefused(only(BinaryListBuilder::array({1})),
                  "a binary property list with a reference outside of it");
    expectRefused(only(BinaryListBuilder::array({0xFFFFFFFF})),
                  "a binary property list with a reference outside of it");
}

TEST(PropertyListBinary, AnOffsetOutsideOfTheListIsRefused) {
    BinaryListBuilder builder;
    builder.add(kTrue);
    for (const std::uint64_t offset : {std::uint64_t{0}, std::uint64_t{7}, std::uint64_t{9},
                                       std::uint64_t{1000}, ~std::uint64_t{0}}) {
        std::string bytes = builder.build();
        bytes.replace(9, 8, BinaryListBuilder::bigEndian(offset, 8));
        expectRefused(bytes, "a binary property list with an offset outside of it");
    }
}

TEST(PropertyListBinary, AKeyThatIsNoStringIsRefused) {
    BinaryListBuilder builder;
    builder.add(BinaryListBuilder::dictionary({1}, {1}));
    builder.add(kTrue);
    expectRefused(builder.build(), "a property list with a key that is no string");
}

TEST(PropertyListBinary, AStringThatIsNoTextIsRefused) {
    const std::string_view why = "a property list with a damaged string";
    expectRefused(only(BinaryListBuilder::ascii(std::string_view("a\0b", 3))), why);
    expectRefused(only(BinaryListBuilder::ascii("\xC3\xA9")), why);
    for (const std::u16string& text :
         {std::u16string(u"a\0b", 3), std::u16string(1, 0xD800), std::u16string(1, 0xDC00),
          std::u16string({0xD800, 0x0041}), std::u16string({0xD800, 0xD800, 0xDC00})}) {
        expectRefused(only(BinaryListBuilder::utf16(text)), why);
    }
}

TEST(PropertyListBinary, ValuesThatNothingHoldsAreRefused) {
    // Nothing, fill, URL, UUID, set, and widths that no writer uses.
    for (const std::string& object :
         {std::string(1, '\0'), std::string("\x0F"), std::string("\x0C"), std::string("\x0E"),
          std::string("\xC0"), std::string("\x70"), std::string("\xB0"),
          "\x15" + std::string(32, 1), "\x21" + std::string(2, 1), "\x32" + std::string(4, 1),
          "\x82" + std::string(3, 1), "\x87" + std::string(8, 1)}) {
        expectRefused(only(object), "a binary property list with a value of an unknown type");
    }
    expectRefused(only("\x14" + std::string(16, '\x01')),
                  "a property list with an integer of more than 64 bits");
}

TEST(PropertyListBinary, AFileBeyondTheLimitIsRefused) {
    const std::string bytes = only(kTrue);
    EXPECT_TRUE(PropertyList::parse(bytes, Limits{.bytes = bytes.size()}).has_value());
    EXPECT_FALSE(PropertyList::parse(bytes, Limits{.bytes = bytes.size() - 1}).has_value());
}

}  // namespace
}  // namespace sweepwright::platform
