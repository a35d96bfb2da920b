#include "ui/shell/Screens.h"

#include "platform/ResourceBundle.h"
#include "ui/settings/SettingsViewController.h"
#include "ui/shell/PlaceholderScreen.h"

namespace sweepwright::ui {

SceneDelegate::Screens makeScreens(const ScreenServices& services) {
    SceneDelegate::Screens screens;
    for (const char* key : {"Tab Home", "Tab Apps"}) {
        screens.push_back(
            std::make_unique<PlaceholderScreen>(services.texts, key, services.notifications));
    }
    const auto makeWhitelistScreen = [&services] {
        return std::make_unique<PlaceholderScreen>(services.texts, "Clean Whitelist",
                                                   services.notifications);
    };
    screens.push_back(std::make_unique<SettingsViewController>(
        services, appVersion(platform::ResourceBundle::main()), makeWhitelistScreen));
    return screens;
}

}  // namespace sweepwright::ui
