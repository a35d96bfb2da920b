#pragma once

#include "cli/Failure.h"
#include "platform/device/UserDefaults.h"

namespace sweepwright::cli {

/// The operation's error when the user defaults are damaged or can't be read: what they hold would
/// look empty, and a change would begin new ones.
inline Outcome requireReadableDefaults() {
    if (auto damage = platform::UserDefaults::standard().damage())
        return failed(*std::move(damage));
    return {};
}

}  // namespace sweepwright::cli
