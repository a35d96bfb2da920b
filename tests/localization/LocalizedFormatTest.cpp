#include <cmath>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "localization/LocalizedFormat.h"

namespace sweepwright::localization {
namespace {

TEST(LocalizedFormat, ArgumentsAreTakenInTurn) {
    EXPECT_EQ(formatLocalized("%@ · %lu 个应用", {"1.5 KB", 3U}), "1.5 KB · 3 个应用");
    EXPECT_EQ(formatLocalized("Cleans: %ld\nSpace freed: %@\nLast clean: %@", {7, "1 B", "now"}),
              "Cleans: 7\nSpace freed: 1 B\nLast clean: now");
    EXPECT_EQ(formatLocalized("", {"unused"}), "");
    EXPECT_EQ(formatLocalized("plain", {"unused"}), "plain");
}

TEST(LocalizedFormat, ArgumentsAreTakenByPosition) {
    EXPECT_EQ(formatLocalized("%2$@ of %1$@", {"app", "size"}), "size of app");
    EXPECT_EQ(formatLocalized("%1$lu %1$lu", {4U}), "4 4");
    EXPECT_EQ(formatLocalized("%2$@ %@ %@", {"a", "b"}), "b a b");
}

TEST(LocalizedFormat, APercentSignIsWrittenTwice) {
    EXPECT_EQ(formatLocalized("Cleaning %.0f%%\n%@", {45.4, "x"}), "Cleaning 45%\nx");
    EXPECT_EQ(formatLocalized("100%%", {}), "100%");
    EXPECT_EQ(formatLocalized("%%@", {"x"}), "%@");
}

TEST(LocalizedFormat, WholeNumbersOfEverySizeAreWritten) {
    EXPECT_EQ(formatLocalized("%llu", {std::numeric_limits<std::uint64_t>::max()}),
              "18446744073709551615");
    EXPECT_EQ(formatLocalized("%lld", {std::numeric_limits<std::int64_t>::min()}),
              "-9223372036854775808");
    EXPECT_EQ(formatLocalized("%d %i %u %zu %hhd", {1, 2, 3, std::size_t{4}, short{5}}),
              "1 2 3 4 5");
    EXPECT_EQ(formatLocalized("%x %X", {255, 255U}), "ff FF");
}

TEST(LocalizedFormat, RealNumbersAreRoundedToTheirPrecision) {
    EXPECT_EQ(formatLocalized("%.0f %.1f %.2f %f", {59.9, 1.25, 2.0, 0.5}), "60 1.2 2.00 0.500000");
    EXPECT_EQ(formatLocalized("%e %g", {12345.678, 0.0001}), "1.234568e+04 0.0001");
    EXPECT_EQ(formatLocalized("%.0f%%", {100}), "100%");
    EXPECT_EQ(formatLocalized("%.1f", {std::nan("")}), "nan");
}

TEST(LocalizedFormat, FlagsAndWidthsAreObeyed) {
    EXPECT_EQ(formatLocalized("[%5d][%-5d][%05d][%+d]", {42, 42, 42, 42}),
              "[   42][42   ][00042][+42]");
    EXPECT_EQ(formatLocalized("[%5@][%-5@][%08.3f]", {"ab", "ab", 3.14159}),
              "[   ab][ab   ][0003.142]");
    EXPECT_EQ(formatLocalized("[%+lu]", {42U}), "[42]");
}

TEST(LocalizedFormat, AMissingArgumentLeavesItsSpecifier) {
    EXPECT_EQ(formatLocalized("%.0f%%\n%@", {50.0}), "50%\n%@");
    EXPECT_EQ(formatLocalized("%@ %lu", {}), "%@ %lu");
    EXPECT_EQ(formatLocalized("%3$@ %@", {"a", "b"}), "%3$@ a");
}

TEST(LocalizedFormat, AnArgumentOfAnotherKindIsWrittenInItsOwnForm) {
    EXPECT_EQ(formatLocalized("%@ %@ %@", {5, 6U, 1.5}), "5 6 1.5");
    EXPECT_EQ(formatLocalized("%lu %.1f", {"text", "text"}), "text text");
    EXPECT_EQ(formatLocalized("%d", {2.5}), "2.5");
    EXPECT_EQ(formatLocalized("%lu", {-3}), "-3");
}

TEST(LocalizedFormat, WhatIsNoSpecifierStaysAsItStands) {
    for (const char* const text :
         {"100% sure", "100% discount", "%", "ends in %", "% ", "%n", "%p", "%*d", "%0$@", "%100d",
          "%.100f", "%99999999999999999999$@", "%l", "%1$", "%-", "%.", "%清"}) {
        EXPECT_EQ(formatLocalized(text, {"a", "b"}), text);
    }
}

TEST(LocalizedFormat, AnArgumentIsNeverReadAsAFormat) {
    EXPECT_EQ(formatLocalized("%@ %@", {"%@ {} %n", "{:99}"}), "%@ {} %n {:99}");
    EXPECT_EQ(formatLocalized("{} {0} %@", {"x"}), "{} {0} x");
}

RC_GTEST_PROP(LocalizedFormat, AnyTextIsFormattedWithoutHarm, ()) {
    const auto pieces = *rc::gen::container<std::vector<char>>(
        rc::gen::elementOf(std::string("%%%%@sdiuxXfegGlhz0123456789$.-+ *a")));
    const std::string text(pieces.begin(), pieces.end());
    const std::string out = formatLocalized(text, {"text", -7, 8U, 2.5});
    RC_ASSERT(out.size() <= (text.size() + 1) * 130);
}

}  // namespace
}  // namespace sweepwright::localization
