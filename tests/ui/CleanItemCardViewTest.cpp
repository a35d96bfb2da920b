#include <QSignalSpy>
#include <semaphore>

#include "ui/support/HomeTest.h"

namespace sweepwright::test {
namespace {

using ui::CleanItemCardView;
using ui::FileListModel;

class CleanItemCardViewTest : public testing::Test {
  protected:
    class Delegate final : public ui::CleanItemCardViewDelegate {
      public:
        std::vector<std::string> tapped;
        void cleanItemCardViewDidTapFilePath(CleanItemCardView& /*card*/,
                                             const std::string& path) override {
            tapped.push_back(path);
        }
    };

    static std::vector<std::string> rows(int count) {
        std::vector<std::string> made;
        for (int i = 0; i < count; ++i)
            made.push_back("/var/row" + std::to_string(i));
        return made;
    }
    QString rowText(int row) {
        FileListModel& list = *card_.fileList();
        return list.data(list.index(row), FileListModel::TextRole).toString();
    }
    // Runs the main queue until the sizes that were asked for are there.
    bool sized() {
        return waitUntil([&] { return mainQueue_.drain() > 0; });
    }

    TemporaryDevice device_;
    platform::MainQueue mainQueue_;
    std::unique_ptr<platform::DispatchQueue> background_ =
        platform::DispatchQueue::concurrent("test");
    CleanItemCardView card_{QStringLiteral("Caches"),
                            QStringLiteral("tray.full.fill"),
                            {device_.files(), *background_, mainQueue_}};
};

TEST_F(CleanItemCardViewTest, BeginsClosedWithoutAnything) {
    EXPECT_EQ(card_.title(), QStringLiteral("Caches"));
    EXPECT_EQ(card_.icon(), QStringLiteral("tray.full.fill"));
    EXPECT_EQ(card_.sizeText(), QStringLiteral("计算中..."));
    EXPECT_EQ(card_.cleanButtonTitle(), QStringLiteral("清理"));
    EXPECT_FALSE(card_.isExpanded());
    EXPECT_EQ(card_.expandIcon(), QStringLiteral("chevron.down"));
    EXPECT_EQ(card_.fileList()->rowCount(), 0);
}

TEST_F(CleanItemCardViewTest, IsAsHighAsItsFirstEightRowsNeed) {
    struct Case {
        int rows;
        double height;
    };
    for (const Case each : {Case{0, 76.0}, Case{1, 106.0}, Case{3, 166.0}, Case{8, 316.0},
                            Case{20, 316.0}, Case{5000, 316.0}}) {
        card_.updateFileList(rows(each.rows));
        EXPECT_DOUBLE_EQ(card_.intrinsicContentHeight(), 60.0);
        card_.toggleExpanded(false);
        EXPECT_DOUBLE_EQ(card_.intrinsicContentHeight(), each.height) << each.rows;
        card_.toggleExpanded(false);
    }
}

TEST_F(CleanItemCardViewTest, TurnsItsArrowAndSaysWhetherToMove) {
    card_.toggleExpanded(false);
    EXPECT_EQ(card_.expandIcon(), QStringLiteral("chevron.up"));
    EXPECT_FALSE(card_.animated());
    card_.expandButtonTapped();
    EXPECT_EQ(card_.expandIcon(), QStringLiteral("chevron.down"));
    EXPECT_TRUE(card_.animated());
}

TEST_F(CleanItemCardViewTest, TellsThatItsHeightChangesWithItsRows) {
    QSignalSpy heights(&card_, &CleanItemCardView::heightChanged);
    card_.updateFileList(rows(3));
    EXPECT_EQ(heights.count(), 1);
    card_.updateFileList(rows(3));
    EXPECT_EQ(heights.count(), 1);
    card_.updateFileList(rows(9));
    card_.updateFileList(rows(900));
    EXPECT_EQ(heights.count(), 2);
}

TEST_F(CleanItemCardViewTest, ShowsRowsAtOnceAndTheirSizesLater) {
    device_.file("/var/tmp/note.txt", 1536);
    device_.file("/var/tmp/folder/a", 1024);
    device_.file("/var/tmp/folder/b", 1024);
    card_.updateFileList({"/var/tmp/note.txt", "/var/tmp/folder", "/var/tmp/gone"});
    EXPECT_EQ(rowText(0), QStringLiteral("📄 note.txt"));
    EXPECT_EQ(rowText(1), QStringLiteral("📁 folder"));
    EXPECT_EQ(rowText(2), QStringLiteral("📄 gone"));
    ASSERT_TRUE(sized());
    EXPECT_EQ(rowText(0), QStringLiteral("📄 note.txt (1.5 KB)"));
    EXPECT_EQ(rowText(1), QStringLiteral("📁 folder (2.0 KB)"));
    EXPECT_EQ(rowText(2), QStringLiteral("📄 gone"));
    card_.updateFileList({"/var/tmp/note.txt"});
    EXPECT_EQ(rowText(0), QStringLiteral("📄 note.txt"));
}

TEST_F(CleanItemCardViewTest, GivesNoSizeToATextThatIsNoPath) {
    device_.file("/Music (1.5 GB)", 100);
    card_.updateFileList({"Music (1.5 GB)"});
    ASSERT_TRUE(sized());
    EXPECT_EQ(rowText(0), QStringLiteral("📄 Music (1.5 GB)"));
}

TEST_F(CleanItemCardViewTest, GivesNoSizeToWhatHoldsNothingThatCounts) {
    device_.file("/var/hidden/.a", 100);
    device_.file("/var/far/away", 100);
    device_.link("/var/links/l", "/var/far/away");
    device_.file("/var/empty.txt", 0);
    card_.updateFileList({"/var/hidden", "/var/links", "/var/empty.txt"});
    ASSERT_TRUE(sized());
    EXPECT_TRUE(card_.fileList()->sizes().empty());
    EXPECT_EQ(rowText(0), QStringLiteral("📁 hidden"));
    EXPECT_EQ(rowText(1), QStringLiteral("📁 links"));
}

TEST_F(CleanItemCardViewTest, MeasuresThreeLevelsOfFolders) {
    device_.file("/var/top/1", 1);
    device_.file("/var/top/a/2", 10);
    device_.file("/var/top/a/b/3", 100);
    device_.file("/var/top/a/b/c/4", 1000);
    EXPECT_EQ(card_.sizeOfDirectoryAtPath("/var/top"), 111U);
    EXPECT_EQ(card_.sizeOfDirectoryAtPath("/var/top", 1), 1U);
    EXPECT_EQ(card_.sizeOfDirectoryAtPath("/var/top", 4), 1111U);
    EXPECT_EQ(card_.sizeOfDirectoryAtPath("/var/top", 0), 0U);
    EXPECT_EQ(card_.sizeOfDirectoryAtPath("/var/nowhere"), 0U);
    card_.updateFileList({"/var/top"});
    ASSERT_TRUE(sized());
    EXPECT_EQ(rowText(0), QStringLiteral("📁 top (111 B)"));
}

TEST_F(CleanItemCardViewTest, TakesTheSizesOfAnEarlierListThatArriveLate) {
    device_.file("/var/a", 10);
    device_.file("/var/b", 20);
    const auto queue = platform::DispatchQueue::serial("one after the other");
    CleanItemCardView card(QString(), QString(), {device_.files(), *queue, mainQueue_});
    card.updateFileList({"/var/a"});
    queue->sync([] {});
    std::binary_semaphore mayMeasure(0);
    queue->async([&] { mayMeasure.acquire(); });
    card.updateFileList({"/var/b", "/var/a"});
    mainQueue_.drain();
    using Sizes = FileListModel::Sizes;
    EXPECT_EQ(card.fileList()->sizes(), (Sizes{{"/var/a", 10}}));
    mayMeasure.release();
    ASSERT_TRUE(sized());
    EXPECT_EQ(card.fileList()->sizes(), (Sizes{{"/var/a", 10}, {"/var/b", 20}}));
}

TEST_F(CleanItemCardViewTest, DropsSizesThatCameTooLateForIt) {
    auto card = std::make_unique<CleanItemCardView>(
        QString(), QString(), ui::CardServices{device_.files(), *background_, mainQueue_});
    device_.file("/var/a", 10);
    card->updateFileList({"/var/a"});
    background_.reset();
    card.reset();
    EXPECT_EQ(mainQueue_.drain(), 1U);
}

TEST_F(CleanItemCardViewTest, LeavesRowsAloneThatStay) {
    card_.updateFileList({"/a", "/b", "/c", "/d"});
    QSignalSpy removed(card_.fileList(), &FileListModel::rowsRemoved);
    QSignalSpy inserted(card_.fileList(), &FileListModel::rowsInserted);
    QSignalSpy reset(card_.fileList(), &FileListModel::modelReset);
    card_.updateFileList({"/a", "/d"});
    EXPECT_EQ(card_.fileList()->rows(), (std::vector<std::string>{"/a", "/d"}));
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed[0][1].toInt(), 1);
    EXPECT_EQ(removed[0][2].toInt(), 2);
    card_.updateFileList({"/a", "/x", "/y", "/d"});
    EXPECT_EQ(card_.fileList()->rows(), (std::vector<std::string>{"/a", "/x", "/y", "/d"}));
    ASSERT_EQ(inserted.count(), 1);
    EXPECT_EQ(inserted[0][1].toInt(), 1);
    EXPECT_EQ(inserted[0][2].toInt(), 2);
    card_.updateFileList({"/a", "/a", "/a"});
    card_.updateFileList({"/a", "/a"});
    EXPECT_EQ(card_.fileList()->rows(), (std::vector<std::string>{"/a", "/a"}));
    card_.updateFileList({});
    EXPECT_EQ(card_.fileList()->rowCount(), 0);
    EXPECT_EQ(reset.count(), 0);
}

TEST_F(CleanItemCardViewTest, TellsItsDelegateOfTheRowThatIsTapped) {
    Delegate delegate;
    card_.updateFileList(rows(3));
    card_.didSelectRow(1);
    card_.setDelegate(&delegate);
    card_.didSelectRow(2);
    card_.didSelectRow(-1);
    card_.didSelectRow(3);
    EXPECT_EQ(delegate.tapped, std::vector<std::string>{"/var/row2"});
}

TEST_F(CleanItemCardViewTest, KnowsWhetherAPointIsInItsOpenTable) {
    card_.setTableFrame({8, 64, 300, 60});
    EXPECT_FALSE(card_.isPointInFileTableView({10, 70}));
    card_.toggleExpanded(true);
    EXPECT_TRUE(card_.isPointInFileTableView({10, 70}));
    EXPECT_FALSE(card_.isPointInFileTableView({10, 50}));
    EXPECT_FALSE(card_.isPointInFileTableView({2, 70}));
}

TEST_F(CleanItemCardViewTest, KnowsDiagnosticPaths) {
    EXPECT_TRUE(CleanItemCardView::isDiagnosticPath("/var/db/diagnostics/Persist"));
    EXPECT_FALSE(CleanItemCardView::isDiagnosticPath("/var/db/diagnostics"));
    EXPECT_FALSE(CleanItemCardView::isDiagnosticPath("/private/var/db/diagnostics/Persist"));
}

}  // namespace
}  // namespace sweepwright::test
