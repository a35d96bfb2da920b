#pragma once

#include <QString>
#include <QStringList>
#include <vector>

namespace sweepwright::ui {

/// How one list of rows becomes another, told in steps that a view can follow. Rows are known by
/// keys, each of which stands at most once in a list.
struct RowDiff {
    /// The row `from` goes to where it stands before the row that was `before`, both as they are
    /// when its turn comes.
    struct Move {
        int from = 0;
        int before = 0;
        bool operator==(const Move&) const = default;
    };
    /// So many rows that follow each other.
    struct Run {
        enum Kind { Kept, Removed, Inserted };
        Kind kind = Kept;
        int count = 0;
        bool operator==(const Run&) const = default;
    };

    /// With more rows out of order than this, they count as removed and inserted instead: a view
    /// would show a whirl, and each move costs a walk through the list.
    static constexpr int kMostMoves = 32;

    /// First the moves, one after the other; then the runs, from the first row on.
    std::vector<Move> moves;
    std::vector<Run> runs;

    /// The steps from `before` to `after`, with as few rows moved as there can be. Takes time in
    /// proportion to n log n.
    static RowDiff between(const QStringList& before, const QStringList& after);
};

}  // namespace sweepwright::ui
