#pragma once

#include <string>

namespace sweepwright::platform {
class ResourceBundle;
}

namespace sweepwright::ui {

/// Which version of the app this is.
struct AppVersion {
    std::string shortVersion = "1.0.0";
    std::string build = "1";

    bool operator==(const AppVersion&) const = default;
};

/// What the bundle's Info.plist says; what it doesn't say is as above.
AppVersion appVersion(const platform::ResourceBundle& bundle);

}  // namespace sweepwright::ui
