#include "ui/apps/AppListModel.h"

#include <algorithm>
#include <utility>

namespace sweepwright::ui {

const AppRow& AppListModel::at(int row) const {
    const auto index = static_cast<std::size_t>(row);
    return index < done_ ? next_[index] : rows_[gone_ + index - done_];
}

QStringList AppListModel::keys() const {
    QStringList result;
    result.reserve(static_cast<qsizetype>(rows_.size()));
    for (const AppRow& row : rows_)
        result.append(row.key);
    return result;
}

void AppListModel::setRows(std::vector<AppRow> rows) {
    QStringList after;
    after.reserve(static_cast<qsizetype>(rows.size()));
    for (const AppRow& row : rows)
        after.append(row.key);
    const RowDiff diff = RowDiff::between(keys(), after);
    selected_.intersect(QSet<QString>(after.begin(), after.end()));

    for (const RowDiff::Move& each : diff.moves)
        move(each);
    next_ = std::move(rows);
    std::vector<bool> changed(next_.size(), false);
    for (const RowDiff::Run& run : diff.runs) {
        const int first = static_cast<int>(done_);
        if (run.kind == RowDiff::Run::Removed) {
            remove(first, run.count);
        } else if (run.kind == RowDiff::Run::Inserted) {
            insert(first, run.count);
        } else {
            for (int i = 0; i < run.count; ++i, ++done_, ++gone_)
                changed[done_] = next_[done_] != rows_[gone_];
        }
    }
    rows_ = std::exchange(next_, {});
    done_ = 0;
    gone_ = 0;
    announce(changed);
}

void AppListModel::move(RowDiff::Move move) {
    beginMoveRows({}, move.from, move.from, {}, move.before);
    const auto from = rows_.begin() + move.from;
    const auto before = rows_.begin() + move.before;
    if (before > from) {
        std::rotate(from, from + 1, before);
    } else {
        std::rotate(before, from, from + 1);
    }
    endMoveRows();
}

void AppListModel::remove(int first, int count) {
    beginRemoveRows({}, first, first + count - 1);
    gone_ += static_cast<std::size_t>(count);
    endRemoveRows();
}

void AppListModel::insert(int first, int count) {
    beginInsertRows({}, first, first + count - 1);
    done_ += static_cast<std::size_t>(count);
    endInsertRows();
}

// Tells of neighbours at once.
void AppListModel::announce(const std::vector<bool>& changed) {
    auto from = std::find(changed.begin(), changed.end(), true);
    while (from != changed.end()) {
        const auto to = std::find(from, changed.end(), false);
        Q_EMIT dataChanged(index(static_cast<int>(from - changed.begin())),
                           index(static_cast<int>(to - changed.begin()) - 1));
        from = std::find(to, changed.end(), true);
    }
}

void AppListModel::setRow(int row, AppRow changed) {
    AppRow& now = rows_[static_cast<std::size_t>(row)];
    if (now == changed) return;
    now = std::move(changed);
    Q_EMIT dataChanged(index(row), index(row));
}

void AppListModel::setSelected(int row, bool selected) {
    if (selected == isSelected(row)) return;
    if (selected) {
        selected_.insert(at(row).key);
    } else {
        selected_.remove(at(row).key);
    }
    Q_EMIT dataChanged(index(row), index(row), {SelectedRole});
}

void AppListModel::setAllSelected(bool selected) {
    selected_.clear();
    if (selected)
        for (const AppRow& row : rows_)
            selected_.insert(row.key);
    if (!rows_.empty()) Q_EMIT dataChanged(index(0), index(rowCount() - 1), {SelectedRole});
}

std::vector<int> AppListModel::selectedRows() const {
    std::vector<int> result;
    for (int row = 0; row < rowCount(); ++row)
        if (isSelected(row)) result.push_back(row);
    return result;
}

int AppListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(done_ + rows_.size() - gone_);
}

QVariant AppListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const AppRow& row = at(index.row());
    switch (role) {
        case KeyRole:
            return row.key;
        case TitleRole:
            return row.title;
        case DetailRole:
            return row.detail;
        case PictureRole:
            return row.picture;
        case ProtectedRole:
            return row.isProtected;
        case ActionsRole:
            return row.actions;
        case SelectedRole:
            return selected_.contains(row.key);
        default:
            return {};
    }
}

QHash<int, QByteArray> AppListModel::roleNames() const {
    return {{KeyRole, "key"},
            {TitleRole, "title"},
            {DetailRole, "detail"},
            {PictureRole, "picture"},
            {ProtectedRole, "isProtected"},
            {ActionsRole, "swipeActions"},
            {SelectedRole, "isSelected"}};
}

}  // namespace sweepwright::ui
