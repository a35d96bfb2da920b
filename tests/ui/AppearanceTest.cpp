#include <QSignalSpy>

#include <gtest/gtest.h>

#include "ui/kit/Appearance.h"

namespace sweepwright::ui {
namespace {

class AppearanceTest : public testing::Test {
  protected:
    void SetUp() override { forget(); }
    void TearDown() override { forget(); }

    // Back to a desktop that says nothing.
    void forget() {
        appearance_.setStyle(Appearance::Style::Desktop);
        appearance_.setTextScale(std::nullopt);
        appearance_.setReducedMotion(std::nullopt);
        tell("org.freedesktop.appearance", "color-scheme", 0U);
        tell("org.gnome.desktop.interface", "text-scaling-factor", 1.0);
        tell("org.gnome.desktop.interface", "enable-animations", true);
    }
    void tell(const char* group, const char* key, const QVariant& value) {
        appearance_.takeSetting(QString::fromLatin1(group), QString::fromLatin1(key), value);
    }

    Appearance& appearance_ = Appearance::shared();
};

TEST_F(AppearanceTest, FollowsTheDesktopsColourScheme) {
    QSignalSpy changed(&appearance_, &Appearance::darkChanged);
    tell("org.freedesktop.appearance", "color-scheme", 1U);
    EXPECT_TRUE(appearance_.dark());
    EXPECT_EQ(changed.count(), 1);
    tell("org.freedesktop.appearance", "color-scheme", 2U);
    EXPECT_FALSE(appearance_.dark());
}

TEST_F(AppearanceTest, CanBeSwitchedWhateverTheDesktopSays) {
    tell("org.freedesktop.appearance", "color-scheme", 1U);
    appearance_.setStyle(Appearance::Style::Light);
    EXPECT_FALSE(appearance_.dark());
    appearance_.setStyle(Appearance::Style::Desktop);
    EXPECT_TRUE(appearance_.dark());
}

TEST_F(AppearanceTest, FollowsTheDesktopsTextSizeWithinLimits) {
    QSignalSpy changed(&appearance_, &Appearance::textScaleChanged);
    tell("org.gnome.desktop.interface", "text-scaling-factor", 1.5);
    EXPECT_DOUBLE_EQ(appearance_.textScale(), 1.5);
    EXPECT_EQ(changed.count(), 1);
    tell("org.gnome.desktop.interface", "text-scaling-factor", 40.0);
    EXPECT_DOUBLE_EQ(appearance_.textScale(), Appearance::kLargestTextScale);
    tell("org.gnome.desktop.interface", "text-scaling-factor", 0.1);
    EXPECT_DOUBLE_EQ(appearance_.textScale(), Appearance::kSmallestTextScale);
}

TEST_F(AppearanceTest, FollowsTheDesktopsWishForNoMotion) {
    tell("org.gnome.desktop.interface", "enable-animations", false);
    EXPECT_TRUE(appearance_.reducedMotion());
    appearance_.setReducedMotion(false);
    EXPECT_FALSE(appearance_.reducedMotion());
}

}  // namespace
}  // namespace sweepwright::ui
