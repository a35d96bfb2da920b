#include <gtest/gtest.h>

#include "launch/Version.h"

namespace sweepwright::launch {
namespace {

TEST(Version, NamesTheCommitAndItsDateWhereTheyAreKnown) {
    EXPECT_EQ(versionText("sweepctl", {"1.2.3", "0123456789ab", "2026-02-03"}),
              "sweepctl 1.2.3 (0123456789ab, 2026-02-03)");
    EXPECT_EQ(versionText("sweepctl", {"1.2.3", "", ""}), "sweepctl 1.2.3");
}

TEST(Version, OfTheProgramIsANumber) {
    EXPECT_EQ(programVersion().number.find_first_not_of("0123456789."), std::string_view::npos);
    EXPECT_FALSE(programVersion().number.empty());
    EXPECT_EQ(programVersion().commit.empty(), programVersion().date.empty());
}

}  // namespace
}  // namespace sweepwright::launch
