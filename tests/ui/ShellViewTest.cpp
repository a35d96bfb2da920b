#include "ui/ViewTest.h"
#include "ui/kit/Appearance.h"

namespace sweepwright::test {
namespace {

class ShellView : public ViewTest {
  protected:
    // Whether the pushed screen has come all the way: its back button stands at the left.
    bool settled(TestApp& app) {
        return waitUntil([&] {
            const QQuickItem* button = app.item("backButton");
            return button->isVisible() && button->mapToScene({0, 0}).x() == 4.0;
        });
    }
};

TEST_F(ShellView, SelectsATabByMouse) {
    TestApp app({}, gallery("Controls"));
    app.show();
    click(app, "tab1");
    EXPECT_EQ(app.scene().tabBarController()->selectedIndex(), 1);
}

TEST_F(ShellView, SelectsATabByTouch) {
    TestApp app({}, gallery("Controls"));
    app.show();
    tap(app, TestApp::middleOf(app.item("tab2")));
    EXPECT_EQ(app.scene().tabBarController()->selectedIndex(), 2);
}

TEST_F(ShellView, SelectsATabByKeyboard) {
    TestApp app({}, gallery("Controls"));
    app.show();
    key(app, Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(app.scene().tabBarController()->selectedIndex(), 1);
    app.item("tab2")->forceActiveFocus(Qt::TabFocusReason);
    key(app, Qt::Key_Return);
    EXPECT_EQ(app.scene().tabBarController()->selectedIndex(), 2);
}

TEST_F(ShellView, GivesTheBarItsPlace) {
    TestApp app({}, gallery("Controls"));
    app.show();
    const QQuickItem* bar = app.item("tabBar");
    EXPECT_DOUBLE_EQ(bar->width(), 293.5);
    EXPECT_DOUBLE_EQ(bar->height(), 65.0);
    EXPECT_DOUBLE_EQ(bar->x() + bar->width() / 2.0, 195.0);
    EXPECT_DOUBLE_EQ(bar->y() + bar->height(), 834.0);
}

TEST_F(ShellView, DragsTheFrostedBarsSliderToAnotherTab) {
    TestApp app({.osVersion = 18}, gallery("Controls"));
    app.show();
    swipe(app, TestApp::middleOf(app.item("tab0")), TestApp::middleOf(app.item("tab2")));
    EXPECT_EQ(app.scene().tabBarController()->selectedIndex(), 2);
    const ui::LiquidGlassTabBar& bar = *app.scene().liquidGlassTabBar();
    EXPECT_FALSE(bar.dragging());
    EXPECT_EQ(bar.highlightedIndex(), -1);
    const QQuickItem* slider = app.item("slider");
    EXPECT_TRUE(waitUntil([&] {
        return std::abs(TestApp::middleOf(slider).x() - TestApp::middleOf(app.item("tab2")).x()) <=
               1;
    }));
}

TEST_F(ShellView, HidesTheBarWhenAFingerScrollsDownAndShowsItAgainOnTheWayUp) {
    TestApp app({}, gallery("Apps"));
    app.show();
    const QQuickItem* bar = app.item("tabBar");
    EXPECT_TRUE(swipeTurnsBar(app, {195, 600}, {195, 250}, true));
    app.scene().hideTabBar();
    EXPECT_TRUE(waitUntil([&] { return bar->y() == 844.0 + 85.0 - 65.0; }));
    EXPECT_TRUE(swipeTurnsBar(app, {195, 300}, {195, 480}, false));
    app.scene().showTabBar();
    EXPECT_TRUE(waitUntil([&] { return bar->y() == 844.0 - 10.0 - 65.0; }));
}

TEST_F(ShellView, MovesTheBarAtOnceForWhoWantsReducedMotion) {
    TestApp app({}, gallery("Apps"));
    ui::Appearance::shared().setReducedMotion(true);
    app.show();
    app.scene().hideTabBar();
    EXPECT_DOUBLE_EQ(app.item("tabBar")->y(), 844.0 + 85.0 - 65.0);
}

TEST_F(ShellView, ClosesTheWelcomeByItsButton) {
    TestApp app({.welcomeShown = false}, gallery("Controls"));
    app.show();
    app.mainQueue.runUntil([&] { return app.presenter().active(); });
    click(app, "closeButton");
    EXPECT_FALSE(app.presenter().active());
    EXPECT_TRUE(app.services().defaults.boolean("hasShownWelcome"));
    EXPECT_TRUE(waitUntil([&] { return app.presenter().rowCount() == 0; }));
}

TEST_F(ShellView, FollowsALinkOfTheWelcomeByTouch) {
    TestApp app({.welcomeShown = false}, gallery("Controls"));
    app.show();
    app.mainQueue.runUntil([&] { return app.presenter().active(); });
    tap(app, TestApp::middleOf(app.item("wechatButton")));
    EXPECT_EQ(app.opener.opened.size(), 1U);
    EXPECT_TRUE(app.presenter().active());
}

TEST_F(ShellView, LetsAPushedScreenComeAndGoByItsBackButton) {
    TestApp app({}, gallery("Controls"));
    app.show();
    ui::NavigationController& navigation = app.scene().tabBarController()->at(0);
    navigation.push(std::make_unique<GalleryScreen>(QStringLiteral("Symbols"), app.services().texts,
                                                    "Settings", app.notifications));
    ASSERT_TRUE(settled(app));
    QTest::mouseClick(&app.window(), Qt::LeftButton, {}, QPoint(26, 26));
    EXPECT_EQ(navigation.depth(), 1);
    EXPECT_TRUE(waitUntil([&] { return navigation.rowCount() == 1; }));
}

TEST_F(ShellView, GoesBackByASwipeFromTheEdge) {
    TestApp app({}, gallery("Controls"));
    app.show();
    ui::NavigationController& navigation = app.scene().tabBarController()->at(0);
    navigation.push(std::make_unique<GalleryScreen>(QStringLiteral("Symbols"), app.services().texts,
                                                    "Settings", app.notifications));
    ASSERT_TRUE(settled(app));
    swipe(app, {6, 400}, {330, 400});
    EXPECT_EQ(navigation.depth(), 1);
    EXPECT_TRUE(waitUntil([&] { return navigation.rowCount() == 1; }));
}

TEST_F(ShellView, StaysWhenTheSwipeFromTheEdgeIsShort) {
    TestApp app({}, gallery("Controls"));
    app.show();
    ui::NavigationController& navigation = app.scene().tabBarController()->at(0);
    navigation.push(std::make_unique<GalleryScreen>(QStringLiteral("Symbols"), app.services().texts,
                                                    "Settings", app.notifications));
    ASSERT_TRUE(settled(app));
    swipe(app, {6, 400}, {36, 400});
    EXPECT_EQ(navigation.depth(), 2);
    EXPECT_TRUE(settled(app));
}

TEST_F(ShellView, GoesBackByKeyboard) {
    TestApp app({}, gallery("Controls"));
    app.show();
    ui::NavigationController& navigation = app.scene().tabBarController()->at(0);
    navigation.push(std::make_unique<GalleryScreen>(QStringLiteral("Symbols"), app.services().texts,
                                                    "Settings", app.notifications));
    key(app, Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(navigation.depth(), 1);
}

}  // namespace
}  // namespace sweepwright::test
