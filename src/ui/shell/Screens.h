#pragma once

#include "ui/shell/AppServices.h"
#include "ui/shell/SceneDelegate.h"

namespace sweepwright::ui {

/// The root screens of the three tabs, in their order: home, apps, settings.
SceneDelegate::Screens makeScreens(const AppServices& services);

}  // namespace sweepwright::ui
