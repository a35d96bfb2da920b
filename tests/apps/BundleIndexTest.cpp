// Finding an app's bundle in an index must come to what a search of all bundles comes to.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "apps/AppsDevice.h"
#include "apps/BundleIndex.h"

namespace sweepwright {
namespace {

using platform::PropertyList;
using test::AppsDevice;
using Dictionary = PropertyList::Dictionary;

constexpr auto kBundles = "/var/containers/Bundle/Application";

struct Bundle {
    std::string container;
    std::string name;
    std::optional<std::string> identifier;
    std::optional<std::string> displayName;
    std::optional<std::string> shortName;
    std::optional<std::string> icon;
    bool iconIsThere = false;

    [[nodiscard]] std::string path() const {
        return std::string(kBundles) + "/" + container + "/" + name + ".app";
    }
};

struct Found {
    std::optional<std::string> appName;
    std::optional<std::string> bundlePath;
    std::optional<std::string> appIconPath;
    bool operator==(const Found&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Found& found) {
    return out << found.appName.value_or("-") << " " << found.bundlePath.value_or("-") << " "
               << found.appIconPath.value_or("-");
}

/// One data container's search of all bundles, which are in listing order.
Found search(const std::vector<Bundle>& bundles, const std::string& identifier,
             const std::string& containerName) {
    Found found;
    for (std::size_t i = 0; i < bundles.size();) {
        const std::string container = bundles[i].container;
        bool matched = false;
        for (; i < bundles.size() && bundles[i].container == container; ++i) {
            const Bundle& bundle = bundles[i];
            if (matched || bundle.identifier != identifier) continue;
            matched = true;
            found.appName = bundle.displayName ? bundle.displayName
                            : bundle.shortName ? bundle.shortName
                                               : identifier;
            found.bundlePath = bundle.path();
            if (bundle.icon)
                found.appIconPath =
                    bundle.path() + "/" + *bundle.icon + (bundle.iconIsThere ? ".png" : "");
        }
        if (found.appName && *found.appName != containerName) break;
    }
    if (!found.appName) found.appName = identifier;
    return found;
}

rc::Gen<std::optional<std::string>> maybe(const std::vector<std::string>& texts) {
    return rc::gen::map(rc::gen::inRange<std::size_t>(0, texts.size() + 1),
                        [texts](std::size_t i) -> std::optional<std::string> {
                            if (i == texts.size()) return std::nullopt;
                            return texts[i];
                        });
}

/// In listing order. Few names, so that they coincide.
std::vector<Bundle> anyBundles() {
    std::vector<Bundle> bundles;
    const auto containers = *rc::gen::inRange(0, 5);
    for (int c = 0; c < containers; ++c) {
        const auto count = *rc::gen::inRange(0, 4);
        for (int b = 0; b < count; ++b) {
            Bundle bundle;
            bundle.container = "B" + std::to_string(c);
            bundle.name = std::to_string(b);
            bundle.identifier = *maybe({"com.example.a", "Same", "com.example.b"});
            bundle.displayName = *maybe({"Same", "Other"});
            bundle.shortName = *maybe({"Same", "Short"});
            bundle.icon = *maybe({"Icon"});
            bundle.iconIsThere = *rc::gen::arbitrary<bool>();
            bundles.push_back(bundle);
        }
    }
    return bundles;
}

void install(AppsDevice& device, const Bundle& bundle) {
    Dictionary info;
    if (bundle.identifier) info.set("CFBundleIdentifier", *bundle.identifier);
    if (bundle.displayName) info.set("CFBundleDisplayName", *bundle.displayName);
    if (bundle.shortName) info.set("CFBundleName", *bundle.shortName);
    if (bundle.icon) info.set("CFBundleIconFiles", PropertyList::Array{*bundle.icon});
    device.bundle(bundle.container, bundle.name, info);
    if (bundle.iconIsThere) device.tree.file(bundle.path() + "/Icon.png", 0);
}

RC_GTEST_PROP(BundleIndex, FindsWhatASearchOfAllBundlesFinds, ()) {
    const auto bundles = anyBundles();
    AppsDevice device;
    for (const Bundle& bundle : bundles)
        install(device, bundle);
    device.container("Same", "com.example.a");
    device.container("Unlike", "com.example.b");
    device.tree.folder(AppsDevice::containerPath("com.example.c"));

    ThirdPartyAppCacheManager manager(device.services());
    ThirdPartyAppCacheManager::AppList apps;
    manager.scanAppDirectoriesIntoArray(apps);
    RC_ASSERT(apps.size() == 3U);
    for (const AppCacheInfo& app : apps) {
        const std::string containerName(platform::lastPathComponent(*app.dataPath));
        RC_ASSERT((Found{app.appName, app.bundlePath, app.appIconPath}) ==
                  search(bundles, *app.bundleIdentifier, containerName));
    }
}

TEST(BundleIndex, HoldsAtMostOneBundleOfEachContainer) {
    AppsDevice device;
    for (const char* container : {"B1", "B2"})
        for (const char* name : {"1", "2"})
            device.bundle(container, name, Dictionary{{"CFBundleIdentifier", "com.example.a"}});
    const BundleIndex index(device.files);
    const auto& found = index.find("com.example.a");
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].path, std::string(kBundles) + "/B1/1.app");
    EXPECT_EQ(found[1].path, std::string(kBundles) + "/B2/1.app");
    EXPECT_TRUE(index.find("com.example.b").empty());
}

TEST(BundleIndex, WithoutBundlesNothingIsFound) {
    AppsDevice device;
    EXPECT_TRUE(BundleIndex(device.files).find("com.example.a").empty());
}

TEST(BundleInfo, IsReadFromBothKindsOfList) {
    AppsDevice device;
    const PropertyList info = Dictionary{{"CFBundleIdentifier", "com.example.a"},
                                         {"CFBundleDisplayName", "显示名"},
                                         {"CFBundleName", "Name"},
                                         {"CFBundleIconFile", "Old"}};
    for (const std::string& bytes : {info.toBinary(), info.toXml()}) {
        device.tree.fileWith("/A.app/Info.plist", bytes);
        const auto read = readBundleInfo(device.files, "/A.app");
        ASSERT_TRUE(read.has_value());
        EXPECT_EQ(read->path, "/A.app");
        EXPECT_EQ(read->identifier, "com.example.a");
        EXPECT_EQ(read->displayName, "显示名");
        EXPECT_EQ(read->name, "Name");
        EXPECT_EQ(read->iconFile, std::nullopt);
        EXPECT_EQ(read->iconName(), "Old");
    }
}

TEST(BundleInfo, IsNoneWhereThereIsNoDictionary) {
    AppsDevice device;
    EXPECT_FALSE(readBundleInfo(device.files, "/Absent.app").has_value());
    device.tree.fileWith("/A.app/Info.plist", PropertyList(PropertyList::Array{"x"}).toBinary());
    EXPECT_FALSE(readBundleInfo(device.files, "/A.app").has_value());
}

}  // namespace
}  // namespace sweepwright
