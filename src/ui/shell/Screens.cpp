#include "ui/shell/Screens.h"

#include "ui/home/ViewController.h"
#include "ui/shell/PlaceholderScreen.h"

namespace sweepwright::ui {

SceneDelegate::Screens makeScreens(const ScreenServices& services) {
    SceneDelegate::Screens screens;
    screens.push_back(std::make_unique<ViewController>(services));
    for (const char* key : {"Tab Apps", "Tab Settings"}) {
        screens.push_back(
            std::make_unique<PlaceholderScreen>(services.texts, key, services.notifications));
    }
    return screens;
}

}  // namespace sweepwright::ui
