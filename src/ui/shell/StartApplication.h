#pragma once

#include <QGuiApplication>
#include <memory>

namespace sweepwright::ui {

/// Makes the application, which needs a display. Without one the program ends with status 1 and
/// one line that says why, where Qt would tell of its plugins and abort. `argc` and `argv` must
/// outlive it.
std::unique_ptr<QGuiApplication> startApplication(int& argc, char** argv);

}  // namespace sweepwright::ui
