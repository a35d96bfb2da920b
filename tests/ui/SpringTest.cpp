#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "ui/kit/Spring.h"

namespace sweepwright::ui {
namespace {

struct Numbers {
    double duration;
    double damping;
    double velocity;
};

// Every spring that the product's views use.
constexpr Numbers kUsed[] = {{0.3, 0.8, 0.0}, {0.3, 0.7, 0.0},  {0.2, 0.7, 0.0},
                             {0.2, 0.6, 0.8}, {0.25, 0.5, 1.0}, {0.2, 0.5, 0.8},
                             {0.5, 0.5, 0.8}, {0.3, 0.6, 0.8},  {0.4, 1.0, 0.0}};

TEST(Spring, StartsAtZeroAndEndsAtOneWhenItsDurationIsOver) {
    for (const Numbers& each : kUsed) {
        const Spring spring(each.duration, each.damping, each.velocity);
        EXPECT_DOUBLE_EQ(spring.position(0.0), 0.0);
        EXPECT_DOUBLE_EQ(spring.position(each.duration), 1.0);
        EXPECT_DOUBLE_EQ(spring.velocity(each.duration), 0.0);
    }
}

TEST(Spring, HasSettledToAThousandthJustBeforeItsDurationIsOver) {
    for (const Numbers& each : kUsed) {
        const Spring spring(each.duration, each.damping, each.velocity);
        EXPECT_NEAR(spring.position(each.duration * 0.99999), 1.0, Spring::kRest * 1.01)
            << each.duration << " " << each.damping;
    }
}

TEST(Spring, IsStillOnItsWayAtAFifthOfItsDuration) {
    for (const Numbers& each : kUsed) {
        const Spring spring(each.duration, each.damping, each.velocity);
        EXPECT_GT(std::abs(spring.position(each.duration * 0.2) - 1.0), 10.0 * Spring::kRest);
    }
}

double overshoot(const Spring& spring) {
    double highest = 0.0;
    for (int i = 0; i <= 1000; ++i) {
        highest = std::max(highest, spring.position(spring.duration() * i / 1000.0));
    }
    return highest - 1.0;
}

TEST(Spring, OvershootsAsItsDampingRatioSays) {
    // A free oscillator of damping ratio z passes its target by exp(-pi z / sqrt(1 - z²)).
    for (const double damping : {0.5, 0.6, 0.7, 0.8}) {
        const double expected = std::exp(-M_PI * damping / std::sqrt(1.0 - damping * damping));
        EXPECT_NEAR(overshoot(Spring(0.3, damping)), expected, 0.001) << damping;
    }
}

TEST(Spring, NeverOvershootsWhenCriticallyDamped) {
    EXPECT_LE(overshoot(Spring(0.4, 1.0)), 0.0);
    EXPECT_LE(overshoot(Spring(0.4, 2.0)), 0.0);
}

TEST(Spring, BeginsWithTheVelocityGiven) {
    const Spring spring(0.25, 0.5, 1.0);
    constexpr double kMoment = 1e-7;
    EXPECT_NEAR(spring.position(kMoment) / kMoment, 1.0, 1e-3);
    EXPECT_DOUBLE_EQ(spring.velocity(0.0), 1.0);
}

TEST(Spring, TellsTheVelocityThatItsPositionsHave) {
    for (const Numbers& each : kUsed) {
        const Spring spring(each.duration, each.damping, each.velocity);
        for (const double share : {0.1, 0.3, 0.6}) {
            constexpr double kStep = 1e-6;
            const double t = each.duration * share;
            const double slope =
                (spring.position(t + kStep) - spring.position(t - kStep)) / (2 * kStep);
            EXPECT_NEAR(spring.velocity(t), slope, 1e-3 * (1.0 + std::abs(slope)));
        }
    }
}

TEST(Spring, OfNoDurationIsThereAtOnce) {
    EXPECT_DOUBLE_EQ(Spring(0.0, 0.7).position(0.0), 1.0);
}

}  // namespace
}  // namespace sweepwright::ui
