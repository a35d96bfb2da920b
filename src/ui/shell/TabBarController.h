#pragma once

#include <QList>
#include <QObject>
#include <memory>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "ui/presentation/NavigationController.h"

namespace sweepwright::ui {

/// The tabs: one navigation stack each, of which one is on screen.
class TabBarController : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the shell")
    Q_PROPERTY(
        QList<sweepwright::ui::NavigationController*> viewControllers READ viewControllers CONSTANT)
    Q_PROPERTY(
        int selectedIndex READ selectedIndex WRITE setSelectedIndex NOTIFY selectedIndexChanged)

  public:
    explicit TabBarController(std::vector<std::unique_ptr<NavigationController>> controllers);
    ~TabBarController() override;

    [[nodiscard]] QList<NavigationController*> viewControllers() const;
    [[nodiscard]] NavigationController& at(int index) const {
        return *controllers_.at(static_cast<std::size_t>(index));
    }
    [[nodiscard]] int count() const { return static_cast<int>(controllers_.size()); }
    /// -1 when it is none of these.
    [[nodiscard]] int indexOf(const NavigationController* controller) const;

    [[nodiscard]] int selectedIndex() const { return selectedIndex_; }
    /// An index outside changes nothing.
    void setSelectedIndex(int index);

    /// The window has come or gone: the selected stack's top screen appears or disappears.
    void setVisible(bool visible);

  Q_SIGNALS:
    void selectedIndexChanged();
    /// Another tab is selected, however that came about.
    void didSelectViewController(sweepwright::ui::NavigationController* controller);

  private:
    std::vector<std::unique_ptr<NavigationController>> controllers_;
    int selectedIndex_ = 0;
    bool visible_ = false;
};

}  // namespace sweepwright::ui
