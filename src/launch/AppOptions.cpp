#include "launch/AppOptions.h"

#include <array>

namespace sweepwright::launch {

namespace {

constexpr std::array<AppOption, 9> kOptions{{
    {"", "device-root", "folder", "The host folder that is the device's /."},
    {"", "home", "path", "Device path of the app's home directory."},
    {"", "tmp", "path", "Device path of the temporary directory."},
    {"", "idiom", "iphone|ipad", "The device idiom."},
    {"", "os-version", "version",
     "The device's system version, which decides on the tab bar's form."},
    {"", "appearance", "light|dark", "Light or dark, whatever the desktop says."},
    {"v", "verbose", "", "The diagnostic log lines on standard error, too."},
    {"h", "help", "", "This text."},
    {"", "version", "", "The program's version."},
}};

}  // namespace

std::span<const AppOption> appOptions() {
    return kOptions;
}

}  // namespace sweepwright::launch
