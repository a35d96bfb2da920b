#include "ui/home/FileListModel.h"

#include <algorithm>

#include <fmt/format.h>

#include "engine/StorageAnalyzer.h"

namespace sweepwright::ui {

void FileListModel::setRows(std::vector<std::string> rows) {
    const auto front = std::mismatch(rows_.begin(), rows_.end(), rows.begin(), rows.end());
    const auto kept = front.first - rows_.begin();
    const auto back =
        std::mismatch(rows_.rbegin(), rows_.rend() - kept, rows.rbegin(), rows.rend() - kept);
    const auto tail = back.first - rows_.rbegin();
    const auto first = static_cast<int>(kept);
    const auto removed = static_cast<int>(static_cast<std::ptrdiff_t>(rows_.size()) - kept - tail);
    const auto added = static_cast<int>(static_cast<std::ptrdiff_t>(rows.size()) - kept - tail);
    if (removed > 0) {
        beginRemoveRows({}, first, first + removed - 1);
        rows_.erase(rows_.begin() + kept, rows_.end() - tail);
        endRemoveRows();
    }
    if (added > 0) {
        beginInsertRows({}, first, first + added - 1);
        rows_ = std::move(rows);
        endInsertRows();
    }
}

void FileListModel::setSizes(Sizes sizes) {
    if (sizes == sizes_) return;
    sizes_ = std::move(sizes);
    if (rows_.empty()) return;
    Q_EMIT dataChanged(index(0), index(rowCount() - 1), {TextRole});
}

int FileListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant FileListModel::data(const QModelIndex& index, int role) const {
    if (role != TextRole || !checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    return textOf(rows_[static_cast<std::size_t>(index.row())]);
}

QHash<int, QByteArray> FileListModel::roleNames() const {
    return {{TextRole, "text"}};
}

QString FileListModel::textOf(const std::string& row) const {
    // Asked for the few rows in sight only. What is no path is not looked for.
    const bool isFolder = row.starts_with('/') && files_.isDirectory(row);
    std::string name(platform::lastPathComponent(row));
    if (const auto size = sizes_.find(row); size != sizes_.end())
        name = fmt::format("{} ({})", name, StorageAnalyzer::formatBytes(size->second));
    return QString::fromStdString(fmt::format("{} {}", isFolder ? "📁" : "📄", name));
}

}  // namespace sweepwright::ui
