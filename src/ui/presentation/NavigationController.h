#pragma once

#include <QAbstractListModel>
#include <memory>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "ui/presentation/ScreenController.h"

namespace sweepwright::ui {

/// A stack of screens: the root stays, others are pushed on it and popped.
///
/// As with the Presenter, a view that wants to let a popped screen slide away says so by
/// setDrawn(true); the screen then stays in the model as leaving until removeLeft().
class NavigationController : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the shell")
    Q_PROPERTY(int depth READ depth NOTIFY depthChanged)
    Q_PROPERTY(sweepwright::ui::ScreenController* top READ top NOTIFY depthChanged)
    Q_PROPERTY(bool drawn READ drawn WRITE setDrawn NOTIFY drawnChanged)

  public:
    enum Role { ScreenRole = Qt::UserRole, LeavingRole, BackTitleRole };

    NavigationController(std::unique_ptr<ScreenController> root, Presenter& presenter);
    ~NavigationController() override;

    /// Puts `screen` on top; the one below is no longer visible.
    void push(std::unique_ptr<ScreenController> screen);
    /// Takes the top screen away; the root stays.
    Q_INVOKABLE void pop();
    void popToRoot();

    /// How many screens there are, those that leave not counted.
    [[nodiscard]] int depth() const;
    [[nodiscard]] ScreenController* root() const { return entries_.front().screen.get(); }
    [[nodiscard]] ScreenController* top() const;

    /// Whether the stack itself is on screen: its tab is the selected one. Passed on to the top.
    void setVisible(bool visible);

    [[nodiscard]] bool drawn() const { return drawn_; }
    void setDrawn(bool drawn);
    /// The view is done with the screens that leave.
    Q_INVOKABLE void removeLeft();

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

  Q_SIGNALS:
    void depthChanged();
    void drawnChanged();

  private:
    struct Entry {
        std::unique_ptr<ScreenController> screen;
        bool leaving = false;
    };
    void adopt(ScreenController& screen);

    Presenter& presenter_;
    std::vector<Entry> entries_;
    bool drawn_ = false;
    bool visible_ = false;
};

}  // namespace sweepwright::ui
