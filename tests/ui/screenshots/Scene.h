#pragma once

#include <QString>
#include <functional>
#include <vector>

#include "ui/support/TestApp.h"

namespace sweepwright::test {

/// A state of the app that is worth a picture.
struct Scene {
    QString name;
    TestApp::MakeScreens screens = {};  ///< the product's own when empty
    std::function<void(TestApp&)> prepare;
    int osVersion = 26;
    bool welcome = false;
    /// What is on the device, before there is a window.
    std::function<void(TestApp&)> device = {};
    double textScale = 1.0;
};

/// The ring, the cards, scans and cleans.
std::vector<Scene> homeScenes();
/// The apps and the protected apps.
std::vector<Scene> appScenes();
/// The settings and what opens from them.
std::vector<Scene> settingsScenes();
/// The clean history.
std::vector<Scene> historyScenes();

}  // namespace sweepwright::test
