// SampleDeviceBuilder's work on apps: bundles with their icons, data containers.
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "platform/image/Image.h"
#include "platform/plist/PropertyList.h"
#include "sample/internal/SampleDeviceBuilder.h"
#include "sample/internal/SampleIcon.h"

namespace sweepwright::sample {

using catalog::App;
using catalog::Container;
using catalog::IconStyle;
using platform::PropertyList;
using platform::Result;

namespace {

constexpr std::uint64_t kKiB = 1024;
constexpr unsigned kSideAtTwo = 120;  // pixels of a 60-point icon
constexpr unsigned kSideAtThree = 180;

constexpr std::string_view kBundles = "/var/containers/Bundle/Application";
constexpr std::string_view kContainers = "/var/mobile/Containers/Data/Application";

struct IconFile {
    std::string name;
    std::string content;
};

/// What is inside a bundle for its icon.
struct IconSet {
    PropertyList::Dictionary keys;  ///< of Info.plist
    std::vector<IconFile> files;
};

Result<> addIcon(IconSet& set, const App& app, std::string name, unsigned side,
                 bool deviceVariant) {
    const platform::Image image = drawSampleIcon(app.glyph, app.hue, side);
    auto content = deviceVariant ? encodeDevicePng(image) : encodePng(image);
    if (!content) return std::unexpected(content.error());
    set.files.push_back({std::move(name), std::move(*content)});
    return {};
}

PropertyList::Dictionary primaryIcon() {
    const PropertyList::Dictionary primary{
        {"CFBundleIconFiles", PropertyList::Array{"AppIcon60x60"}},
        {"CFBundleIconName", "AppIcon"}};
    return {{"CFBundleIcons", PropertyList::Dictionary{{"CFBundlePrimaryIcon", primary}}}};
}

Result<IconSet> iconFor(const App& app) {
    IconSet set;
    Result<> done;
    const std::string bundleName(app.bundleName);
    switch (app.icon) {
        case IconStyle::Primary:
        case IconStyle::BothScales:
            set.keys = primaryIcon();
            done = addIcon(set, app, "AppIcon60x60@2x.png", kSideAtTwo, true);
            if (done && app.icon == IconStyle::BothScales)
                done = addIcon(set, app, "AppIcon60x60@3x.png", kSideAtThree, true);
            break;
        case IconStyle::TopLevel:
            set.keys.set("CFBundleIconFiles", PropertyList::Array{"Icon-29", "Icon-60"});
            done = addIcon(set, app, "Icon-60@2x.png", kSideAtTwo, false);
            if (done) done = addIcon(set, app, "Icon-60@3x.png", kSideAtThree, false);
            break;
        case IconStyle::Single:
            set.keys.set("CFBundleIconFile", bundleName);
            done = addIcon(set, app, bundleName + ".png", kSideAtTwo, false);
            break;
        case IconStyle::UpperCase:
            set.keys.set("CFBundleIconFile", bundleName);
            done = addIcon(set, app, bundleName + ".PNG", kSideAtTwo, true);
            break;
        case IconStyle::Usual:
            done = addIcon(set, app, "Icon-60@2x.png", kSideAtTwo, false);
            break;
        case IconStyle::Damaged:
            set.keys = primaryIcon();
            set.files.push_back({"AppIcon60x60@2x.png", "this is no picture"});
            break;
        case IconStyle::None:
            break;
    }
    if (!done) return std::unexpected(done.error());
    return set;
}

PropertyList infoOf(const App& app, const PropertyList::Dictionary& iconKeys) {
    PropertyList::Dictionary info{{"CFBundleIdentifier", app.identifier},
                                  {"CFBundleExecutable", app.bundleName},
                                  {"CFBundlePackageType", "APPL"},
                                  {"CFBundleShortVersionString", "1.0"}};
    if (!app.displayName.empty()) info.set("CFBundleDisplayName", app.displayName);
    if (!app.bundleName.empty()) info.set("CFBundleName", app.bundleName);
    for (const auto& [key, value] : iconKeys.entries())
        info.set(key, value);
    return info;
}

}  // namespace

Result<> SampleDeviceBuilder::layApp(const App& app) {
    Result<> done;
    if (app.container != Container::NoBundle && app.container != Container::NoMetadata)
        done = layBundle(app);
    if (!done || app.container == Container::NoContainer) return done;
    const std::string data = fmt::format("{}/{}", kContainers,
                                         app.container == Container::NamedByApp
                                             ? std::string(app.identifier)
                                             : sampleUuid(fmt::format("data {}", app.identifier)));
    return layData(app, data);
}

Result<> SampleDeviceBuilder::layBundle(const App& app) {
    const auto icon = iconFor(app);
    if (!icon) return std::unexpected(icon.error());
    const std::string bundle =
        fmt::format("{}/{}/{}", kBundles, sampleUuid(fmt::format("bundle {}", app.identifier)),
                    app.bundleFolder);
    const PropertyList info = infoOf(app, icon->keys);
    auto done = layText(bundle + "/Info.plist",
                        app.format == catalog::InfoFormat::Xml ? info.toXml() : info.toBinary());
    for (const IconFile& file : icon->files) {
        if (done) done = layText(fmt::format("{}/{}", bundle, file.name), file.content);
    }
    if (!done) return done;
    const catalog::Heap assets{bundle, "Asset-{n}.car", 3, 1200, 400};
    return layHeap(assets, bundle);
}

Result<> SampleDeviceBuilder::layData(const App& app, const std::string& data) {
    Result<> done;
    if (app.container != Container::NoMetadata) {
        const PropertyList metadata = PropertyList::Dictionary{
            {"MCMMetadataIdentifier", app.identifier},
            {"MCMMetadataContentClass", 2},
            {"MCMMetadataUUID", sampleUuid(fmt::format("data {}", app.identifier))}};
        done = layText(data + "/.com.apple.mobile_container_manager.metadata.plist",
                       metadata.toBinary());
    }
    for (const char* usual : {"/Library/Caches", "/Library/Preferences", "/tmp", "/Documents"}) {
        if (done) done = folder(data + usual);
    }
    return done ? layHeapsOf(app, data) : done;
}

Result<> SampleDeviceBuilder::layHeapsOf(const App& app, const std::string& data) {
    const auto lay = [&](const std::string& folder, std::string_view name, unsigned files,
                         std::uint64_t kiB, unsigned oldestDays) -> Result<> {
        if (kiB == 0) return {};
        const catalog::Heap heap{folder, name, files, static_cast<unsigned>(kiB / files),
                                 oldestDays};
        return layHeap(heap, folder);
    };
    const std::string caches = fmt::format("{}/Library/Caches/", data);
    const std::uint64_t half = app.cachesMiB * kKiB / 2;
    auto done =
        lay(fmt::format("{}{}/fsCachedData", caches, app.identifier), "{uuid}", 12, half, 45);
    if (done) done = lay(caches + "com.hackemist.SDImageCache/default", "{hash}", 10, half, 90);
    if (done && half != 0)
        done = laySparse(fmt::format("{}{}/Cache.db", caches, app.identifier), 512 * kKiB,
                         std::chrono::hours(2));
    if (done) done = lay(data + "/tmp", "{hash}.tmp", 4, app.temporaryMiB * kKiB, 5);
    if (done)
        done = lay(data + "/Library/WebKit/WebsiteData/LocalStorage", "{hash}.localstorage", 6,
                   app.webMiB * kKiB, 60);
    if (done) done = lay(data + "/Documents", "document-{n}.dat", 4, app.documentsMiB * kKiB, 400);
    return done;
}

}  // namespace sweepwright::sample
