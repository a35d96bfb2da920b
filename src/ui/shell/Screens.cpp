#include "ui/shell/Screens.h"

#include "ui/shell/PlaceholderScreen.h"

namespace sweepwright::ui {

SceneDelegate::Screens makeScreens(const ScreenServices& services) {
    SceneDelegate::Screens screens;
    for (const char* key : {"Tab Home", "Tab Apps", "Tab Settings"}) {
        screens.push_back(
            std::make_unique<PlaceholderScreen>(services.texts, key, services.notifications));
    }
    return screens;
}

}  // namespace sweepwright::ui
