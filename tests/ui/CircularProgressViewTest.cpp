#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <cmath>
#include <limits>
#include <numbers>

#include <gtest/gtest.h>

#include "ui/home/CircularProgressView.h"
#include "ui/kit/Appearance.h"
#include "ui/support/SteadyFrames.h"
#include "ui/support/TestApp.h"

namespace sweepwright::ui {
namespace {

class CircularProgressViewTest : public testing::Test {
  protected:
    void SetUp() override {
        Appearance::shared().setReducedMotion(false);
        ring_.setSize({150, 150});
        ring_.setLineWidth(12);
    }
    // What is painted in the middle of the line, `share` of the way round from the top.
    QColor at(double share) {
        QImage image(150, 150, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        ring_.paint(&painter);
        painter.end();
        const double angle = 2.0 * std::numbers::pi * share;
        return image.pixelColor(static_cast<int>(75 + ring_.radius() * std::sin(angle)),
                                static_cast<int>(75 - ring_.radius() * std::cos(angle)));
    }
    bool isFilled(double share) {
        const QColor color = at(share);
        return color.blue() > 200 && color.red() < 80;
    }

    test::SteadyFrames frames_;
    CircularProgressView ring_;
};

TEST_F(CircularProgressViewTest, BeginsEmptyBlueAndFifteenPointsWide) {
    const CircularProgressView ring;
    EXPECT_DOUBLE_EQ(ring.progress(), 0.0);
    EXPECT_DOUBLE_EQ(ring.lineWidth(), 15.0);
    EXPECT_EQ(ring.progressColor(), QColor(0x00, 0x7a, 0xff));
    EXPECT_NEAR(ring.trackColor().alphaF(), 0.2, 0.001);
}

TEST_F(CircularProgressViewTest, FillsFromTheTopClockwise) {
    ring_.setProgress(0.5);
    EXPECT_TRUE(isFilled(0.02));
    EXPECT_TRUE(isFilled(0.25));
    EXPECT_TRUE(isFilled(0.48));
    EXPECT_FALSE(isFilled(0.6));
    EXPECT_FALSE(isFilled(0.75));
    EXPECT_FALSE(isFilled(0.9));
}

TEST_F(CircularProgressViewTest, TakesWhatIsBeyondForFullOrEmpty) {
    ring_.setProgress(1.4);
    EXPECT_DOUBLE_EQ(ring_.progress(), 1.0);
    for (const double share : {0.0, 0.3, 0.7, 0.99})
        EXPECT_TRUE(isFilled(share));
    ring_.setProgress(-0.2);
    EXPECT_DOUBLE_EQ(ring_.progress(), 0.0);
    for (const double share : {0.0, 0.3, 0.7, 0.99})
        EXPECT_FALSE(isFilled(share));
    ring_.setProgress(std::numeric_limits<double>::quiet_NaN());
    EXPECT_DOUBLE_EQ(ring_.progress(), 0.0);
}

TEST_F(CircularProgressViewTest, DrawsInItsColours) {
    ring_.setProgress(0.5);
    ring_.setProgressColor(Qt::red);
    ring_.setTrackColor(Qt::green);
    EXPECT_EQ(at(0.25), QColor(Qt::red));
    EXPECT_EQ(at(0.75), QColor(Qt::green));
}

TEST_F(CircularProgressViewTest, KeepsItsLineInsideItsEdges) {
    EXPECT_DOUBLE_EQ(ring_.radius(), 69.0);
    ring_.setShadowRoom(24);
    EXPECT_DOUBLE_EQ(ring_.radius(), 45.0);
    ring_.setShadowRoom(0);
    ring_.setSize({100, 300});
    EXPECT_DOUBLE_EQ(ring_.radius(), 44.0);
    ring_.setSize({8, 8});
    EXPECT_DOUBLE_EQ(ring_.radius(), 0.0);
    QImage image(8, 8, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    ring_.paint(&painter);
    EXPECT_EQ(image.pixelColor(4, 4), QColor(Qt::white));
}

TEST_F(CircularProgressViewTest, MovesOnlyWhenItIsToBeAnimated) {
    QSignalSpy steps(&ring_, &CircularProgressView::strokeEndChanged);
    ring_.setProgress(0.4);
    EXPECT_EQ(steps.count(), 1);
    EXPECT_DOUBLE_EQ(ring_.strokeEnd(), 0.4);
    ring_.setProgress(0.8, true);
    EXPECT_DOUBLE_EQ(ring_.progress(), 0.8);
    EXPECT_DOUBLE_EQ(ring_.strokeEnd(), 0.4);
    ASSERT_TRUE(test::waitUntil([&] { return ring_.strokeEnd() > 0.45; }));
    EXPECT_LT(ring_.strokeEnd(), 0.8);
    ASSERT_TRUE(test::waitUntil([&] { return ring_.strokeEnd() == 0.8; }));
}

TEST_F(CircularProgressViewTest, GoesOnFromWhereItIsOnItsWay) {
    ring_.setProgress(1.0, true);
    ASSERT_TRUE(test::waitUntil([&] { return ring_.strokeEnd() > 0.1; }));
    const double reached = ring_.strokeEnd();
    ring_.setProgress(0.0, true);
    EXPECT_DOUBLE_EQ(ring_.strokeEnd(), reached);
    ASSERT_TRUE(test::waitUntil([&] { return ring_.strokeEnd() == 0.0; }));
}

TEST_F(CircularProgressViewTest, JumpsForWhoWantsReducedMotion) {
    Appearance::shared().setReducedMotion(true);
    ring_.setProgress(0.8, true);
    EXPECT_DOUBLE_EQ(ring_.strokeEnd(), 0.8);
    Appearance::shared().setReducedMotion(false);
}

}  // namespace
}  // namespace sweepwright::ui
