#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/base/Uuid.h"

namespace sweepwright::platform {
namespace {

TEST(Uuid, IsAnUppercaseTextOfVersionFour) {
    const std::string hex4 = "[0-9A-F][0-9A-F][0-9A-F][0-9A-F]";
    const std::string hex3 = "[0-9A-F][0-9A-F][0-9A-F]";
    const std::string form =
        hex4 + hex4 + "-" + hex4 + "-4" + hex3 + "-[89AB]" + hex3 + "-" + hex4 + hex4 + hex4;
    for (int i = 0; i < 100; ++i)
        EXPECT_THAT(newUuid(), testing::MatchesRegex(form));
}

TEST(Uuid, IsNeverTheSameTwice) {
    std::set<std::string> seen;
    for (int i = 0; i < 1000; ++i)
        seen.insert(newUuid());
    EXPECT_EQ(seen.size(), 1000U);
}

}  // namespace
}  // namespace sweepwright::platform
