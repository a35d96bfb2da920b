#pragma once

#include <QAbstractListModel>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "ui/settings/SettingsRow.h"

namespace sweepwright::ui {

/// The settings' sections as one list, each row with its place.
class SettingsRows : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by its screen")

  public:
    enum Role {
        SectionRole = Qt::UserRole,  ///< the section's number, as a text
        RowInSectionRole,
        TagRole,
        FirstRole,
        LastRole,
        TitleRole,
        SubtitleRole,
        TypeRole,
        IconRole,
        ValueRole,
        OnRole
    };

    /// A row's tag is kTagsPerSection times its section plus its row there.
    static constexpr int kTagsPerSection = 1000;

    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] const std::vector<SettingsSection>& sections() const { return sections_; }
    /// Shows these instead. Where only contents differ, only those rows change.
    void setSections(std::vector<SettingsSection> sections);
    /// The row at this place; none when there is none.
    [[nodiscard]] const SettingsRow* at(int section, int row) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

  private:
    struct Place {
        int section;
        int row;
    };

    void announce(int section, int row);
    [[nodiscard]] Place placeOf(int index) const;
    [[nodiscard]] bool hasShapeOf(const std::vector<SettingsSection>& other) const;

    std::vector<SettingsSection> sections_;
};

}  // namespace sweepwright::ui
