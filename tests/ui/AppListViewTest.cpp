#include <random>

#include "ui/AppScreensTest.h"
#include "ui/kit/Appearance.h"

namespace sweepwright::test {
namespace {

using ui::AppListViewController;
using ui::WhitelistViewController;
using Names = std::vector<std::string>;

class AppListView : public AppScreensTest {
  protected:
    // The tab with a window, the few apps, all at rest.
    void showTab() {
        app_.show();
        app_.scene().tabBarController()->setSelectedIndex(1);
        finishLoading();
        settle();
    }
    void showTabWithFew() {
        installFew();
        showTab();
    }
    void settle() {
        (void)app_.window().grabWindow();
        ASSERT_TRUE(waitUntil([&] {
            app_.mainQueue.drain();
            return !flickable()->property("moving").toBool();
        }));
    }
    QQuickItem* flickable() { return app_.item(listName_); }
    // Rows on screen, from top to bottom.
    std::vector<QQuickItem*> shownRows() {
        std::vector<QQuickItem*> result;
        for (QQuickItem* each :
             flickable()->property("contentItem").value<QQuickItem*>()->childItems()) {
            const bool isRow = each->objectName().startsWith(QLatin1String("app "));
            if (isRow && each->isVisible() && each->opacity() > 0.0) result.push_back(each);
        }
        std::sort(
            result.begin(), result.end(),
            [](const QQuickItem* left, const QQuickItem* right) { return left->y() < right->y(); });
        return result;
    }
    Names shownTitles() {
        Names result;
        for (const QQuickItem* row : shownRows())
            result.push_back(row->property("title").toString().toStdString());
        return result;
    }
    bool shows(const Names& expected) {
        const bool shown = waitUntil([&] {
            app_.mainQueue.drain();
            return shownTitles() == expected;
        });
        EXPECT_EQ(shownTitles(), expected);
        return shown;
    }
    QQuickItem* row(const char* identifier) {
        return app_.item((std::string("app ") + identifier).c_str());
    }
    QPoint inRow(const char* identifier, double x) {
        const QQuickItem* item = row(identifier);
        return item->mapToScene(QPointF(x, item->height() / 2.0)).toPoint();
    }
    void swipeOpen(const char* identifier) {
        swipe(app_, inRow(identifier, 340), inRow(identifier, 120));
        ASSERT_TRUE(waitUntil([&] { return row(identifier)->property("settled").toBool(); }));
        ASSERT_TRUE(isOpen(identifier));
    }
    bool isOpen(const char* identifier) { return row(identifier)->property("open").toBool(); }
    // Of the buttons behind an open row, the outermost first.
    void tapAction(const char* identifier, int index) {
        tap(app_, inRow(identifier, app_.window().width() - 41 - 82 * index));
    }
    void type(const char* text) {
        for (const char* each = text; *each != '\0'; ++each)
            QTest::keyClick(&app_.window(), *each);
    }

