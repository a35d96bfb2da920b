#include "ui/apps/SwipeAction.h"

#include <QVariantMap>

namespace sweepwright::ui {

std::vector<SwipeAction> withoutSymbols(std::vector<SwipeAction> actions) {
    for (SwipeAction& action : actions)
        action.symbol.clear();
    return actions;
}

QVariantList toVariants(const std::vector<SwipeAction>& actions) {
    QVariantList result;
    result.reserve(static_cast<qsizetype>(actions.size()));
    for (const SwipeAction& action : actions) {
        result.append(QVariantMap{{QStringLiteral("title"), action.title},
                                  {QStringLiteral("symbol"), action.symbol},
                                  {QStringLiteral("tint"), action.tint}});
    }
    return result;
}

}  // namespace sweepwright::ui
