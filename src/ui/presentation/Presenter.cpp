#include "ui/presentation/Presenter.h"

#include <algorithm>
#include <ranges>

namespace sweepwright::ui {

Presenter::Presenter(QObject* parent) : QAbstractListModel(parent) {}
Presenter::~Presenter() = default;

AlertController* Presenter::present(std::unique_ptr<AlertController> alert) {
    AlertController* shown = alert.get();
    connect(shown, &AlertController::chosen, this, [this, shown] { dismiss(shown); });
    append(std::move(alert));
    return shown;
}

ScreenController* Presenter::present(std::unique_ptr<ScreenController> screen) {
    ScreenController* shown = screen.get();
    shown->setPresenter(this);
    shown->load();
    append(std::move(screen));
    shown->setVisible(true);
    return shown;
}

void Presenter::append(std::unique_ptr<QObject> object) {
    const bool wasActive = active();
    const int row = static_cast<int>(presentations_.size());
    beginInsertRows({}, row, row);
    presentations_.push_back({std::move(object), false});
    endInsertRows();
    if (!wasActive) Q_EMIT activeChanged();
}

std::size_t Presenter::rowOf(const QObject* object) const {
    const auto found =
        std::find_if(presentations_.begin(), presentations_.end(),
                     [&](const Presentation& each) { return each.object.get() == object; });
    return static_cast<std::size_t>(found - presentations_.begin());
}

void Presenter::dismiss(QObject* presentation, const Completion& completion) {
    const std::size_t row = rowOf(presentation);
    if (row < presentations_.size() && !presentations_[row].leaving) {
        presentations_[row].leaving = true;
        if (auto* screen = qobject_cast<ScreenController*>(presentation)) screen->setVisible(false);
        if (drawn_) {
            const QModelIndex changed = index(static_cast<int>(row));
            Q_EMIT dataChanged(changed, changed, {LeavingRole});
        } else {
            removeAt(row);
        }
        if (!active()) Q_EMIT activeChanged();
    }
    if (completion) completion();
}

void Presenter::removeAt(std::size_t row) {
    const int at = static_cast<int>(row);
    beginRemoveRows({}, at, at);
    // It may be one of its own signals that led here.
    presentations_[row].object.release()->deleteLater();
    presentations_.erase(presentations_.begin() + at);
    endRemoveRows();
}

void Presenter::removeLeft(QObject* presentation) {
    const std::size_t row = rowOf(presentation);
    if (row < presentations_.size() && presentations_[row].leaving) removeAt(row);
}

void Presenter::setDrawn(bool drawn) {
    if (drawn == drawn_) return;
    drawn_ = drawn;
    for (std::size_t row = presentations_.size(); !drawn && row-- > 0;) {
        if (presentations_[row].leaving) removeAt(row);
    }
    Q_EMIT drawnChanged();
}

AlertController* Presenter::alert() const {
    for (const Presentation& each : presentations_ | std::views::reverse) {
        if (!each.leaving) return qobject_cast<AlertController*>(each.object.get());
    }
    return nullptr;
}

ScreenController* Presenter::screen() const {
    for (const Presentation& each : presentations_ | std::views::reverse) {
        auto* found = qobject_cast<ScreenController*>(each.object.get());
        if (found != nullptr && !each.leaving) return found;
    }
    return nullptr;
}

bool Presenter::active() const {
    return std::any_of(presentations_.begin(), presentations_.end(),
                       [](const Presentation& each) { return !each.leaving; });
}

int Presenter::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(presentations_.size());
}

QVariant Presenter::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const Presentation& at = presentations_[static_cast<std::size_t>(index.row())];
    QObject* object = at.object.get();
    switch (role) {
        case PresentationRole:
            return QVariant::fromValue(object);
        case AlertRole:
            return QVariant::fromValue(qobject_cast<AlertController*>(object));
        case ScreenRole:
            return QVariant::fromValue(qobject_cast<ScreenController*>(object));
        case LeavingRole:
            return at.leaving;
        default:
            return {};
    }
}

QHash<int, QByteArray> Presenter::roleNames() const {
    return {{PresentationRole, "presentation"},
            {AlertRole, "alert"},
            {ScreenRole, "screen"},
            {LeavingRole, "leaving"}};
}

}  // namespace sweepwright::ui
