#pragma once

#include <QAbstractListModel>
#include <functional>
#include <memory>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "ui/presentation/AlertController.h"
#include "ui/presentation/ScreenController.h"

namespace sweepwright::ui {

/// What lies over the tabs: alerts, action sheets and screens shown over the full screen, the last
/// one on top and alone reachable.
///
/// A controller presents here; whatever view draws it, or none. A view that wants to let what goes
/// fade away says so by setDrawn(true): what is dismissed then stays in the model, marked as
/// leaving, until the view calls removeLeft(). To everybody else it is gone at once.
class Presenter : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the shell")
    /// Whether anything is presented.
    Q_PROPERTY(bool active READ active NOTIFY activeChanged)
    Q_PROPERTY(bool drawn READ drawn WRITE setDrawn NOTIFY drawnChanged)

  public:
    enum Role { PresentationRole = Qt::UserRole, AlertRole, ScreenRole, LeavingRole };
    using Completion = std::function<void()>;

    explicit Presenter(QObject* parent = nullptr);
    ~Presenter() override;

    /// Shows `alert` over all else; it is this object's until dismissed. Choosing one of its
    /// actions dismisses it. Answers it, for whoever updates its message.
    AlertController* present(std::unique_ptr<AlertController> alert);
    /// Shows a screen over the tabs, which stay visible around it.
    ScreenController* present(std::unique_ptr<ScreenController> screen);

    /// Takes `presentation` away, then runs `completion`. One that is not presented (any more) only
    /// runs it.
    void dismiss(QObject* presentation, const Completion& completion = {});

    /// The alert on top; none when nothing, or a screen, is there.
    [[nodiscard]] AlertController* alert() const;
    /// The screen that is presented, an alert may lie over it.
    [[nodiscard]] ScreenController* screen() const;
    [[nodiscard]] bool active() const;

    [[nodiscard]] bool drawn() const { return drawn_; }
    void setDrawn(bool drawn);
    /// The view is done with what leaves.
    Q_INVOKABLE void removeLeft(QObject* presentation);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

  Q_SIGNALS:
    void activeChanged();
    void drawnChanged();

  private:
    struct Presentation {
        std::unique_ptr<QObject> object;
        bool leaving = false;
    };
    void append(std::unique_ptr<QObject> object);
    void removeAt(std::size_t row);
    [[nodiscard]] std::size_t rowOf(const QObject* object) const;

    std::vector<Presentation> presentations_;
    bool drawn_ = false;
};

}  // namespace sweepwright::ui
