#pragma once

#include <QString>
#include <functional>
#include <vector>

#include "ui/support/TestApp.h"

namespace sweepwright::test {

/// A state of the app to be pictured.
struct Scene {
    QString name;
    TestApp::MakeScreens screens;  ///< the product's own when empty
    std::function<void(TestApp&)> prepare;
    int osVersion = 26;
    bool welcome = false;
};

/// The scenes of each screen.
std::vector<Scene> homeScenes();

}  // namespace sweepwright::test
