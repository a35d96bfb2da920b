#include "ui/shell/Screens.h"

#include "ui/apps/AppListViewController.h"
#include "ui/shell/PlaceholderScreen.h"

namespace sweepwright::ui {

SceneDelegate::Screens makeScreens(const ScreenServices& services) {
    const auto placeholder = [&](const char* key) {
        return std::make_unique<PlaceholderScreen>(services.texts, key, services.notifications);
    };
    SceneDelegate::Screens screens;
    screens.push_back(placeholder("Tab Home"));
    screens.push_back(std::make_unique<AppListViewController>(services));
    screens.push_back(placeholder("Tab Settings"));
    return screens;
}

}  // namespace sweepwright::ui
