#pragma once

#include <QString>
#include <QVariantList>
#include <functional>
#include <vector>

namespace sweepwright::ui {

/// A button behind a row's trailing edge.
struct SwipeAction {
    enum class Style { Normal, Destructive };
    enum class Effect { Clean, ToggleWhitelist, Remove };
    /// Hears whether the action was carried out.
    using Completion = std::function<void(bool performed)>;

    QString title;
    Style style = Style::Normal;
    QString symbol;  ///< empty in the older, plainer form
    QString tint;    ///< the name of a colour of the theme
    Effect effect = Effect::Clean;

    bool operator==(const SwipeAction&) const = default;
};

/// The same buttons in the plainer form.
std::vector<SwipeAction> withoutSymbols(std::vector<SwipeAction> actions);

/// As the views take them: for each its "title", "symbol" and "tint".
QVariantList toVariants(const std::vector<SwipeAction>& actions);

}  // namespace sweepwright::ui
