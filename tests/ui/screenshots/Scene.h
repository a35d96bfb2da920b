#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <vector>

#include "ui/support/TestApp.h"

namespace sweepwright::test {

inline constexpr std::uint64_t kGigabyte = std::uint64_t{1} << 30U;

/// A state of the app that is worth a picture.
struct Scene {
    QString name;
    TestApp::MakeScreens screens = {};  ///< the product's own when empty
    std::function<void(TestApp&)> prepare = {};
    int osVersion = 26;
    bool welcome = false;
    /// What is on the device, before there is a window.
    std::function<void(TestApp&)> device = {};
    double textScale = 1.0;
};

/// What all screens are made of: the tab bar, controls, lists, alerts.
std::vector<Scene> kitScenes();
/// The product's screens on a volume of `total` bytes that is `used` percent full.
TestApp::MakeScreens home(std::uint64_t total, double used);
/// The ring, the cards, scans and cleans.
std::vector<Scene> homeScenes();
/// The apps and the protected apps.
std::vector<Scene> appScenes();
/// The settings and what opens from them.
std::vector<Scene> settingsScenes();
/// The clean history.
std::vector<Scene> historyScenes();

}  // namespace sweepwright::test
