#include "ui/shell/Screens.h"

#include "ui/apps/AppListViewController.h"
#include "ui/apps/WhitelistViewController.h"
#include "ui/settings/SettingsViewController.h"
#include "ui/shell/PlaceholderScreen.h"

namespace sweepwright::ui {

SceneDelegate::Screens makeScreens(const ScreenServices& services) {
    const auto makeWhitelistScreen = [services] {
        return std::make_unique<WhitelistViewController>(services);
    };
    SceneDelegate::Screens screens;
    screens.push_back(
        std::make_unique<PlaceholderScreen>(services.texts, "Tab Home", services.notifications));
    screens.push_back(std::make_unique<AppListViewController>(services));
    screens.push_back(std::make_unique<SettingsViewController>(services, makeWhitelistScreen));
    return screens;
}

}  // namespace sweepwright::ui
