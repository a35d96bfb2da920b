#include "ui/ViewTest.h"
#include "ui/kit/Appearance.h"

namespace sweepwright::test {
namespace {

class KitView : public ViewTest {
  protected:
    QStringList taken(TestApp& app) { return std::exchange(screen(app).notes, {}); }
    static QStringList noted(const char* what) { return {QString::fromLatin1(what)}; }
    // A point of row `index`, which is on screen.
    QPoint inRow(TestApp& app, const char* row, double x) {
        const QQuickItem* item = app.item(row);
        return item->mapToScene(QPointF(x, item->height() / 2.0)).toPoint();
    }
};

TEST_F(KitView, PressesAGradientButtonByMouseTouchAndKeyboard) {
    TestApp app({}, gallery("Controls"));
    app.show();
    click(app, "scan");
    EXPECT_EQ(taken(app), noted("scan"));
    tap(app, TestApp::middleOf(app.item("clean")));
    EXPECT_EQ(taken(app), noted("clean"));
    app.item("scan")->forceActiveFocus(Qt::TabFocusReason);
    key(app, Qt::Key_Space);
    key(app, Qt::Key_Return);
    EXPECT_EQ(taken(app), noted("scan") + noted("scan"));
}

TEST_F(KitView, TogglesASwitchByMouseAndKeyboard) {
    TestApp app({}, gallery("Controls"));
    app.show();
    click(app, "switch");
    EXPECT_EQ(taken(app), noted("on"));
    app.item("switch")->forceActiveFocus(Qt::TabFocusReason);
    key(app, Qt::Key_Return);
    EXPECT_EQ(taken(app), noted("off"));
}

TEST_F(KitView, ChoosesASegmentByTouchAndKeyboard) {
    TestApp app({}, gallery("Controls"));
    app.show();
    QQuickItem* segments = app.item("segments");
    tap(app, segments->mapToScene({segments->width() * 0.75, segments->height() / 2.0}).toPoint());
    EXPECT_EQ(taken(app), noted("segment 1"));
    segments->forceActiveFocus(Qt::TabFocusReason);
    key(app, Qt::Key_Left);
    EXPECT_EQ(taken(app), noted("segment 0"));
    key(app, Qt::Key_Left);
    EXPECT_TRUE(taken(app).isEmpty());
}

TEST_F(KitView, FiltersAsAPersonTypesAndEmptiesOnEscape) {
    TestApp app({}, gallery("Controls"));
    app.show();
    click(app, "search");
    QTest::keyClick(&app.window(), 'a');
    QTest::keyClick(&app.window(), 'b');
    EXPECT_EQ(taken(app), noted("search a") + noted("search ab"));
    key(app, Qt::Key_Escape);
    EXPECT_EQ(app.item("search")->property("text").toString(), QString());
}

TEST_F(KitView, ReportsARowThatIsTapped) {
    TestApp app({}, gallery("Apps"));
    app.show();
    tap(app, inRow(app, "row1", 150));
    EXPECT_EQ(taken(app), noted("row 1"));
}

TEST_F(KitView, OpensARowsActionsByASwipeAndRunsTheOneTapped) {
    TestApp app({}, gallery("Apps"));
    app.show();
    swipe(app, inRow(app, "row2", 340), inRow(app, "row2", 150));
    QQuickItem* row = app.item("row2");
    EXPECT_TRUE(row->property("open").toBool());
    EXPECT_TRUE(taken(app).isEmpty());
    ASSERT_TRUE(waitUntil([&] { return row->property("settled").toBool(); }));
    tap(app, inRow(app, "row2", 390 - 41));
    EXPECT_EQ(taken(app), noted("action 0 of 2"));
    EXPECT_FALSE(row->property("open").toBool());
}

TEST_F(KitView, ClosesAnOpenRowWhenAnotherIsOpened) {
    TestApp app({}, gallery("Apps"));
    app.show();
    swipe(app, inRow(app, "row2", 340), inRow(app, "row2", 150));
    swipe(app, inRow(app, "row4", 340), inRow(app, "row4", 150));
    EXPECT_FALSE(app.item("row2")->property("open").toBool());
    EXPECT_TRUE(app.item("row4")->property("open").toBool());
}

TEST_F(KitView, ClosesAnOpenRowByATapOnIt) {
    TestApp app({}, gallery("Apps"));
    app.show();
    swipe(app, inRow(app, "row2", 340), inRow(app, "row2", 150));
    ASSERT_TRUE(waitUntil([&] { return app.item("row2")->property("settled").toBool(); }));
    tap(app, inRow(app, "row2", 60));
    EXPECT_FALSE(app.item("row2")->property("open").toBool());
}

TEST_F(KitView, LeavesARowClosedWhenTheSwipeIsShort) {
    TestApp app({}, gallery("Apps"));
    app.show();
    swipe(app, inRow(app, "row2", 340), inRow(app, "row2", 300));
    EXPECT_FALSE(app.item("row2")->property("open").toBool());
}

TEST_F(KitView, OpensARowsActionsByKeyboard) {
    TestApp app({}, gallery("Apps"));
    app.show();
    app.item("row0")->forceActiveFocus(Qt::TabFocusReason);
    key(app, Qt::Key_Left);
    EXPECT_TRUE(app.item("row0")->property("open").toBool());
    key(app, Qt::Key_Right);
    EXPECT_FALSE(app.item("row0")->property("open").toBool());
}

TEST_F(KitView, WalksThroughAListWithTheArrowKeys) {
    TestApp app({}, gallery("Apps"));
    app.show();
    app.item("list")->forceActiveFocus(Qt::TabFocusReason);
    key(app, Qt::Key_Down);
    key(app, Qt::Key_Down);
    key(app, Qt::Key_Return);
    EXPECT_EQ(taken(app), noted("row 1"));
}

TEST_F(KitView, RefreshesWhenAListIsPulledDownFarAndLetGo) {
    TestApp app({}, gallery("Apps"));
    app.show();
    swipe(app, {195, 250}, {195, 320});
    EXPECT_TRUE(taken(app).isEmpty());
    ASSERT_TRUE(waitUntil([&] { return !app.item("list")->property("moving").toBool(); }));
    swipe(app, {195, 250}, {195, 620});
    EXPECT_EQ(taken(app), noted("refresh"));
}

TEST_F(KitView, GrowsItsTextsWithTheDesktops) {
    TestApp app({}, gallery("Controls"));
    app.show();
    const double before = app.item("scan")->property("implicitContentWidth").toDouble();
    ui::Appearance::shared().setTextScale(1.6);
    EXPECT_TRUE(waitUntil([&] {
        return app.item("scan")->property("implicitContentWidth").toDouble() > before * 1.3;
    }));
}

TEST_F(KitView, NamesEverythingThatCanBePressed) {
    for (const char* page : {"Controls", "Grouped", "Apps", "AppsSwiped", "AppsEditing"}) {
        TestApp app({}, gallery(page));
        app.show();
        EXPECT_EQ(namelessItems(app), "") << page;
    }
}

}  // namespace
}  // namespace sweepwright::test
