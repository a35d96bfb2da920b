#include "ui/presentation/NavigationController.h"

#include <algorithm>

#include "ui/presentation/Presenter.h"

namespace sweepwright::ui {

NavigationController::NavigationController(std::unique_ptr<ScreenController> root,
                                           Presenter& presenter)
    : presenter_(presenter) {
    adopt(*root);
    entries_.push_back({std::move(root), false});
}

NavigationController::~NavigationController() = default;

void NavigationController::adopt(ScreenController& screen) {
    screen.setNavigationController(this);
    screen.setPresenter(&presenter_);
    screen.load();
}

void NavigationController::push(std::unique_ptr<ScreenController> screen) {
    removeLeft();
    adopt(*screen);
    top()->setVisible(false);
    const int row = static_cast<int>(entries_.size());
    beginInsertRows({}, row, row);
    entries_.push_back({std::move(screen), false});
    endInsertRows();
    top()->setVisible(visible_);
    Q_EMIT depthChanged();
}

void NavigationController::pop() {
    if (depth() <= 1) return;
    removeLeft();
    const int row = depth() - 1;
    Entry& last = entries_.back();
    last.leaving = true;
    last.screen->setVisible(false);
    const QModelIndex changed = index(row);
    Q_EMIT dataChanged(changed, changed, {LeavingRole});
    if (!drawn_) removeLeft();
    top()->setVisible(visible_);
    Q_EMIT depthChanged();
}

void NavigationController::popToRoot() {
    // Only the top one is seen to go.
    while (depth() > 2) {
        const int row = depth() - 2;
        beginRemoveRows({}, row, row);
        entries_[static_cast<std::size_t>(row)].screen.release()->deleteLater();
        entries_.erase(entries_.begin() + row);
        endRemoveRows();
    }
    pop();
}

void NavigationController::removeLeft() {
    while (entries_.back().leaving) {
        const int row = static_cast<int>(entries_.size()) - 1;
        beginRemoveRows({}, row, row);
        entries_.back().screen.release()->deleteLater();
        entries_.pop_back();
        endRemoveRows();
    }
}

int NavigationController::depth() const {
    return static_cast<int>(std::count_if(entries_.begin(), entries_.end(),
                                          [](const Entry& each) { return !each.leaving; }));
}

ScreenController* NavigationController::top() const {
    return entries_[static_cast<std::size_t>(depth()) - 1].screen.get();
}

void NavigationController::setVisible(bool visible) {
    visible_ = visible;
    top()->setVisible(visible);
}

void NavigationController::setDrawn(bool drawn) {
    if (drawn == drawn_) return;
    drawn_ = drawn;
    if (!drawn) removeLeft();
    Q_EMIT drawnChanged();
}

int NavigationController::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

QVariant NavigationController::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const auto row = static_cast<std::size_t>(index.row());
    switch (role) {
        case ScreenRole:
            return QVariant::fromValue(entries_[row].screen.get());
        case LeavingRole:
            return entries_[row].leaving;
        case BackTitleRole:
            return row == 0 ? QString() : entries_[row - 1].screen->title();
        default:
            return {};
    }
}

QHash<int, QByteArray> NavigationController::roleNames() const {
    return {{ScreenRole, "screen"}, {LeavingRole, "leaving"}, {BackTitleRole, "backTitle"}};
}

}  // namespace sweepwright::ui
