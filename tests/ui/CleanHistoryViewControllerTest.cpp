#include <QSignalSpy>
#include <ctime>

#include "protection/CleanHistoryManager.h"
#include "ui/SettingsTest.h"
#include "ui/history/CleanHistoryViewController.h"

namespace sweepwright::ui {
namespace {

using Strings = std::vector<std::string>;

class CleanHistoryTest : public test::SettingsTest {
  protected:
    CleanHistoryViewController& open() {
        settings().showCleanHistory();
        return *qobject_cast<CleanHistoryViewController*>(stack().top());
    }
    void record(CleanType type, std::uint64_t bytes, const char* name = "") {
        app_.core.time += std::chrono::seconds(90);
        ASSERT_TRUE(app_.core.history.saveCleanHistoryWithType(type, bytes, name));
    }
    // Sets the clock to a local date.
    void setTime(int year, int month, int day, int hour, int minute, int second) {
        std::tm parts{};
        parts.tm_year = year - 1900;
        parts.tm_mon = month - 1;
        parts.tm_mday = day;
        parts.tm_hour = hour;
        parts.tm_min = minute;
        parts.tm_sec = second;
        parts.tm_isdst = -1;
        app_.core.time = std::chrono::system_clock::from_time_t(std::mktime(&parts));
    }
    static std::string shown(CleanHistoryViewController& screen, int row, int role) {
        return screen.rows()->data(screen.rows()->index(row), role).toString().toStdString();
    }
    static Strings shownTitles(CleanHistoryViewController& screen) {
        Strings all;
        for (int row = 0; row < screen.rows()->rowCount(); ++row)
            all.push_back(shown(screen, row, CleanHistoryRows::TitleRole));
        return all;
    }
};

TEST_F(CleanHistoryTest, IsChineseInEveryLanguage) {
    CleanHistoryViewController& screen = open();
    EXPECT_EQ(screen.title(), QStringLiteral("清理历史记录"));
    ASSERT_NE(screen.rightBarButtonItem(), nullptr);
    EXPECT_EQ(screen.rightBarButtonItem()->title(), QStringLiteral("清空"));
    EXPECT_FALSE(screen.rightBarButtonItem()->prominent());
    EXPECT_EQ(screen.emptyStateLabel(), QStringLiteral("暂无清理历史记录"));
    EXPECT_EQ(screen.deleteTitle(), QStringLiteral("删除"));
}

TEST_F(CleanHistoryTest, ShowsNothingButTheEmptyStateWhenThereIsNothing) {
    CleanHistoryViewController& screen = open();
    EXPECT_TRUE(screen.empty());
    EXPECT_TRUE(screen.header().isEmpty());
    EXPECT_EQ(screen.rows()->rowCount(), 0);
    screen.rightBarButtonItem()->trigger();
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(CleanHistoryTest, ListsTheNewestFirstUnderTheirSum) {
    setTime(2026, 3, 4, 5, 6, 7);
    record(CleanType::Cache, 1536);
    record(CleanType::ThirdPartyApps, std::uint64_t{3} << 30U, "微信");
    CleanHistoryViewController& screen = open();
    EXPECT_FALSE(screen.empty());
    EXPECT_EQ(screen.header(), QStringLiteral("共 2 条记录，累计清理 3.00 GB"));
    const Strings expected = {"微信", "缓存文件"};
    EXPECT_EQ(shownTitles(screen), expected);
    EXPECT_EQ(shown(screen, 0, CleanHistoryRows::SubtitleRole), "3.00 GB • 2026-03-04 05:09:07");
    EXPECT_EQ(shown(screen, 1, CleanHistoryRows::SubtitleRole), "1.5 KB • 2026-03-04 05:07:37");
}

TEST_F(CleanHistoryTest, TellsTheDetailsOfAnEntry) {
    setTime(2026, 11, 2, 23, 58, 29);
    record(CleanType::SystemLogs, 2048);
    CleanHistoryViewController& screen = open();
    screen.didSelectRow(0);
    EXPECT_EQ(alert().title(), QStringLiteral("清理详情"));
    EXPECT_EQ(alert().message(),
              QStringLiteral("清理类型: 系统日志\n清理大小: 2.0 KB\n清理时间: 2026年11月02日 "
                             "23:59:59"));
    EXPECT_EQ(titles(), Strings{"确定"});
    choose(QStringLiteral("确定"));
    for (const int row : {-1, 1, 100})
        screen.didSelectRow(row);
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(CleanHistoryTest, DeletesTheEntryOfARowAndNothingElse) {
    record(CleanType::Cache, 1);
    record(CleanType::TempFiles, 2);
    record(CleanType::Cookies, 3);
    CleanHistoryViewController& screen = open();
    QSignalSpy removed(screen.rows(), &CleanHistoryRows::rowsRemoved);
    QSignalSpy reset(screen.rows(), &CleanHistoryRows::modelReset);
    screen.deleteRow(1);
    const Strings expected = {"Cookie & 网页数据", "缓存文件"};
    EXPECT_EQ(shownTitles(screen), expected);
    EXPECT_EQ(app_.core.history.getAllCleanHistory(), screen.historyItems());
    EXPECT_EQ(screen.header(), QStringLiteral("共 2 条记录，累计清理 4 B"));
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed[0][1].toInt(), 1);
    EXPECT_EQ(removed[0][2].toInt(), 1);
    EXPECT_EQ(reset.count(), 0);
    screen.deleteRow(2);
    screen.deleteRow(-1);
    EXPECT_EQ(screen.rows()->rowCount(), 2);
}

TEST_F(CleanHistoryTest, TurnsToTheEmptyStateWithTheLastEntry) {
    record(CleanType::Cache, 1);
    CleanHistoryViewController& screen = open();
    QSignalSpy loaded(&screen, &CleanHistoryViewController::loaded);
    screen.deleteRow(0);
    EXPECT_EQ(loaded.count(), 1);
    EXPECT_TRUE(screen.empty());
    EXPECT_TRUE(screen.header().isEmpty());
}

TEST_F(CleanHistoryTest, AsksBeforeItClears) {
    record(CleanType::Cache, 1);
    record(CleanType::Cache, 1);
    CleanHistoryViewController& screen = open();
    screen.rightBarButtonItem()->trigger();
    EXPECT_EQ(alert().title(), QStringLiteral("清空历史记录"));
    EXPECT_EQ(alert().message(), QStringLiteral("确定要清空所有清理历史记录吗？此操作无法撤销。"));
    const Strings expected = {"清空", "取消"};
    EXPECT_EQ(titles(), expected);
    EXPECT_EQ(alert().actions()[0]->style(), AlertAction::Destructive);
    EXPECT_EQ(alert().actions()[1]->style(), AlertAction::Cancel);
    choose(QStringLiteral("取消"));
    EXPECT_EQ(screen.rows()->rowCount(), 2);
    screen.clearHistory();
    choose(QStringLiteral("清空"));
    EXPECT_TRUE(screen.empty());
    EXPECT_FALSE(defaults().object("CleanHistoryRecords"));
}

TEST_F(CleanHistoryTest, SaysWhenAnEntryCannotBeDeleted) {
    record(CleanType::Cache, 1);
    CleanHistoryViewController& screen = open();
    blockChanges();
    screen.deleteRow(0);
    expectSaveFailure();
    screen.clearHistory();
    choose(QStringLiteral("清空"));
    expectSaveFailure();
    EXPECT_EQ(screen.rows()->rowCount(), 1);
}

TEST_F(CleanHistoryTest, ShowsACleanOfAnotherScreenAtOnce) {
    record(CleanType::Cache, 1);
    CleanHistoryViewController& screen = open();
    QSignalSpy inserted(screen.rows(), &CleanHistoryRows::rowsInserted);
    QSignalSpy removed(screen.rows(), &CleanHistoryRows::rowsRemoved);
    app_.device.file(app_.core.temporary("junk.tmp"), 4096);
    app_.core.time += std::chrono::seconds(1);
    ASSERT_TRUE(app_.core.clean(CleanType::TempFiles).success);
    // The announcement may have been posted behind the completion.
    ASSERT_TRUE(test::waitUntil([&] {
        app_.mainQueue.drain();
        return screen.rows()->rowCount() == 2;
    }));
    const Strings expected = {"临时文件", "缓存文件"};
    EXPECT_EQ(shownTitles(screen), expected);
    EXPECT_EQ(screen.header(), QStringLiteral("共 2 条记录，累计清理 4.0 KB"));
    ASSERT_EQ(inserted.count(), 1);
    EXPECT_EQ(inserted[0][1].toInt(), 0);
    EXPECT_EQ(inserted[0][2].toInt(), 0);
    EXPECT_EQ(removed.count(), 0);
}

TEST_F(CleanHistoryTest, UpdatesAlsoWhileItIsCovered) {
    CleanHistoryViewController& screen = open();
    stack().setVisible(false);
    record(CleanType::Cache, 1);
    app_.notifications.post("CleanHistoryUpdated");
    app_.mainQueue.drain();
    EXPECT_EQ(screen.rows()->rowCount(), 1);
}

TEST_F(CleanHistoryTest, HearsNothingOnceItIsGone) {
    open();
    app_.notifications.post("CleanHistoryUpdated");
    stack().pop();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    app_.notifications.post("CleanHistoryUpdated");
    app_.mainQueue.drain();
    EXPECT_EQ(stack().depth(), 1);
}

TEST_F(CleanHistoryTest, DropsTheOldestRowWhenTheHistoryIsFull) {
    for (std::size_t i = 0; i < CleanHistoryManager::kMaxEntries; ++i)
        record(CleanType::Cache, i + 1);
    CleanHistoryViewController& screen = open();
    ASSERT_EQ(screen.rows()->rowCount(), 100);
    QSignalSpy inserted(screen.rows(), &CleanHistoryRows::rowsInserted);
    QSignalSpy removed(screen.rows(), &CleanHistoryRows::rowsRemoved);
    record(CleanType::TempFiles, 5000);
    screen.loadHistoryData();
    EXPECT_EQ(screen.rows()->rowCount(), 100);
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed[0][1].toInt(), 99);
    ASSERT_EQ(inserted.count(), 1);
    EXPECT_EQ(inserted[0][1].toInt(), 0);
}

TEST_F(CleanHistoryTest, EndsWithWhatIsStoredHoweverItChanged) {
    CleanHistoryRows rows;
    const auto item = [](const char* name) {
        CleanHistoryItem made;
        made.identifier = name;
        made.cleanTypeName = name;
        return made;
    };
    const std::vector<CleanHistoryItem> lists[] = {{item("a"), item("b"), item("c"), item("d")},
                                                   {item("d"), item("a"), item("a"), item("x")},
                                                   {item("x"), item("b"), item("a")},
                                                   {item("a"), item("a"), item("a")},
                                                   {},
                                                   {item("z")}};
    for (const auto& list : lists) {
        rows.setItems(list);
        EXPECT_EQ(rows.items(), list);
        EXPECT_EQ(rows.rowCount(), static_cast<int>(list.size()));
    }
}

}  // namespace
}  // namespace sweepwright::ui
