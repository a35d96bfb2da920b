#include "ui/history/CleanHistoryRows.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "engine/StorageAnalyzer.h"
#include "platform/text/DateText.h"

namespace sweepwright::ui {

void CleanHistoryRows::setItems(std::vector<CleanHistoryItem> items) {
    removeGone(items);
    insertNew(std::move(items));
}

void CleanHistoryRows::removeGone(const std::vector<CleanHistoryItem>& wanted) {
    for (int row = rowCount() - 1; row >= 0; --row) {
        const auto at = items_.begin() + row;
        if (std::ranges::find(wanted, *at) != wanted.end()) continue;
        beginRemoveRows({}, row, row);
        items_.erase(at);
        endRemoveRows();
    }
}

// What is left of the old rows comes in the wanted order, but for an item that changed its place:
// that one is inserted anew, and its old row ends up behind the wanted ones.
void CleanHistoryRows::insertNew(std::vector<CleanHistoryItem> wanted) {
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (i < items_.size() && items_[i] == wanted[i]) continue;
        const int row = static_cast<int>(i);
        beginInsertRows({}, row, row);
        items_.insert(items_.begin() + row, std::move(wanted[i]));
        endInsertRows();
    }
    if (items_.size() == wanted.size()) return;
    beginRemoveRows({}, static_cast<int>(wanted.size()), rowCount() - 1);
    items_.resize(wanted.size());
    endRemoveRows();
}

int CleanHistoryRows::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(items_.size());
}

QVariant CleanHistoryRows::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const CleanHistoryItem& item = items_[static_cast<std::size_t>(index.row())];
    switch (role) {
        case SectionRole:
            return QStringLiteral("0");
        case TitleRole:
            return QString::fromStdString(item.cleanTypeName);
        case SubtitleRole:
            return QString::fromStdString(
                fmt::format("{} • {}", StorageAnalyzer::formatBytes(item.cleanedBytes),
                            platform::dateText(item.cleanDate)));
        default:
            return {};
    }
}

QHash<int, QByteArray> CleanHistoryRows::roleNames() const {
    return {{SectionRole, "section"}, {TitleRole, "title"}, {SubtitleRole, "subtitle"}};
}

}  // namespace sweepwright::ui
