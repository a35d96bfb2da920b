#pragma once

#include <QAbstractListModel>

#include <QtQml/qqmlregistration.h>

#include "ui/presentation/ScreenController.h"
#include "ui/presentation/ScrollReporter.h"
#include "ui/presentation/Texts.h"

namespace sweepwright::ui {

/// Rows by number, for a tab whose screen is not there yet.
class PlaceholderRows : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by its screen")

  public:
    enum Role { NumberRole = Qt::UserRole };
    static constexpr int kRows = 2000;

    using QAbstractListModel::QAbstractListModel;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : kRows;
    }
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
        return role == NumberRole ? QVariant(index.row() + 1) : QVariant();
    }
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override {
        return {{NumberRole, "number"}};
    }
};

/// Stands in a tab whose screen is not there yet: a long list that scrolls under the bar.
class PlaceholderScreen : public sweepwright::ui::ScreenController {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the shell")
    Q_PROPERTY(sweepwright::ui::ScrollReporter* scrolling READ scrolling CONSTANT)
    Q_PROPERTY(sweepwright::ui::PlaceholderRows* rows READ rows CONSTANT)

  public:
    PlaceholderScreen(Texts& texts, std::string titleKey,
                      platform::NotificationCenter& notifications);

    [[nodiscard]] bool prefersLargeTitles() const override { return true; }
    [[nodiscard]] ScrollReporter* scrolling() { return &scrolling_; }
    [[nodiscard]] PlaceholderRows* rows() { return &rows_; }

  private:
    ScrollReporter scrolling_;
    PlaceholderRows rows_;
};

}  // namespace sweepwright::ui
