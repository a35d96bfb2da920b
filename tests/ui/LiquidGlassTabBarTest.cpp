#include <gtest/gtest.h>

#include "platform/log/Log.h"
#include "ui/bar/LiquidGlassTabBar.h"

namespace sweepwright::ui {
namespace {

class Delegate : public LiquidGlassTabBarDelegate {
  public:
    void liquidGlassTabBarDidSelectItemAtIndex(int index) override { told.push_back(index); }
    std::vector<int> told;
};

std::vector<LiquidGlassTabBar::Item> items() {
    return {{QStringLiteral("Home"), QStringLiteral("house.fill")},
            {QStringLiteral("Apps"), QStringLiteral("app.badge.fill")},
            {QStringLiteral("Settings"), QStringLiteral("gearshape.fill")}};
}

class LiquidGlassTabBarTest : public testing::Test {
  protected:
    void SetUp() override {
        bar_.setDelegate(&delegate_);
        bar_.setWidth(225.0);
        bar_.setHeight(55.0);
    }
    Delegate delegate_;
    LiquidGlassTabBar bar_{items(), {18, 5}};
};

TEST_F(LiquidGlassTabBarTest, BeginsWithTheFirstItemAndNothingHighlighted) {
    EXPECT_EQ(bar_.selectedIndex(), 0);
    EXPECT_EQ(bar_.highlightedIndex(), -1);
    EXPECT_DOUBLE_EQ(bar_.sliderCenterX(), -75.0);
}

TEST(LiquidGlassTabBarForm, IsGlassFromVersion26OnAndSaysSo) {
    const platform::LogCapture log;
    EXPECT_TRUE(LiquidGlassTabBar(items(), {26, 0}).glass());
    EXPECT_TRUE(log.contains("📱 iOS 26+ 检测 - 使用原生 Liquid Glass 设计"));
}

TEST(LiquidGlassTabBarForm, IsFrostedBelowVersion26AndSaysSo) {
    const platform::LogCapture log;
    EXPECT_FALSE(LiquidGlassTabBar(items(), {25, 9}).glass());
    EXPECT_TRUE(log.contains("🎨 iOS 26 以下: 手动实现磨砂玻璃和胶囊形状"));
}

TEST(LiquidGlassTabBarForm, OfGlassIgnoresDrags) {
    Delegate delegate;
    LiquidGlassTabBar bar(items(), {26, 0});
    bar.setDelegate(&delegate);
    bar.setWidth(293.5);
    bar.panBegan(10);
    bar.panChanged(280);
    bar.panEnded(280);
    EXPECT_EQ(bar.selectedIndex(), 0);
    EXPECT_TRUE(delegate.told.empty());
}

TEST(LiquidGlassTabBarForm, PutsTheThirdItemsSliderAtTwoAndAHalfItemWidths) {
    LiquidGlassTabBar bar(items(), {18, 0});
    bar.setWidth(293.5);
    bar.setSelectedIndex(2);
    EXPECT_NEAR(bar.sliderCenterX(), 97.83, 0.01);
}

TEST(LiquidGlassTabBarForm, SplitsAColourIntoItsBytes) {
    EXPECT_EQ(LiquidGlassTabBar::colorFromARGB(0x80FF4020), QColor(0xFF, 0x40, 0x20, 0x80));
}

TEST_F(LiquidGlassTabBarTest, SelectsWithoutTellingTheDelegate) {
    bar_.setSelectedIndex(1, true);
    EXPECT_EQ(bar_.selectedIndex(), 1);
    EXPECT_DOUBLE_EQ(bar_.sliderCenterX(), 0.0);
    EXPECT_TRUE(bar_.sliderAnimated());
    EXPECT_TRUE(delegate_.told.empty());
}

TEST_F(LiquidGlassTabBarTest, SelectsWithoutMotionWhenToldSo) {
    bar_.setSelectedIndex(2, false);
    EXPECT_FALSE(bar_.sliderAnimated());
}

TEST_F(LiquidGlassTabBarTest, IgnoresTheSameIndexAndIndexesOutside) {
    bar_.setSelectedIndex(1);
    for (const int index : {1, -1, 3, 100}) {
        bar_.setSelectedIndex(index);
        EXPECT_EQ(bar_.selectedIndex(), 1) << index;
        EXPECT_DOUBLE_EQ(bar_.sliderCenterX(), 0.0) << index;
    }
}

TEST_F(LiquidGlassTabBarTest, TellsTheDelegateOfATapOnAnotherItemOnly) {
    bar_.tabBarDidSelectItem(0);
    EXPECT_TRUE(delegate_.told.empty());
    bar_.tabBarDidSelectItem(2);
    EXPECT_EQ(delegate_.told, std::vector<int>{2});
    EXPECT_EQ(bar_.selectedIndex(), 2);
}

TEST_F(LiquidGlassTabBarTest, GivesTheSliderItsSizeFromTheBarsHeight) {
    EXPECT_DOUBLE_EQ(bar_.sliderHeight(), 55.0 * 0.72);
    EXPECT_DOUBLE_EQ(bar_.sliderWidth(), 55.0 * 0.72 * 1.25);
}

TEST_F(LiquidGlassTabBarTest, LetsTheSliderFollowADragAndGrow) {
    bar_.panBegan(30.0);
    EXPECT_TRUE(bar_.dragging());
    EXPECT_DOUBLE_EQ(bar_.sliderAlpha(), 0.7);
    EXPECT_DOUBLE_EQ(bar_.sliderScale(), 1.2);
    EXPECT_EQ(bar_.highlightedIndex(), 0);
    bar_.panChanged(80.0);
    EXPECT_DOUBLE_EQ(bar_.sliderCenterX(), 80.0 - 112.5);
    EXPECT_FALSE(bar_.sliderAnimated());
    EXPECT_EQ(bar_.highlightedIndex(), 1);
    EXPECT_EQ(bar_.selectedIndex(), 0);
}

TEST_F(LiquidGlassTabBarTest, HighlightsTheItemUnderTheFingerOnly) {
    const auto scale = [&](int row) {
        return bar_.data(bar_.index(row), LiquidGlassTabBar::ScaleRole).toDouble();
    };
    bar_.panBegan(30.0);
    bar_.panChanged(160.0);
    EXPECT_DOUBLE_EQ(scale(0), 1.0);
    EXPECT_DOUBLE_EQ(scale(2), 1.15);
    bar_.panEnded(160.0);
    EXPECT_DOUBLE_EQ(scale(2), 1.0);
}

TEST_F(LiquidGlassTabBarTest, SelectsTheItemWhereADragEnds) {
    bar_.panBegan(30.0);
    bar_.panEnded(100.0);
    EXPECT_EQ(bar_.selectedIndex(), 1);
    EXPECT_EQ(delegate_.told, std::vector<int>{1});
    EXPECT_EQ(bar_.highlightedIndex(), -1);
    EXPECT_DOUBLE_EQ(bar_.sliderAlpha(), 0.25);
    EXPECT_DOUBLE_EQ(bar_.sliderScale(), 1.0);
    EXPECT_DOUBLE_EQ(bar_.sliderCenterX(), 0.0);
    EXPECT_TRUE(bar_.sliderAnimated());
}

TEST_F(LiquidGlassTabBarTest, SelectsTheLastItemWhenADragEndsBeyondIt) {
    bar_.panBegan(30.0);
    bar_.panEnded(900.0);
    EXPECT_EQ(bar_.selectedIndex(), 2);
}

TEST_F(LiquidGlassTabBarTest, SelectsTheFirstItemWhenADragEndsBeforeIt) {
    bar_.setSelectedIndex(2);
    bar_.panBegan(200.0);
    bar_.panEnded(-40.0);
    EXPECT_EQ(bar_.selectedIndex(), 0);
    EXPECT_EQ(delegate_.told, std::vector<int>{0});
}

TEST_F(LiquidGlassTabBarTest, ReturnsTheSliderWhenADragEndsOverTheSelectedItem) {
    bar_.panBegan(30.0);
    bar_.panChanged(100.0);
    bar_.panEnded(60.0);
    EXPECT_TRUE(delegate_.told.empty());
    EXPECT_DOUBLE_EQ(bar_.sliderCenterX(), -75.0);
    EXPECT_TRUE(bar_.sliderAnimated());
}

TEST(LiquidGlassTabBarForm, OfNoWidthIgnoresDrags) {
    LiquidGlassTabBar bar(items(), {18, 0});
    bar.panBegan(3.0);
    EXPECT_FALSE(bar.dragging());
}

}  // namespace
}  // namespace sweepwright::ui
