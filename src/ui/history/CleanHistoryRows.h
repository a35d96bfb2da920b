#pragma once

#include <QAbstractListModel>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "protection/CleanHistoryItem.h"

namespace sweepwright::ui {

/// The recorded cleans as a list, one group.
class CleanHistoryRows : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by its screen")

  public:
    enum Role {
        SectionRole = Qt::UserRole,
        TitleRole,
        SubtitleRole,
    };

    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] const std::vector<CleanHistoryItem>& items() const { return items_; }
    /// Shows these instead: rows that stay are not touched.
    void setItems(std::vector<CleanHistoryItem> items);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

  private:
    void removeGone(const std::vector<CleanHistoryItem>& wanted);
    void insertNew(std::vector<CleanHistoryItem> wanted);

    std::vector<CleanHistoryItem> items_;
};

}  // namespace sweepwright::ui
