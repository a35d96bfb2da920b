#include "ui/presentation/ScreenController.h"

#include <utility>

#include "ui/presentation/NavigationController.h"
#include "ui/presentation/Presenter.h"

namespace sweepwright::ui {

ScreenController::ScreenController(QUrl view) : view_(std::move(view)) {}
ScreenController::~ScreenController() = default;

void ScreenController::setTitle(const QString& title) {
    if (title == title_) return;
    title_ = title;
    Q_EMIT titleChanged();
}

NavigationController* ScreenController::navigationController() const {
    return navigation_;
}

Presenter* ScreenController::presenter() const {
    return presenter_;
}

void ScreenController::setNavigationController(NavigationController* navigation) {
    navigation_ = navigation;
}

void ScreenController::setPresenter(Presenter* presenter) {
    presenter_ = presenter;
}

void ScreenController::load() {
    if (loaded_) return;
    loaded_ = true;
    viewDidLoad();
}

void ScreenController::setVisible(bool visible) {
    if (visible == visible_) return;
    visible_ = visible;
    if (visible) {
        viewWillAppear();
    } else {
        viewWillDisappear();
    }
    Q_EMIT visibleChanged();
}

BarButtonItem& ScreenController::addRightBarButtonItem() {
    if (rightBarButtonItem_ == nullptr) rightBarButtonItem_ = new BarButtonItem(this);
    return *rightBarButtonItem_;
}

}  // namespace sweepwright::ui
