#pragma once

#include <QAbstractListModel>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <cstdint>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "ui/apps/RowDiff.h"

namespace sweepwright::ui {

/// What a row of a list of apps shows.
struct AppRow {
    QString key;  ///< no other row of the list has it
    QString title;
    QString detail;
    QString picture;            ///< an Image's source; empty: none
    bool isProtected = false;   ///< drawn as such
    QVariantList actions = {};  ///< behind the trailing edge; see SwipeAction::toVariant()

    bool operator==(const AppRow&) const = default;
};

/// The rows of a list of apps, and which of them are selected.
///
/// A new list is told to the views as what became of each row, by its key, never as a reset: what
/// stays keeps its place on screen, its open swipe and its selection.
class AppListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by a screen's controller")

  public:
    enum Role {
        KeyRole = Qt::UserRole,
        TitleRole,
        DetailRole,
        PictureRole,
        ProtectedRole,
        ActionsRole,
        SelectedRole
    };

    using QAbstractListModel::QAbstractListModel;

    /// Shows `rows` from now on. Those that are no longer there are no longer selected.
    void setRows(std::vector<AppRow> rows);
    /// Shows `changed` in place of row `row`, which has the same key.
    void setRow(int row, AppRow changed);
    [[nodiscard]] const AppRow& at(int row) const;

    [[nodiscard]] bool isSelected(int row) const { return selected_.contains(at(row).key); }
    void setSelected(int row, bool selected);
    void setAllSelected(bool selected);
    [[nodiscard]] int selectedCount() const { return static_cast<int>(selected_.size()); }
    /// From the first row to the last.
    [[nodiscard]] std::vector<int> selectedRows() const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

  private:
    void move(RowDiff::Move move);
    void remove(int first, int count);
    void insert(int first, int count);
    void announce(const std::vector<bool>& changed);
    [[nodiscard]] QStringList keys() const;

    // While one list becomes the other the rows are those of the new list that are done, then those
    // of the old one that are not: no step shifts rows in memory.
    std::vector<AppRow> rows_;
    std::vector<AppRow> next_;
    std::size_t done_ = 0;  // of next_
    std::size_t gone_ = 0;  // of rows_
    QSet<QString> selected_;
};

}  // namespace sweepwright::ui
