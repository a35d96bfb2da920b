#include <QClipboard>
#include <QGuiApplication>

#include "protection/CleanHistoryManager.h"
#include "protection/CustomPathManager.h"
#include "protection/PathWhitelistManager.h"
#include "ui/SettingsTest.h"
#include "ui/ViewTest.h"

namespace sweepwright::test {
namespace {

/// The settings in a window, touched by a person.
class SettingsView : public ViewTest {
  protected:
    static void show(TestApp& app, QSize size = {390, 844}) {
        app.scene().tabBarController()->setSelectedIndex(2);
        app.show(size);
    }
    static QQuickItem* list(TestApp& app) { return app.item("settingsList"); }
    static bool still(TestApp& app, const char* name) {
        return waitUntil([&] { return !app.item(name)->property("moving").toBool(); });
    }
    void tapRow(TestApp& app, const char* row) {
        tap(app, app.item(row)->mapToScene(QPointF(120, app.item(row)->height() / 2)).toPoint());
    }
    static bool alone(TestApp& app) {
        return waitUntil([&] { return app.presenter().rowCount() == 0; });
    }
    static bool onlyOne(TestApp& app) {
        return waitUntil([&] { return app.presenter().rowCount() == 1; });
    }
    static QQuickItem* switchOf(TestApp& app, const char* row) {
        for (QQuickItem* each : app.item(row)->findChildren<QQuickItem*>()) {
            if (each->metaObject()->indexOfProperty("visualPosition") >= 0) return each;
        }
        ADD_FAILURE() << "no switch in " << row;
        return nullptr;
    }
};

TEST_F(SettingsView, FlipsASwitchByTouchAndByKeyboard) {
    TestApp app;
    show(app);
    tap(app, TestApp::middleOf(switchOf(app, "row1000")));
    EXPECT_TRUE(app.core.defaults.boolean("showHiddenFiles"));
    EXPECT_TRUE(switchOf(app, "row1000")->property("checked").toBool());
    app.item("row1000")->forceActiveFocus(Qt::TabFocusReason);
    key(app, Qt::Key_Space);
    EXPECT_FALSE(app.core.defaults.boolean("showHiddenFiles"));
    EXPECT_FALSE(switchOf(app, "row1000")->property("checked").toBool());
}

TEST_F(SettingsView, TurnsASwitchBackThatCouldNotBeStored) {
    TestApp app;
    show(app);
    blockChanges(app);
    tap(app, TestApp::middleOf(switchOf(app, "row1000")));
    EXPECT_EQ(app.presenter().alert()->title(), QLatin1String("Can't Save"));
    EXPECT_FALSE(switchOf(app, "row1000")->property("checked").toBool());
    EXPECT_FALSE(app.item("row1000")->property("on").toBool());
}

TEST_F(SettingsView, ChoosesAThresholdByTouch) {
    TestApp app;
    show(app);
    tapRow(app, "row1001");
    tap(app, TestApp::middleOf(button(app, "500 MB")));
    EXPECT_EQ(app.core.defaults.unsignedInteger("largeFileThreshold"), 524288000U);
    EXPECT_EQ(app.item("row1001")->property("value").toString(), QLatin1String("500.00 MB"));
}

TEST_F(SettingsView, TakesAPathThatIsPastedWithQuotesAndChinese) {
    TestApp app;
    show(app);
    tapRow(app, "row1002");
    tap(app, TestApp::middleOf(button(app, "Add a Path")));
    ASSERT_TRUE(onlyOne(app));
    const QString path = QStringLiteral("/var/mobile/“我的 文件”/it's \"old\"/缓存");
    QGuiApplication::clipboard()->setText(path);
    key(app, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(app.presenter().alert()->text(), path);
    EXPECT_FALSE(app.presenter().alert()->tip().isEmpty());
    key(app, Qt::Key_Return);
    ASSERT_TRUE(alone(app));
    EXPECT_EQ(app.core.customPaths.getAllCustomPaths(),
              std::vector<std::string>{path.toStdString()});
    EXPECT_EQ(app.item("row1002")->property("subtitle").toString(),
              QLatin1String("Paths added: 1"));
}

TEST_F(SettingsView, TypesProtectsAndRemovesAPath) {
    TestApp app;
    show(app);
    tapRow(app, "row3001");
    tap(app, TestApp::middleOf(button(app, "Add a Path")));
    ASSERT_TRUE(onlyOne(app));
    for (const char letter : std::string("/var/x/"))
        QTest::keyClick(&app.window(), letter);
    tap(app, TestApp::middleOf(button(app, "Add")));
    ASSERT_TRUE(alone(app));
    EXPECT_EQ(app.core.pathWhitelist.getUserDefinedPaths(), std::vector<std::string>{"/var/x"});
    tapRow(app, "row3001");
    tap(app, TestApp::middleOf(button(app, "View Paths")));
    ASSERT_TRUE(onlyOne(app));
    tap(app, TestApp::middleOf(button(app, "/var/x")));
    ASSERT_TRUE(onlyOne(app));
    tap(app, TestApp::middleOf(button(app, "Remove")));
    EXPECT_TRUE(app.core.pathWhitelist.getUserDefinedPaths().empty());
    ASSERT_TRUE(alone(app));
    EXPECT_EQ(app.item("row3001")->property("subtitle").toString(),
              QLatin1String("Paths protected: 3"));
}

TEST_F(SettingsView, SpeaksAnotherLanguageAtOnce) {
    TestApp app;
    show(app);
    tapRow(app, "row0");
    tap(app, TestApp::middleOf(button(app, "中文简体")));
    EXPECT_EQ(app.item("row0")->property("title").toString(), QStringLiteral("语言"));
    EXPECT_EQ(app.item("row0")->property("value").toString(), QStringLiteral("中文简体"));
    bool hasHeader = false;
    for (const QQuickItem* each : list(app)->findChildren<QQuickItem*>())
        hasHeader |= each->property("text").toString() == QStringLiteral("存储设置");
    EXPECT_TRUE(hasHeader);
    EXPECT_TRUE(onlyOne(app));
    tap(app, TestApp::middleOf(button(app, "好")));
    EXPECT_TRUE(alone(app));
}

TEST_F(SettingsView, HidesTheBarOnTheWayDownAndShowsItOnTheWayUp) {
    TestApp app;
    show(app);
    EXPECT_TRUE(swipeTurnsBar(app, {195, 700}, {195, 400}, true));
    ASSERT_TRUE(still(app, "settingsList"));
    EXPECT_TRUE(swipeTurnsBar(app, {195, 300}, {195, 480}, false));
}

TEST_F(SettingsView, WalksDownToTheLastRowByKeyboard) {
    TestApp app;
    show(app);
    list(app)->forceActiveFocus(Qt::TabFocusReason);
    for (int i = 0; i < 16; ++i)
        key(app, Qt::Key_Down);
    key(app, Qt::Key_Return);
    ASSERT_EQ(app.opener.opened.size(), 1U);
    EXPECT_TRUE(app.opener.opened[0].toString().endsWith(QLatin1String("repository")));
}

TEST_F(SettingsView, ReadsTheHelpToItsEnd) {
    TestApp app;
    show(app);
    qobject_cast<ui::SettingsViewController*>(app.scene().tabBarController()->at(2).root())
        ->showHelp();
    QQuickItem* words = app.item("alertWords");
    ASSERT_GT(words->property("contentHeight").toDouble(), words->height());
    const QPoint middle = TestApp::middleOf(words);
    swipe(app, middle + QPoint(0, 200), middle - QPoint(0, 200));
    EXPECT_GT(words->property("contentY").toDouble(), 100);
}

TEST_F(SettingsView, NamesEverythingThatCanBePressed) {
    TestApp app;
    show(app);
    EXPECT_EQ(namelessItems(app), "");
    tapRow(app, "row1002");
    EXPECT_EQ(namelessItems(app), "");
}

TEST_F(SettingsView, PointsAPopoverAtItsRowOnATablet) {
    TestApp app({.idiom = platform::Idiom::Pad});
    show(app, {820, 1180});
    tapRow(app, "row1001");
    const QQuickItem* popover = app.item("popover");
    const QQuickItem* row = app.item("row1001");
    EXPECT_NEAR(popover->y(), row->mapToScene({0, row->height()}).y() + 12, 1);
    EXPECT_NEAR(popover->x() + popover->width() / 2, 410, 1);
}

class CleanHistoryView : public SettingsView {
  protected:
    static void show(TestApp& app) {
        SettingsView::show(app);
        ui::NavigationController& stack = app.scene().tabBarController()->at(2);
        qobject_cast<ui::SettingsViewController*>(stack.root())->showCleanHistory();
        ASSERT_TRUE(waitUntil([&] { return app.item("historyList")->width() > 0; }));
        QQuickItem* const list = app.item("historyList");
        // The page slides in, and its rows come with the first frame.
        ASSERT_TRUE(waitUntil([&] {
            const bool hasRows =
                list->property("count").toInt() == 0 || app.findItem("entry0") != nullptr;
            return hasRows && list->mapToScene({0, 0}).x() < 0.5;
        }));
    }
    static void record(TestApp& app, CleanType type, std::uint64_t bytes) {
        app.core.time += std::chrono::seconds(90);
        ASSERT_TRUE(app.core.history.saveCleanHistoryWithType(type, bytes));
    }
    static QPoint inRow(TestApp& app, const char* row, double x) {
        const QQuickItem* item = app.item(row);
        return item->mapToScene(QPointF(x, item->height() / 2.0)).toPoint();
    }
};

TEST_F(CleanHistoryView, DeletesAnEntryByASwipe) {
    TestApp app;
    record(app, CleanType::Cache, 1);
    record(app, CleanType::TempFiles, 2);
    show(app);
    swipe(app, inRow(app, "entry0", 340), inRow(app, "entry0", 150));
    ASSERT_TRUE(waitUntil([&] { return app.item("entry0")->property("settled").toBool(); }));
    EXPECT_EQ(app.core.history.getAllCleanHistory().size(), 2U);
    tap(app, inRow(app, "entry0", 390 - 57));
    const auto left = app.core.history.getAllCleanHistory();
    ASSERT_EQ(left.size(), 1U);
    EXPECT_EQ(left[0].cleanTypeName, "缓存文件");
    EXPECT_FALSE(app.presenter().active());
    ASSERT_TRUE(waitUntil([&] {
        return app.item("entry0")->property("title").toString() == QStringLiteral("缓存文件");
    }));
    EXPECT_FALSE(app.item("entry0")->property("open").toBool());
}

TEST_F(CleanHistoryView, OnlyClosesAnOpenRowByATap) {
    TestApp app;
    record(app, CleanType::Cache, 1);
    show(app);
    swipe(app, inRow(app, "entry0", 340), inRow(app, "entry0", 150));
    ASSERT_TRUE(waitUntil([&] { return app.item("entry0")->property("settled").toBool(); }));
    tap(app, inRow(app, "entry0", 60));
    EXPECT_FALSE(app.item("entry0")->property("open").toBool());
    EXPECT_FALSE(app.presenter().active());
    ASSERT_TRUE(waitUntil([&] { return app.item("entry0")->property("settled").toBool(); }));
    // Elsewhere, for two taps in one place count as one double tap.
    tap(app, inRow(app, "entry0", 200));
    ASSERT_TRUE(app.presenter().active());
    EXPECT_EQ(app.presenter().alert()->title(), QStringLiteral("清理详情"));
}

TEST_F(CleanHistoryView, DeletesByKeyboardAndEndsWithTheEmptyState) {
    TestApp app;
    record(app, CleanType::Cache, 1);
    show(app);
    EXPECT_FALSE(app.item("emptyStateLabel")->isVisible());
    app.item("entry0")->forceActiveFocus(Qt::TabFocusReason);
    key(app, Qt::Key_Delete);
    EXPECT_TRUE(app.core.history.getAllCleanHistory().empty());
    EXPECT_TRUE(app.item("emptyStateLabel")->isVisible());
    EXPECT_FALSE(app.item("historyList")->isVisible());
}

TEST_F(CleanHistoryView, ClearsAfterAYes) {
    TestApp app;
    record(app, CleanType::Cache, 1);
    record(app, CleanType::Cache, 1);
    show(app);
    tap(app, TestApp::middleOf(app.item("rightBarButton")));
    tap(app, TestApp::middleOf(button(app, "清空")));
    EXPECT_TRUE(app.core.history.getAllCleanHistory().empty());
    EXPECT_TRUE(app.item("emptyStateLabel")->isVisible());
}

TEST_F(CleanHistoryView, ShowsACleanThatEndsMeanwhile) {
    TestApp app;
    show(app);
    EXPECT_TRUE(app.item("emptyStateLabel")->isVisible());
    record(app, CleanType::SystemLogs, 4096);
    app.notifications.post("CleanHistoryUpdated");
    app.mainQueue.drain();
    EXPECT_FALSE(app.item("emptyStateLabel")->isVisible());
    ASSERT_TRUE(waitUntil([&] { return app.findItem("entry0") != nullptr; }));
    EXPECT_EQ(app.item("entry0")->property("title").toString(), QStringLiteral("系统日志"));
}

TEST_F(CleanHistoryView, HidesTheBarOnTheWayDownAndShowsItOnTheWayUp) {
    TestApp app;
    for (int i = 0; i < 40; ++i)
        record(app, CleanType::Cache, 1);
    show(app);
    EXPECT_TRUE(swipeTurnsBar(app, {195, 700}, {195, 400}, true));
    ASSERT_TRUE(still(app, "historyList"));
    EXPECT_TRUE(swipeTurnsBar(app, {195, 300}, {195, 480}, false));
}

TEST_F(CleanHistoryView, NamesEverythingThatCanBePressed) {
    TestApp app;
    record(app, CleanType::Cache, 1);
    show(app);
    EXPECT_EQ(namelessItems(app), "");
}

}  // namespace
}  // namespace sweepwright::test
