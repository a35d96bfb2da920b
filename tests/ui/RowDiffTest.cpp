#include <QSet>
#include <algorithm>
#include <numeric>
#include <random>

#include <gtest/gtest.h>

#include "ui/apps/RowDiff.h"

namespace sweepwright::ui {
namespace {

QStringList keys(const char* letters) {
    QStringList result;
    for (const char* each = letters; *each != '\0'; ++each)
        result.append(QString(QLatin1Char(*each)));
    return result;
}

// What follows from taking the steps.
QStringList taken(const QStringList& before, const QStringList& after, const RowDiff& diff) {
    QStringList rows = before;
    for (const RowDiff::Move& move : diff.moves) {
        // A view refuses to move a row to where it is.
        EXPECT_FALSE(move.before == move.from || move.before == move.from + 1);
        rows.move(move.from, move.before > move.from ? move.before - 1 : move.before);
    }
    QStringList result;
    qsizetype old = 0;
    for (const RowDiff::Run& run : diff.runs) {
        EXPECT_GT(run.count, 0);
        for (int i = 0; i < run.count; ++i) {
            if (run.kind == RowDiff::Run::Inserted) {
                result.append(after[result.size()]);
            } else if (run.kind == RowDiff::Run::Kept) {
                result.append(rows[old++]);
            } else {
                ++old;
            }
        }
    }
    EXPECT_EQ(old, rows.size());
    return result;
}

int countOf(const RowDiff& diff, RowDiff::Run::Kind kind) {
    int count = 0;
    for (const RowDiff::Run& run : diff.runs)
        if (run.kind == kind) count += run.count;
    return count;
}

TEST(RowDiff, KeepsAListThatIsTheSame) {
    const RowDiff diff = RowDiff::between(keys("abc"), keys("abc"));
    EXPECT_TRUE(diff.moves.empty());
    EXPECT_EQ(diff.runs, (std::vector<RowDiff::Run>{{RowDiff::Run::Kept, 3}}));
}

TEST(RowDiff, HasNothingToDoBetweenEmptyLists) {
    const RowDiff diff = RowDiff::between({}, {});
    EXPECT_TRUE(diff.moves.empty());
    EXPECT_TRUE(diff.runs.empty());
}

TEST(RowDiff, InsertsAndRemovesNeighboursAtOnce) {
    EXPECT_EQ(RowDiff::between({}, keys("abc")).runs,
              (std::vector<RowDiff::Run>{{RowDiff::Run::Inserted, 3}}));
    EXPECT_EQ(RowDiff::between(keys("abc"), {}).runs,
              (std::vector<RowDiff::Run>{{RowDiff::Run::Removed, 3}}));
    EXPECT_EQ(RowDiff::between(keys("axyb"), keys("ab")).runs,
              (std::vector<RowDiff::Run>{
                  {RowDiff::Run::Kept, 1}, {RowDiff::Run::Removed, 2}, {RowDiff::Run::Kept, 1}}));
}

TEST(RowDiff, MovesTheOneRowThatChangedItsPlace) {
    const RowDiff down = RowDiff::between(keys("abcde"), keys("bcdea"));
    EXPECT_EQ(down.moves, (std::vector<RowDiff::Move>{{0, 5}}));
    const RowDiff up = RowDiff::between(keys("abcde"), keys("eabcd"));
    EXPECT_EQ(up.moves, (std::vector<RowDiff::Move>{{4, 0}}));
    EXPECT_EQ(up.runs, (std::vector<RowDiff::Run>{{RowDiff::Run::Kept, 5}}));
}

TEST(RowDiff, TakesManyThatChangedPlacesAsGoneAndCome) {
    QStringList before;
    for (int i = 0; i < 2 * RowDiff::kMostMoves; ++i)
        before.append(QString::number(i));
    QStringList after = before;
    std::reverse(after.begin(), after.end());
    const RowDiff diff = RowDiff::between(before, after);
    EXPECT_TRUE(diff.moves.empty());
    EXPECT_EQ(taken(before, after, diff), after);
    EXPECT_EQ(countOf(diff, RowDiff::Run::Kept), 1);
}

TEST(RowDiff, LeadsFromAnyListToAnyOther) {
    std::mt19937 random(20261121);
    for (int round = 0; round < 2000; ++round) {
        const int size = static_cast<int>(random() % 90);
        const auto someOf = [&](unsigned keepEveryNth) {
            std::vector<int> numbers(static_cast<std::size_t>(size));
            std::iota(numbers.begin(), numbers.end(), 0);
            // Few swaps are moves, many are too many moves.
            const unsigned swaps = round % 3 == 0 ? 60 : 3;
            for (unsigned i = 0; i < swaps && size > 0; ++i) {
                std::swap(numbers[random() % numbers.size()], numbers[random() % numbers.size()]);
            }
            QStringList result;
            for (const int number : numbers)
                if (keepEveryNth == 0 || random() % keepEveryNth != 0)
                    result.append(QString::number(number));
            return result;
        };
        const QStringList before = someOf(static_cast<unsigned>(round % 5));
        const QStringList after = someOf(static_cast<unsigned>(round % 4));
        const RowDiff diff = RowDiff::between(before, after);
        ASSERT_EQ(taken(before, after, diff), after) << round;
        ASSERT_LE(static_cast<int>(diff.moves.size()), RowDiff::kMostMoves);
    }
}

TEST(RowDiff, MovesAsFewRowsAsThereCanBe) {
    // Four letters of each are in order already.
    EXPECT_EQ(RowDiff::between(keys("abcdefg"), keys("cbaedfg")).moves.size(), 3U);
    EXPECT_EQ(RowDiff::between(keys("abcdefg"), keys("bdafgce")).moves.size(), 3U);
}

}  // namespace
}  // namespace sweepwright::ui
