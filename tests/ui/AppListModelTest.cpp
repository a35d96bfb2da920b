#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include "ui/apps/AppListModel.h"

namespace sweepwright::ui {
namespace {

AppRow row(const char* key, const char* detail = "") {
    return {.key = QString::fromLatin1(key),
            .title = QString::fromLatin1(key).toUpper(),
            .detail = QString::fromLatin1(detail),
            .picture = {}};
}

std::vector<AppRow> rowsOf(const char* letters) {
    std::vector<AppRow> rows;
    for (const char* each = letters; *each != '\0'; ++each)
        rows.push_back(row(std::string(1, *each).c_str()));
    return rows;
}

class AppListModelTest : public testing::Test {
  protected:
    std::string shown() {
        std::string result;
        for (int i = 0; i < model_.rowCount(); ++i)
            result += model_.data(model_.index(i), AppListModel::KeyRole).toString().toStdString();
        return result;
    }

    AppListModel model_;
    QAbstractItemModelTester tester_{&model_,
                                     QAbstractItemModelTester::FailureReportingMode::Fatal};
    QSignalSpy resets_{&model_, &AppListModel::modelReset};
    QSignalSpy inserted_{&model_, &AppListModel::rowsInserted};
    QSignalSpy removed_{&model_, &AppListModel::rowsRemoved};
    QSignalSpy moved_{&model_, &AppListModel::rowsMoved};
    QSignalSpy changed_{&model_, &AppListModel::dataChanged};
};

TEST_F(AppListModelTest, TellsEveryStepFromOneListToAnother) {
    model_.setRows(rowsOf("abcdef"));
    EXPECT_EQ(shown(), "abcdef");
    model_.setRows(rowsOf("fabxd"));
    EXPECT_EQ(shown(), "fabxd");
    model_.setRows(rowsOf(""));
    EXPECT_EQ(shown(), "");
    EXPECT_EQ(resets_.count(), 0);
    EXPECT_EQ(moved_.count(), 1);
    EXPECT_EQ(inserted_.count(), 2);
}

TEST_F(AppListModelTest, IsTrueToItsViewsInTheMiddleOfAChange) {
    model_.setRows(rowsOf("abcdef"));
    std::vector<std::string> seen;
    QObject::connect(&model_, &AppListModel::rowsRemoved, [&] { seen.push_back(shown()); });
    QObject::connect(&model_, &AppListModel::rowsInserted, [&] { seen.push_back(shown()); });
    model_.setRows(rowsOf("acxef"));
    EXPECT_EQ(seen, (std::vector<std::string>{"acdef", "acxdef", "acxef"}));
}

TEST_F(AppListModelTest, SaysNothingWhenNothingChanged) {
    model_.setRows(rowsOf("abc"));
    inserted_.clear();
    model_.setRows(rowsOf("abc"));
    EXPECT_EQ(inserted_.count() + removed_.count() + moved_.count() + changed_.count(), 0);
}

TEST_F(AppListModelTest, TellsOnlyOfRowsWhoseContentChangedAndOfNeighboursAtOnce) {
    model_.setRows(rowsOf("abcdef"));
    std::vector<AppRow> rows = rowsOf("abcdef");
    rows[1].detail = rows[2].detail = rows[4].detail = QStringLiteral("new");
    model_.setRows(rows);
    ASSERT_EQ(changed_.count(), 2);
    EXPECT_EQ(changed_[0][0].toModelIndex().row(), 1);
    EXPECT_EQ(changed_[0][1].toModelIndex().row(), 2);
    EXPECT_EQ(changed_[1][0].toModelIndex().row(), 4);
    EXPECT_EQ(changed_[1][1].toModelIndex().row(), 4);
}

TEST_F(AppListModelTest, GivesARowWhatItShowsUnderItsNames) {
    AppRow shown = row("key", "Total: 1 B");
    shown.picture = QStringLiteral("image://appicon/1");
    shown.isProtected = true;
    shown.actions = {QStringLiteral("action")};
    model_.setRows({shown});
    const QModelIndex first = model_.index(0);
    const QHash<int, QByteArray> names = model_.roleNames();
    const auto value = [&](const char* name) { return model_.data(first, names.key(name)); };
    EXPECT_EQ(value("key").toString(), QLatin1String("key"));
    EXPECT_EQ(value("title").toString(), QLatin1String("KEY"));
    EXPECT_EQ(value("detail").toString(), QLatin1String("Total: 1 B"));
    EXPECT_EQ(value("picture").toString(), QLatin1String("image://appicon/1"));
    EXPECT_TRUE(value("isProtected").toBool());
    EXPECT_EQ(value("swipeActions").toList().size(), 1);
    EXPECT_FALSE(value("isSelected").toBool());
    EXPECT_FALSE(model_.data(first, Qt::DisplayRole).isValid());
    EXPECT_FALSE(model_.data({}, AppListModel::KeyRole).isValid());
}

TEST_F(AppListModelTest, ShowsOneRowAnew) {
    model_.setRows(rowsOf("ab"));
    model_.setRow(1, row("b", "changed"));
    EXPECT_EQ(changed_.count(), 1);
    EXPECT_EQ(model_.at(1).detail, QLatin1String("changed"));
    model_.setRow(1, row("b", "changed"));
    EXPECT_EQ(changed_.count(), 1);
}

TEST_F(AppListModelTest, KeepsTheSelectionOfRowsThatStay) {
    model_.setRows(rowsOf("abcd"));
    model_.setSelected(1, true);
    model_.setSelected(3, true);
    model_.setRows(rowsOf("dxa"));
    EXPECT_EQ(model_.selectedRows(), std::vector<int>{0});
    EXPECT_EQ(model_.selectedCount(), 1);
}

TEST_F(AppListModelTest, SelectsOneAllAndNone) {
    model_.setRows(rowsOf("abc"));
    model_.setSelected(2, true);
    model_.setSelected(0, true);
    EXPECT_EQ(model_.selectedRows(), (std::vector<int>{0, 2}));
    model_.setSelected(0, false);
    EXPECT_EQ(model_.selectedRows(), std::vector<int>{2});
    model_.setAllSelected(true);
    EXPECT_EQ(model_.selectedCount(), 3);
    model_.setAllSelected(false);
    EXPECT_EQ(model_.selectedCount(), 0);
}

}  // namespace
}  // namespace sweepwright::ui
