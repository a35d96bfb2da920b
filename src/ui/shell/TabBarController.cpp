#include "ui/shell/TabBarController.h"

#include <utility>

namespace sweepwright::ui {

TabBarController::TabBarController(std::vector<std::unique_ptr<NavigationController>> controllers)
    : controllers_(std::move(controllers)) {}

TabBarController::~TabBarController() = default;

QList<NavigationController*> TabBarController::viewControllers() const {
    QList<NavigationController*> list;
    for (const auto& controller : controllers_)
        list.append(controller.get());
    return list;
}

int TabBarController::indexOf(const NavigationController* controller) const {
    for (int i = 0; i < count(); ++i) {
        if (&at(i) == controller) return i;
    }
    return -1;
}

void TabBarController::setSelectedIndex(int index) {
    if (index == selectedIndex_ || index < 0 || index >= count()) return;
    at(selectedIndex_).setVisible(false);
    selectedIndex_ = index;
    at(selectedIndex_).setVisible(visible_);
    Q_EMIT selectedIndexChanged();
    Q_EMIT didSelectViewController(&at(selectedIndex_));
}

void TabBarController::setVisible(bool visible) {
    visible_ = visible;
    at(selectedIndex_).setVisible(visible);
}

}  // namespace sweepwright::ui
