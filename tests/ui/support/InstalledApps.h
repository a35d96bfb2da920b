#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/image/Image.h"
#include "ui/support/TestApp.h"

namespace sweepwright::test {

/// An app to put on a device. Sizes are bytes; one without a name has none in its bundle either.
struct InstalledApp {
    std::string identifier;
    std::string name = {};
    std::uint64_t caches = 0;
    std::uint64_t temporary = 0;
    std::string icon = {};  ///< the file's bytes; empty: no file
};

void install(TemporaryDevice& device, const InstalledApp& app);
/// Takes away the app with its data.
void uninstall(TemporaryDevice& device, const std::string& identifier);
/// Gives an installed app so many bytes of caches in place of what it has.
void setCaches(TemporaryDevice& device, const std::string& identifier, std::uint64_t bytes);

/// A PNG of one colour.
std::string plainIcon(std::uint8_t red, std::uint8_t green, std::uint8_t blue, unsigned side = 1);

/// The apps of the sample device, made once: most of the time goes into their icons.
const std::vector<InstalledApp>& sampleApps();
/// `count` apps with names, and with an icon each if wanted; every tenth is a system app.
std::vector<InstalledApp> manyApps(int count, bool withIcons = false);

}  // namespace sweepwright::test
