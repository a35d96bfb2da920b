#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>

#include <QtQml/qqmlregistration.h>

#include "ui/presentation/BarButtonItem.h"

namespace sweepwright::ui {

class NavigationController;
class Presenter;

/// A screen's state and decisions, without any item. A screen derives from this, names the view
/// that draws it, and is shown by a NavigationController or a Presenter.
class ScreenController : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("a screen derives from this")
    Q_PROPERTY(QString title READ title WRITE setTitle NOTIFY titleChanged)
    Q_PROPERTY(bool prefersLargeTitles READ prefersLargeTitles CONSTANT)
    /// The QML file that draws the screen. Its root has a required property `screen`.
    Q_PROPERTY(QUrl view READ view CONSTANT)
    Q_PROPERTY(sweepwright::ui::BarButtonItem* rightBarButtonItem READ rightBarButtonItem CONSTANT)
    Q_PROPERTY(bool visible READ visible NOTIFY visibleChanged)

  public:
    explicit ScreenController(QUrl view);
    ~ScreenController() override;

    [[nodiscard]] const QString& title() const { return title_; }
    void setTitle(const QString& title);
    [[nodiscard]] virtual bool prefersLargeTitles() const { return false; }
    [[nodiscard]] const QUrl& view() const { return view_; }
    [[nodiscard]] BarButtonItem* rightBarButtonItem() const { return rightBarButtonItem_; }
    [[nodiscard]] bool visible() const { return visible_; }

    /// What shows it; none before it is shown.
    [[nodiscard]] NavigationController* navigationController() const;
    [[nodiscard]] Presenter* presenter() const;

    // --- For whoever shows it. ---

    void setNavigationController(NavigationController* navigation);
    void setPresenter(Presenter* presenter);
    /// Runs viewDidLoad() the first time.
    void load();
    /// Runs viewWillAppear() or viewWillDisappear() when that is a change.
    void setVisible(bool visible);

  Q_SIGNALS:
    void titleChanged();
    void visibleChanged();

  protected:
    /// Once, before the screen is first shown.
    virtual void viewDidLoad() {}
    virtual void viewWillAppear() {}
    virtual void viewWillDisappear() {}

    /// Gives the screen a button at the right of its navigation bar; call it before it is shown.
    BarButtonItem& addRightBarButtonItem();

  private:
    QUrl view_;
    QString title_;
    BarButtonItem* rightBarButtonItem_ = nullptr;
    QPointer<NavigationController> navigation_;
    QPointer<Presenter> presenter_;
    bool loaded_ = false;
    bool visible_ = false;
};

}  // namespace sweepwright::ui
