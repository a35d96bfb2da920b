#pragma once

#include <QString>
#include <vector>

namespace sweepwright::ui {

/// A row of the settings: what it says, what kind it is and what it stands for.
struct SettingsRow {
    QString title;
    QString subtitle;
    QString type;        ///< "disclosure", "switch" or "none"
    QString key;         ///< what a press does, or the user default of a switch; may be empty
    QString icon;        ///< a symbol's name
    QString value = {};  ///< shown at the right when not empty
    bool defaultValue = false;  ///< of a switch that is not stored yet
    bool on = false;            ///< of a switch

    bool operator==(const SettingsRow&) const = default;
};

using SettingsSection = std::vector<SettingsRow>;

}  // namespace sweepwright::ui