    const char* listName_ = "appList";
};

TEST_F(AppListView, ShowsItsRowsWithoutComplaint) {
    showTabWithFew();
    EXPECT_TRUE(shows({"Alpha", "Bravo", "Charlie"}));
    EXPECT_EQ(row("com.example.alpha")->height(), 70.0);
}

TEST_F(AppListView, FindsOneOfFourHundredByThreeLetters) {
    for (const InstalledApp& each : manyApps(400))
        install(app_.device, each);
    install(app_.device, {"org.example.quince", "Quince", kMiB, 0});
    showTab();
    click(app_, "searchField");
    type("quI");
    EXPECT_TRUE(shows({"Quince"}));
    EXPECT_EQ(rows().rowCount(), 1);
    tap(app_, inRow("org.example.quince", 150));
    EXPECT_EQ(alert().title(), QLatin1String("Clean App Cache?"));
}

TEST_F(AppListView, ShowsAllAgainWhenTheSearchIsCancelled) {
    showTabWithFew();
    click(app_, "searchField");
    type("zz");
    EXPECT_TRUE(shows({}));
    EXPECT_EQ(app_.item("emptyLabel")->property("text").toString(),
              QLatin1String("No Matching Apps"));
    key(app_, Qt::Key_Escape);
    EXPECT_TRUE(shows({"Alpha", "Bravo", "Charlie"}));
}

TEST_F(AppListView, ReachesTheSearchByTheKeyboard) {
    showTabWithFew();
    key(app_, Qt::Key_F, Qt::ControlModifier);
    type("alp");
    EXPECT_TRUE(shows({"Alpha"}));
}

TEST_F(AppListView, ShowsTheOtherSegmentByATap) {
    showTabWithFew();
    const QQuickItem* segments = app_.item("segments");
    tap(app_, segments->mapToScene({segments->width() * 0.75, segments->height() / 2.0}).toPoint());
    EXPECT_EQ(list().selectedSegment(), 1);
    EXPECT_TRUE(shows({"Maps", "Safari"}));
    EXPECT_EQ(segments->property("currentIndex").toInt(), 1);
}

TEST_F(AppListView, AsksToCleanTheRowThatIsTapped) {
    showTabWithFew();
    tap(app_, inRow("com.example.bravo", 150));
    EXPECT_EQ(alert().title(), QLatin1String("Clean App Cache?"));
    EXPECT_TRUE(alert().message().contains(QLatin1String("Bravo")));
}

TEST_F(AppListView, AsksToCleanTheRowThatTheKeyboardChooses) {
    showTabWithFew();
    flickable()->forceActiveFocus(Qt::TabFocusReason);
    key(app_, Qt::Key_Down);
    key(app_, Qt::Key_Return);
    EXPECT_TRUE(alert().message().contains(QLatin1String("Alpha")));
}

TEST_F(AppListView, CleansBySwipeWithoutAsking) {
    showTabWithFew();
    swipeOpen("com.example.alpha");
    tapAction("com.example.alpha", 0);
    EXPECT_EQ(alert().title(), QLatin1String("Cleaning"));
    EXPECT_TRUE(isOpen("com.example.alpha"));
    runUntil([&] { return !alert().busy(); });
    EXPECT_EQ(alert().title(), QLatin1String("Clean Completed"));
    EXPECT_FALSE(isOpen("com.example.alpha"));
    EXPECT_TRUE(shows({"Bravo", "Charlie", "Alpha"}));
}

TEST_F(AppListView, ProtectsBySwipeAndLetsTheRowClose) {
    showTabWithFew();
    swipeOpen("com.example.alpha");
    tapAction("com.example.alpha", 1);
    EXPECT_TRUE(isProtected("com.example.alpha"));
    EXPECT_FALSE(isOpen("com.example.alpha"));
    ASSERT_TRUE(waitUntil([&] { return row("com.example.alpha")->property("settled").toBool(); }));
    swipeOpen("com.example.alpha");
    tapAction("com.example.alpha", 0);
    EXPECT_FALSE(isProtected("com.example.alpha"));
}

TEST_F(AppListView, DoesNotCleanByASwipeAcrossTheWholeRow) {
    showTabWithFew();
    swipe(app_, inRow("com.example.alpha", 380), inRow("com.example.alpha", 5));
    EXPECT_FALSE(app_.presenter().active());
    EXPECT_TRUE(isOpen("com.example.alpha"));
}

TEST_F(AppListView, DoesNotSwipeSystemAppsNorInEditMode) {
    showTabWithFew();
    list().setSelectedSegment(AppListViewController::SystemApps);
    ASSERT_TRUE(shows({"Maps", "Safari"}));
    swipe(app_, inRow("com.apple.maps", 340), inRow("com.apple.maps", 120));
    EXPECT_FALSE(isOpen("com.apple.maps"));
    list().setSelectedSegment(AppListViewController::UserApps);
    list().toggleEditMode();
    ASSERT_TRUE(shows({"Alpha", "Bravo", "Charlie"}));
    swipe(app_, inRow("com.example.alpha", 340), inRow("com.example.alpha", 120));
    EXPECT_FALSE(isOpen("com.example.alpha"));
}

TEST_F(AppListView, KeepsAnOpenSwipeAndItsPlaceWhenAReloadDoesNotTouchIt) {
    for (const InstalledApp& each : manyApps(60))
        install(app_.device, each);
    showTab();
    flickable()->setProperty("contentY", 600.0);
    settle();
    // Rows beneath the edges are kept ready, too: one that can be swiped is looked for in
    // mid-screen.
    const double center = app_.window().height() / 2.0;
    const std::vector<QQuickItem*> shown = shownRows();
    const auto at = std::find_if(shown.begin(), shown.end(), [&](const QQuickItem* each) {
        return each->contains(each->mapFromScene({10, center}));
    });
    ASSERT_NE(at, shown.end());
    QQuickItem* const middle = *at;
    const std::string identifier = middle->property("key").toString().toStdString();
    swipeOpen(identifier.c_str());
    const double top = middle->mapToScene({0, 0}).y();
    // Above it comes an app, far below it one goes.
    install(app_.device, {"com.example.zeppelin", "Zeppelin", 900 * kMiB, 0});
    uninstall(app_.device, rows().at(rows().rowCount() - 1).key.toStdString());
    list().loadApps();
    finishLoading();
    (void)app_.window().grabWindow();
    EXPECT_TRUE(isOpen(identifier.c_str()));
    ASSERT_TRUE(waitUntil(
        [&] { return std::abs(row(identifier.c_str())->mapToScene({0, 0}).y() - top) < 0.5; }));
    EXPECT_EQ(row(identifier.c_str()), middle);
}

TEST_F(AppListView, LeavesNoRowBehindWhenManyComeGoAndMoveInView) {
    for (const bool reduced : {false, true}) {
        ui::Appearance::shared().setReducedMotion(reduced);
        for (const char* name : {"a", "b", "c", "d", "e", "f"}) {
            install(app_.device,
                    {std::string("com.example.") + name, name,
                     (100 - static_cast<std::uint64_t>(name[0])) * kMiB + 200 * kMiB, 0});
        }
        if (!reduced) showTab();
        reload();
        ASSERT_TRUE(shows({"a", "b", "c", "d", "e", "f"}));
        uninstall(app_.device, "com.example.b");
        uninstall(app_.device, "com.example.c");
        setCaches(app_.device, "com.example.a", 1);
        install(app_.device, {"com.example.g", "g", 900 * kMiB, 0});
        reload();
        EXPECT_TRUE(shows({"g", "d", "e", "f", "a"}));
        list().filterAppsWithSearchText(QStringLiteral("ple.f"));
        EXPECT_TRUE(shows({"f"}));
        list().filterAppsWithSearchText({});
        EXPECT_TRUE(shows({"g", "d", "e", "f", "a"}));
        ASSERT_TRUE(waitUntil([&] {
            const std::vector<QQuickItem*> rows = shownRows();
            for (std::size_t i = 1; i < rows.size(); ++i)
                if (rows[i]->y() - rows[i - 1]->y() != 70.0) return false;
            return true;
        }));
        uninstall(app_.device, "com.example.g");
    }
}

TEST_F(AppListView, AgreesWithItsModelAfterManyChangesInAHurry) {
    showTabWithFew();
    reload();
    ASSERT_TRUE(list().animatesChanges());
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        std::vector<ui::AppRow> next;
        for (int i = 0; i < 12; ++i) {
            const QString key = QString(QLatin1Char(static_cast<char>('a' + i)));
            if (random() % 4 != 0)
                next.push_back({.key = key, .title = key, .detail = {}, .picture = {}});
        }
        for (int swaps = 0; swaps < 2 && !next.empty(); ++swaps)
            std::swap(next[random() % next.size()], next[random() % next.size()]);
        rows().setRows(next);
        // Some are drawn, and so interrupt motions that have begun.
        if (round % 3 != 0) (void)app_.window().grabWindow();
        if (round % 20 == 19) {
            EXPECT_TRUE(shows(titles())) << round;
        }
    }
    EXPECT_TRUE(waitUntil([&] {
        const std::vector<QQuickItem*> shown = shownRows();
        for (std::size_t i = 0; i < shown.size(); ++i) {
            const double opacity = shown[i]->opacity();
            if (opacity != 1.0 || shown[i]->y() - shown[0]->y() != 70.0 * static_cast<double>(i))
                return false;
        }
        return true;
    }));
}

TEST_F(AppListView, BeginsANewListAtItsTop) {
    for (const InstalledApp& each : manyApps(200))
        install(app_.device, each);
    showTab();
    flickable()->setProperty("contentY", 1500.0);
    settle();
    list().setSelectedSegment(AppListViewController::SystemApps);
    settle();
    const auto top = [&] { return shownRows().front()->mapToScene({0, 0}).y(); };
    const double first = top();
    EXPECT_GT(first, 100.0);
    EXPECT_LT(first, 160.0);
    list().setSelectedSegment(AppListViewController::UserApps);
    settle();
    EXPECT_DOUBLE_EQ(top(), first);
}

TEST_F(AppListView, RefreshesWhenItIsPulledDown) {
    showTabWithFew();
    swipe(app_, {195, 300}, {195, 700});
    EXPECT_TRUE(list().refreshing());
    finishLoading();
    EXPECT_FALSE(list().refreshing());
}

TEST_F(AppListView, ReportsItsScrollingSoThatTheBarHides) {
    for (const InstalledApp& each : manyApps(60))
        install(app_.device, each);
    showTab();
    EXPECT_TRUE(swipeTurnsBar(app_, {195, 600}, {195, 250}, true));
}

TEST_F(AppListView, SelectsAndCleansABatchByTaps) {
    showTabWithFew();
    tap(app_, TestApp::middleOf(app_.item("rightBarButton")));
    ASSERT_TRUE(list().isEditingMode());
    EXPECT_FALSE(app_.item("searchField")->isEnabled());
    EXPECT_FALSE(app_.item("segments")->isEnabled());
    ASSERT_TRUE(waitUntil([&] { return app_.item("toolbar")->opacity() == 1.0; }));
    EXPECT_FALSE(app_.item("cleanButton")->isEnabled());
    tap(app_, TestApp::middleOf(app_.item("selectAllButton")));
    EXPECT_EQ(rows().selectedCount(), 3);
    tap(app_, inRow("com.example.alpha", 200));
    EXPECT_EQ(rows().selectedCount(), 2);
    EXPECT_FALSE(row("com.example.alpha")->property("selected").toBool());
    EXPECT_TRUE(row("com.example.bravo")->property("selected").toBool());
    tap(app_, TestApp::middleOf(app_.item("cleanButton")));
    choose("Clean");
    runUntil([&] { return !alert().busy(); });
    EXPECT_EQ(alert().title(), QLatin1String("Clean Completed"));
    EXPECT_FALSE(list().isEditingMode());
    EXPECT_TRUE(waitUntil([&] { return !app_.item("toolbar")->isVisible(); }));
}

TEST_F(AppListView, EndsItsRowsAboveTheToolbarInEditMode) {
    for (const InstalledApp& each : manyApps(60))
        install(app_.device, each);
    showTab();
    list().toggleEditMode();
    const QString last = rows().at(rows().rowCount() - 1).key;
    // The room for the toolbar grows while it comes in.
    EXPECT_TRUE(waitUntil([&] {
        QMetaObject::invokeMethod(flickable(), "toBottom");
        settle();
        const double end = app_.item("toolbar")->mapToScene({0, 0}).y() + 0.5;
        const auto shown = shownRows();
        return std::any_of(shown.begin(), shown.end(), [&](const QQuickItem* each) {
            return each->property("key").toString() == last &&
                   each->mapToScene({0, each->height()}).y() <= end;
        });
    }));
}

TEST_F(AppListView, MovesTheSelectionWithTheKeyboard) {
    showTabWithFew();
    list().toggleEditMode();
    flickable()->forceActiveFocus(Qt::TabFocusReason);
    key(app_, Qt::Key_Down);
    key(app_, Qt::Key_Down);
    key(app_, Qt::Key_Return);
    EXPECT_EQ(rows().selectedRows(), std::vector<int>{1});
}

class WhitelistView : public AppListView {
  protected:
    WhitelistView() { listName_ = "whitelist"; }
    WhitelistViewController& push() {
        app_.show();
        app_.scene().tabBarController()->setSelectedIndex(2);
        ui::NavigationController& navigation = app_.scene().tabBarController()->at(2);
        navigation.push(std::make_unique<WhitelistViewController>(app_.services()));
        auto& screen = *qobject_cast<WhitelistViewController*>(navigation.top());
        EXPECT_TRUE(waitUntil([&] {
            app_.mainQueue.drain();
            const QQuickItem* back = app_.item("backButton");
            return !screen.loading() && back->isVisible() && back->mapToScene({0, 0}).x() == 4.0;
        }));
        (void)app_.window().grabWindow();
        return screen;
    }
};

TEST_F(WhitelistView, TakesAnAppOffByASwipeAndAYes) {
    installFew();
    protect("com.example.alpha");
    push();
    ASSERT_TRUE(shows({"Alpha", "Bravo"}));
    swipeOpen("com.example.alpha");
    tapAction("com.example.alpha", 0);
    EXPECT_TRUE(isOpen("com.example.alpha"));
    choose("取消");
    EXPECT_FALSE(isOpen("com.example.alpha"));
    ASSERT_TRUE(waitUntil([&] { return row("com.example.alpha")->property("settled").toBool(); }));
    swipeOpen("com.example.alpha");
    tapAction("com.example.alpha", 0);
    choose("移除");
    EXPECT_TRUE(shows({"Bravo"}));
    EXPECT_FALSE(isProtected("com.example.alpha"));
}

TEST_F(WhitelistView, OnlyDeselectsARowThatIsTapped) {
    installFew();
    push();
    ASSERT_TRUE(shows({"Bravo"}));
    tap(app_, inRow("com.example.bravo", 150));
    EXPECT_FALSE(app_.presenter().active());
    EXPECT_EQ(app_.scene().tabBarController()->at(2).depth(), 2);
}

TEST_F(WhitelistView, PushesTheListOfAllAppsByItsButton) {
    push();
    EXPECT_TRUE(app_.item("emptyLabel")->isVisible());
    tap(app_, TestApp::middleOf(app_.item("rightBarButton")));
    EXPECT_EQ(app_.scene().tabBarController()->at(2).depth(), 3);
}

}  // namespace
}  // namespace sweepwright::test
