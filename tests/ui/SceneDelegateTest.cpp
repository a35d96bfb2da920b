#include <chrono>

#include <gtest/gtest.h>

#include "ui/presentation/ScrollReporter.h"
#include "ui/shell/SceneDelegate.h"
#include "ui/support/TestApp.h"
#include "ui/welcome/WelcomeViewController.h"

namespace sweepwright::ui {
namespace {

using test::TestApp;

void report(TestApp& app, double y, double last) {
    app.notifications.post("TabBarScrollNotification",
                           {{"contentOffsetY", y}, {"lastContentOffsetY", last}});
}

TEST(SceneDelegate, HasThreeTabsInTheirOrder) {
    TestApp app;
    const LiquidGlassTabBar& bar = *app.scene().liquidGlassTabBar();
    ASSERT_EQ(bar.rowCount(), 3);
    const char* const images[] = {"house.fill", "app.badge.fill", "gearshape.fill"};
    const char* const titles[] = {"Home", "Apps", "Settings"};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(bar.data(bar.index(i), LiquidGlassTabBar::ImageRole).toString(),
                  QLatin1String(images[i]));
        EXPECT_EQ(bar.data(bar.index(i), LiquidGlassTabBar::TitleRole).toString(),
                  QLatin1String(titles[i]));
    }
    EXPECT_EQ(app.scene().tabBarController()->count(), 3);
}

TEST(SceneDelegate, SizesTheBarByTheSystemsVersion) {
    TestApp glass;
    EXPECT_DOUBLE_EQ(glass.scene().tabBarWidth(390.0), 293.5);
    EXPECT_DOUBLE_EQ(glass.scene().tabBarHeight(), 65.0);
    TestApp frosted({.osVersion = 18});
    EXPECT_DOUBLE_EQ(frosted.scene().tabBarWidth(390.0), 225.0);
    EXPECT_DOUBLE_EQ(frosted.scene().tabBarHeight(), 55.0);
}

TEST(SceneDelegate, MirrorsASelectionOnTheBarInTheTabs) {
    TestApp app;
    app.scene().liquidGlassTabBar()->tabBarDidSelectItem(2);
    EXPECT_EQ(app.scene().tabBarController()->selectedIndex(), 2);
}

TEST(SceneDelegate, MirrorsASelectionOfTheTabsOnTheBar) {
    TestApp app;
    app.scene().tabBarController()->setSelectedIndex(1);
    EXPECT_EQ(app.scene().liquidGlassTabBar()->selectedIndex(), 1);
    EXPECT_TRUE(app.scene().liquidGlassTabBar()->sliderAnimated());
}

TEST(SceneDelegate, IgnoresASelectionOutsideTheTabs) {
    TestApp app;
    app.scene().liquidGlassTabBarDidSelectItemAtIndex(3);
    app.scene().liquidGlassTabBarDidSelectItemAtIndex(-1);
    EXPECT_EQ(app.scene().tabBarController()->selectedIndex(), 0);
}

TEST(SceneDelegate, HidesTheBarWhenAPersonReadsOnAndShowsItOnTheWayBack) {
    TestApp app;
    EXPECT_DOUBLE_EQ(app.scene().tabBarBottomConstant(), -10.0);
    report(app, 120, 100);
    EXPECT_TRUE(app.scene().tabBarIsHidden());
    EXPECT_DOUBLE_EQ(app.scene().tabBarBottomConstant(), 85.0);
    report(app, 100, 120);
    EXPECT_FALSE(app.scene().tabBarIsHidden());
    EXPECT_DOUBLE_EQ(app.scene().tabBarBottomConstant(), -10.0);
}

TEST(SceneDelegate, DropsTheFrostedBarByItsOwnHeight) {
    TestApp app({.osVersion = 18});
    app.scene().hideTabBar();
    EXPECT_DOUBLE_EQ(app.scene().tabBarBottomConstant(), 75.0);
}

TEST(SceneDelegate, TakesAMovementOfExactlyTenPointsAndNoneBelow) {
    TestApp app;
    report(app, 109.9, 100);
    EXPECT_FALSE(app.scene().tabBarIsHidden());
    report(app, 110, 100);
    EXPECT_TRUE(app.scene().tabBarIsHidden());
    report(app, 100.1, 110);
    EXPECT_TRUE(app.scene().tabBarIsHidden());
    report(app, 100, 110);
    EXPECT_FALSE(app.scene().tabBarIsHidden());
}

TEST(SceneDelegate, AlwaysShowsTheBarAtTheTop) {
    for (const double y : {0.0, -30.0}) {
        TestApp app;
        report(app, 200, 100);
        ASSERT_TRUE(app.scene().tabBarIsHidden());
        report(app, y, y - 500);
        EXPECT_FALSE(app.scene().tabBarIsHidden()) << y;
    }
}

TEST(SceneDelegate, RunsOneAnimationForTwoRequests) {
    TestApp app;
    int changes = 0;
    QObject::connect(&app.scene(), &SceneDelegate::tabBarIsHiddenChanged, [&] { ++changes; });
    app.scene().hideTabBar();
    app.scene().hideTabBar();
    EXPECT_EQ(changes, 1);
    app.scene().showTabBar();
    app.scene().showTabBar();
    EXPECT_EQ(changes, 2);
}

TEST(SceneDelegate, HearsNothingAfterItsWindowIsGone) {
    TestApp app;
    app.scene().sceneDidDisconnect();
    report(app, 200, 100);
    EXPECT_FALSE(app.scene().tabBarIsHidden());
}

TEST(SceneDelegate, PresentsTheWelcomeHalfASecondAfterTheFirstStart) {
    TestApp app({.welcomeShown = false});
    const auto begun = std::chrono::steady_clock::now();
    app.scene().sceneWillConnect();
    EXPECT_FALSE(app.presenter().active());
    app.mainQueue.runUntil([&] { return app.presenter().active(); });
    EXPECT_GE(std::chrono::steady_clock::now() - begun, SceneDelegate::kWelcomeDelay);
    EXPECT_NE(qobject_cast<WelcomeViewController*>(app.presenter().screen()), nullptr);
    EXPECT_FALSE(app.services().defaults.boolean("hasShownWelcome"));
}

TEST(SceneDelegate, PresentsNoWelcomeOnceItWasShown) {
    TestApp app;
    app.scene().sceneWillConnect();
    // Whatever it has posted runs before this does.
    bool passed = false;
    app.mainQueue.after(SceneDelegate::kWelcomeDelay + std::chrono::milliseconds(1),
                        [&] { passed = true; });
    app.mainQueue.runUntil([&] { return passed; });
    EXPECT_FALSE(app.presenter().active());
}

TEST(SceneDelegate, TellsTheScreensOfTheTabsWhenTheyAppear) {
    TestApp app;
    TabBarController& tabs = *app.scene().tabBarController();
    app.scene().sceneWillConnect();
    EXPECT_TRUE(tabs.at(0).root()->visible());
    EXPECT_FALSE(tabs.at(1).root()->visible());
    tabs.setSelectedIndex(1);
    EXPECT_FALSE(tabs.at(0).root()->visible());
    EXPECT_TRUE(tabs.at(1).root()->visible());
}

TEST(ScrollReporter, PostsTheOffsetAndTheOneBefore) {
    platform::NotificationCenter notifications;
    std::vector<std::pair<double, double>> posted;
    const auto subscription =
        notifications.observe("TabBarScrollNotification", [&](const auto& info) {
            posted.emplace_back(info.at("contentOffsetY"), info.at("lastContentOffsetY"));
        });
    ScrollReporter reporter(notifications);
    reporter.didScroll(12);
    reporter.didScroll(30);
    reporter.didEnd(42);
    reporter.didScroll(44);
    const std::vector<std::pair<double, double>> expected{{12, 0}, {30, 12}, {44, 42}};
    EXPECT_EQ(posted, expected);
}

}  // namespace
}  // namespace sweepwright::ui
