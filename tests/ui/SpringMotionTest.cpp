#include <QSignalSpy>
#include <algorithm>

#include <gtest/gtest.h>

#include "ui/kit/Appearance.h"
#include "ui/kit/SpringMotion.h"
#include "ui/support/SteadyFrames.h"
#include "ui/support/TestApp.h"

namespace sweepwright::ui {
namespace {

class SpringMotionTest : public testing::Test {
  protected:
    void SetUp() override {
        Appearance::shared().setReducedMotion(false);
        motion_.setDuration(120);
        motion_.setDamping(0.5);
    }
    test::SteadyFrames frames_;
    SpringMotion motion_;
};

TEST_F(SpringMotionTest, SwingsToItsTargetAndStaysThere) {
    double highest = 0.0;
    QObject::connect(&motion_, &SpringMotion::valueChanged, &motion_,
                     [&] { highest = std::max(highest, motion_.value()); });
    QSignalSpy settled(&motion_, &SpringMotion::settled);
    motion_.setTo(10.0);
    EXPECT_TRUE(motion_.running());
    EXPECT_DOUBLE_EQ(motion_.value(), 0.0);
    ASSERT_TRUE(test::waitUntil([&] { return settled.count() > 0; }));
    EXPECT_DOUBLE_EQ(motion_.value(), 10.0);
    EXPECT_FALSE(motion_.running());
    EXPECT_GT(highest, 10.0);
}

TEST_F(SpringMotionTest, GoesOnFromWhereItIsWhenItsTargetChanges) {
    QSignalSpy settled(&motion_, &SpringMotion::settled);
    motion_.setTo(10.0);
    ASSERT_TRUE(test::waitUntil([&] { return motion_.value() > 2.0; }));
    const double reached = motion_.value();
    motion_.setTo(-10.0);
    EXPECT_DOUBLE_EQ(motion_.value(), reached);
    ASSERT_TRUE(test::waitUntil([&] { return settled.count() > 0; }));
    EXPECT_DOUBLE_EQ(motion_.value(), -10.0);
    EXPECT_EQ(settled.count(), 1);
}

TEST_F(SpringMotionTest, JumpsForWhoWantsReducedMotion) {
    Appearance::shared().setReducedMotion(true);
    QSignalSpy settled(&motion_, &SpringMotion::settled);
    motion_.setTo(10.0);
    EXPECT_DOUBLE_EQ(motion_.value(), 10.0);
    EXPECT_FALSE(motion_.running());
    EXPECT_EQ(settled.count(), 1);
    Appearance::shared().setReducedMotion(false);
}

TEST_F(SpringMotionTest, JumpsWhenItIsNotAnimated) {
    motion_.setAnimated(false);
    motion_.setTo(4.0);
    EXPECT_DOUBLE_EQ(motion_.value(), 4.0);
}

TEST_F(SpringMotionTest, ShowsItsFirstTargetWithoutMotion) {
    motion_.classBegin();
    motion_.setTo(7.0);
    motion_.componentComplete();
    EXPECT_DOUBLE_EQ(motion_.value(), 7.0);
    EXPECT_FALSE(motion_.running());
}

TEST_F(SpringMotionTest, HasSettledWhenItIsCalledBackBeforeItsFirstStep) {
    QSignalSpy settled(&motion_, &SpringMotion::settled);
    motion_.setTo(10.0);
    motion_.setTo(0.0);
    EXPECT_EQ(settled.count(), 1);
    EXPECT_FALSE(motion_.running());
}

TEST_F(SpringMotionTest, StopsWhereItIsPut) {
    motion_.setTo(10.0);
    motion_.jump(3.0);
    EXPECT_FALSE(motion_.running());
    EXPECT_DOUBLE_EQ(motion_.value(), 3.0);
    EXPECT_DOUBLE_EQ(motion_.to(), 3.0);
}

}  // namespace
}  // namespace sweepwright::ui
