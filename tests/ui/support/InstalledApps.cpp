#include "ui/support/InstalledApps.h"

#include <filesystem>

#include <fmt/format.h>

#include "platform/plist/PropertyList.h"
#include "sample/internal/SampleDeviceCatalog.h"
#include "sample/internal/SampleIcon.h"

namespace sweepwright::test {

namespace {

constexpr std::uint64_t kMiB = std::uint64_t{1} << 20U;

std::string bundleOf(const std::string& identifier) {
    return "/var/containers/Bundle/Application/" + identifier + "/App.app";
}

// A container without metadata is known by its folder's name.
std::string containerOf(const std::string& identifier) {
    return "/var/mobile/Containers/Data/Application/" + identifier;
}

std::string encoded(const platform::Image& image) {
    return platform::encodePng(image).value();
}

std::vector<InstalledApp> makeSampleApps() {
    constexpr unsigned kSide = 120;
    std::vector<InstalledApp> apps;
    for (const sample::catalog::App& app : sample::catalog::apps()) {
        if (app.bundleFolder.empty()) continue;
        apps.push_back({std::string(app.identifier), std::string(app.displayName),
                        (app.cachesMiB + app.webMiB) * kMiB, app.temporaryMiB * kMiB,
                        encoded(sample::drawSampleIcon(app.glyph, app.hue, kSide))});
    }
    return apps;
}

}  // namespace

void install(TemporaryDevice& device, const InstalledApp& app) {
    platform::PropertyList::Dictionary info{{"CFBundleIdentifier", app.identifier}};
    if (!app.name.empty()) info.set("CFBundleDisplayName", app.name);
    const std::string bundle = bundleOf(app.identifier);
    device.fileWith(bundle + "/Info.plist", platform::PropertyList(info).toBinary());
    if (!app.icon.empty()) device.fileWith(bundle + "/AppIcon60x60@2x.png", app.icon);
    setCaches(device, app.identifier, app.caches);
    if (app.temporary > 0) device.file(containerOf(app.identifier) + "/tmp/upload", app.temporary);
}

void uninstall(TemporaryDevice& device, const std::string& identifier) {
    std::filesystem::remove_all(device.host(bundleOf(identifier)));
    std::filesystem::remove_all(device.host(containerOf(identifier)));
}

void setCaches(TemporaryDevice& device, const std::string& identifier, std::uint64_t bytes) {
    const std::string caches = containerOf(identifier) + "/Library/Caches";
    device.folder(caches);
    device.file(caches + "/responses", bytes);
}

std::string plainIcon(std::uint8_t red, std::uint8_t green, std::uint8_t blue, unsigned side) {
    platform::Image image{side, side, {}};
    for (unsigned i = 0; i < side * side; ++i)
        image.rgba.insert(image.rgba.end(), {red, green, blue, 255});
    return encoded(image);
}

const std::vector<InstalledApp>& sampleApps() {
    static const std::vector<InstalledApp> apps = makeSampleApps();
    return apps;
}

std::vector<InstalledApp> manyApps(int count, bool withIcons) {
    constexpr unsigned kSide = 120;
    std::vector<InstalledApp> apps;
    const auto catalog = sample::catalog::apps();
    for (int i = 0; i < count; ++i) {
        const auto number = static_cast<unsigned>(i);
        const auto& model = catalog[number % catalog.size()];
        const std::string prefix = i % 10 == 9 ? "com.apple" : "com.example";
        apps.push_back(
            {fmt::format("{}.app{}", prefix, i), fmt::format("{} {}", model.bundleName, i),
             (number * 37 % 900 + 1) * kMiB / 7, number * 13 % 50 * 1024,
             withIcons ? encoded(sample::drawSampleIcon(model.glyph, number * 47 % 360, kSide))
                       : std::string()});
    }
    return apps;
}

}  // namespace sweepwright::test
