#pragma once

#include <QAbstractListModel>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "platform/files/FileManager.h"

namespace sweepwright::ui {

/// The rows of a card: paths, or texts that are none, and the sizes that are known of them.
class FileListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by its card")

  public:
    enum Role { TextRole = Qt::UserRole };
    /// Bytes by row; a row without a size is missing.
    using Sizes = std::map<std::string, std::uint64_t, std::less<>>;

    /// `files` must outlive this.
    explicit FileListModel(platform::FileManager& files, QObject* parent = nullptr)
        : QAbstractListModel(parent), files_(files) {}

    /// Replaces the rows; those that stay at either end are left alone.
    void setRows(std::vector<std::string> rows);
    void setSizes(Sizes sizes);

    [[nodiscard]] const std::vector<std::string>& rows() const { return rows_; }
    [[nodiscard]] const Sizes& sizes() const { return sizes_; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    /// The text of a row: "📁 Caches (1.5 MB)".
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

  private:
    [[nodiscard]] QString textOf(const std::string& row) const;

    platform::FileManager& files_;
    std::vector<std::string> rows_;
    Sizes sizes_;
};

}  // namespace sweepwright::ui
