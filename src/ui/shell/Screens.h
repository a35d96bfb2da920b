#pragma once

#include "ui/presentation/ScreenServices.h"
#include "ui/shell/SceneDelegate.h"

namespace sweepwright::ui {

/// The root screens of the three tabs, in their order: home, apps, settings.
SceneDelegate::Screens makeScreens(const ScreenServices& services);

}  // namespace sweepwright::ui
