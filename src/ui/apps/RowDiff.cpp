#include "ui/apps/RowDiff.h"

#include <QHash>
#include <QSet>
#include <algorithm>
#include <utility>

namespace sweepwright::ui {

namespace {

QHash<QString, int> places(const QStringList& keys) {
    QHash<QString, int> result;
    result.reserve(keys.size());
    for (int i = 0; i < keys.size(); ++i)
        result.insert(keys[i], i);
    return result;
}

// Which of `values`, all different, belong to a longest rising sequence of them.
std::vector<bool> longestRise(const std::vector<int>& values) {
    // ends[k]: where the rise of k + 1 values ends whose last value is the smallest.
    std::vector<std::size_t> ends;
    std::vector<std::size_t> previous(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto at =
            std::lower_bound(ends.begin(), ends.end(), values[i],
                             [&](std::size_t end, int value) { return values[end] < value; });
        previous[i] = at == ends.begin() ? i : *std::prev(at);
        if (at == ends.end()) {
            ends.push_back(i);
        } else {
            *at = i;
        }
    }
    std::vector<bool> rises(values.size(), false);
    if (ends.empty()) return rises;
    std::size_t i = ends.back();
    for (std::size_t left = ends.size(); left > 0; --left) {
        rises[i] = true;
        i = previous[i];
    }
    return rises;
}

// Puts each row of `order` that does not rise behind the one it follows there.
std::vector<RowDiff::Move> movesTo(const QStringList& order, const std::vector<bool>& rises,
                                   QStringList& rows) {
    std::vector<RowDiff::Move> moves;
    for (int i = 0; i < order.size(); ++i) {
        if (rises[static_cast<std::size_t>(i)]) continue;
        const auto from = static_cast<int>(rows.indexOf(order[i]));
        const int before = i == 0 ? 0 : static_cast<int>(rows.indexOf(order[i - 1])) + 1;
        moves.push_back({from, before});
        rows.move(from, before > from ? before - 1 : before);
    }
    return moves;
}

void append(std::vector<RowDiff::Run>& runs, RowDiff::Run::Kind kind) {
    if (runs.empty() || runs.back().kind != kind) runs.push_back({kind, 0});
    ++runs.back().count;
}

// `stay` are the keys that both lists hold in the same order.
std::vector<RowDiff::Run> runsBetween(const QStringList& before, const QStringList& after,
                                      const QSet<QString>& stay) {
    std::vector<RowDiff::Run> runs;
    int old = 0;
    for (const QString& key : after) {
        if (!stay.contains(key)) {
            append(runs, RowDiff::Run::Inserted);
            continue;
        }
        for (; before[old] != key; ++old)
            append(runs, RowDiff::Run::Removed);
        append(runs, RowDiff::Run::Kept);
        ++old;
    }
    for (; old < before.size(); ++old)
        append(runs, RowDiff::Run::Removed);
    return runs;
}

}  // namespace

RowDiff RowDiff::between(const QStringList& before, const QStringList& after) {
    const QHash<QString, int> old = places(before);
    QStringList shared;
    std::vector<int> oldPlaces;
    for (const QString& key : after) {
        const auto found = old.constFind(key);
        if (found == old.constEnd()) continue;
        shared.append(key);
        oldPlaces.push_back(*found);
    }
    const std::vector<bool> rises = longestRise(oldPlaces);
    const auto movers = std::count(rises.begin(), rises.end(), false);

    RowDiff diff;
    QStringList rows = before;
    QSet<QString> stay(shared.begin(), shared.end());
    if (movers <= kMostMoves) {
        diff.moves = movesTo(shared, rises, rows);
    } else {
        for (int i = 0; i < shared.size(); ++i)
            if (!rises[static_cast<std::size_t>(i)]) stay.remove(shared[i]);
    }
    diff.runs = runsBetween(rows, after, stay);
    return diff;
}

}  // namespace sweepwright::ui
