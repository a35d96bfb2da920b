#include "ui/presentation/BarButtonItem.h"

namespace sweepwright::ui {

void BarButtonItem::setTitle(const QString& title) {
    if (title == title_) return;
    title_ = title;
    Q_EMIT titleChanged();
}

void BarButtonItem::setSymbol(const QString& symbol) {
    if (symbol == symbol_) return;
    symbol_ = symbol;
    Q_EMIT symbolChanged();
}

void BarButtonItem::setEnabled(bool enabled) {
    if (enabled == enabled_) return;
    enabled_ = enabled;
    Q_EMIT enabledChanged();
}

void BarButtonItem::setProminent(bool prominent) {
    if (prominent == prominent_) return;
    prominent_ = prominent;
    Q_EMIT prominentChanged();
}

void BarButtonItem::trigger() {
    if (enabled_) Q_EMIT triggered();
}

}  // namespace sweepwright::ui
