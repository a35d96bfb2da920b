// Where the picture of an app comes from.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/AppIcon.h"
#include "apps/AppsDevice.h"
#include "platform/log/Log.h"

namespace sweepwright {
namespace {

using platform::LogCapture;
using platform::PropertyList;
using test::AppsDevice;
using test::devicePicture;
using test::FakeApp;
using test::picture;
using test::raised;
using test::shadeOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Dictionary = PropertyList::Dictionary;

constexpr auto kBundle = "/var/containers/Bundle/Application/B1/A.app";
constexpr std::uint8_t kOwn = 200;

/// The icon of an app that the service describes so.
std::optional<AppIcon> iconOf(AppsDevice& device, FakeApp app) {
    app.identifier = "com.example.a";
    device.workspace.offer({std::move(app)});
    ThirdPartyAppCacheManager manager(device.services());
    return device.scanAll(manager).at(0).appIcon;
}

/// The icon of bundle kBundle.
std::optional<AppIcon> iconOfBundle(AppsDevice& device) {
    ThirdPartyAppCacheManager manager(device.services());
    return manager.extractAppIconFromProxy(nullptr, kBundle);
}

TEST(AppIconSearch, TheServicesVariantComesFirst) {
    AppsDevice device;
    FakeApp app;
    app.icon = picture(1);
    app.sizedIcons = FakeApp::SizedIcons{{"60", picture(2)}};
    EXPECT_EQ(shadeOf(iconOf(device, app)), 1);
}

TEST(AppIconSearch, AVariantThatDoesNotDecodeIsPassedOver) {
    for (const char* variant : {"", "no picture"}) {
        AppsDevice device;
        FakeApp app;
        app.icon = variant;
        app.sizedIcons = FakeApp::SizedIcons{{"60", picture(2)}};
        EXPECT_EQ(shadeOf(iconOf(device, app)), 2);
    }
}

TEST(AppIconSearch, OfAllSizesTheFirstThatDecodesIsTaken) {
    AppsDevice device;
    FakeApp app;
    app.sizedIcons = FakeApp::SizedIcons{
        {"90", ""}, {"80", "no picture"}, {"60", picture(3)}, {"40", picture(4)}};
    const LogCapture log;
    EXPECT_EQ(shadeOf(iconOf(device, app)), 3);
    EXPECT_THAT(test::linesWith(log.lines(), "⚠️ 获取"), IsEmpty());
}

TEST(AppIconSearch, AServiceThatRaisesIsLoggedAndTheBundleSearched) {
    for (const bool inVariant : {true, false}) {
        AppsDevice device;
        device.tree.fileWith(std::string(kBundle) + "/icon.png", picture(5));
        FakeApp app;
        app.bundlePath = kBundle;
        if (inVariant) {
            app.icon = raised("not now");
            app.sizedIcons = FakeApp::SizedIcons{{"60", picture(2)}};
        } else {
            app.sizedIcons = raised("not now");
        }
        const LogCapture log;
        EXPECT_EQ(shadeOf(iconOf(device, app)), 5);
        EXPECT_TRUE(log.contains("⚠️ 获取应用图标失败（私有API）: not now"));
    }
}

TEST(AppIconSearch, FilesAreTriedByTheNameOfTheListThenByTheUsualNames) {
    const std::vector<std::string> order = {"Own@3x.png",
                                            "Own@2x.png",
                                            "Own.png",
                                            "Own@3x.PNG",
                                            "Own@2x.PNG",
                                            "Own.PNG",
                                            "AppIcon60x60@2x.png",
                                            "AppIcon60x60@2x.PNG",
                                            "AppIcon60x60@3x.png",
                                            "AppIcon60x60@3x.PNG",
                                            "Icon-60@2x.png",
                                            "Icon-60@2x.PNG",
                                            "Icon-60@3x.png",
                                            "Icon-60@3x.PNG",
                                            "AppIcon@2x.png",
                                            "AppIcon@2x.PNG",
                                            "AppIcon@3x.png",
                                            "AppIcon@3x.PNG",
                                            "icon@2x.png",
                                            "icon@2x.PNG",
                                            "icon@3x.png",
                                            "icon@3x.PNG",
                                            "AppIcon.png",
                                            "AppIcon.PNG",
                                            "icon.png",
                                            "icon.PNG"};
    AppsDevice device;
    device.ownIcon(picture(kOwn));
    device.bundle("B1", "A", Dictionary{{"CFBundleIconFiles", PropertyList::Array{"Own"}}});
    // From the last to the first, so that each new file must win over all before it.
    for (std::size_t i = order.size(); i-- > 0;) {
        device.tree.fileWith(std::string(kBundle) + "/" + order[i],
                             picture(static_cast<std::uint8_t>(i)));
        EXPECT_EQ(shadeOf(iconOfBundle(device)), static_cast<int>(i)) << order[i];
    }
    // And each that does not decode gives way to the next.
    for (std::size_t i = 0; i + 1 < order.size(); ++i) {
        device.tree.fileWith(std::string(kBundle) + "/" + order[i], "no picture");
        EXPECT_EQ(shadeOf(iconOfBundle(device)), static_cast<int>(i + 1)) << order[i];
    }
    device.tree.fileWith(std::string(kBundle) + "/" + order.back(), "no picture");
    EXPECT_EQ(shadeOf(iconOfBundle(device)), kOwn);
}

TEST(AppIconSearch, ABundleWithBothScalesYieldsTheLarger) {
    AppsDevice device;
    const Dictionary primary{{"CFBundleIconFiles", PropertyList::Array{"AppIcon60x60"}}};
    device.bundle("B1", "A",
                  Dictionary{{"CFBundleIcons", Dictionary{{"CFBundlePrimaryIcon", primary}}}});
    device.tree.fileWith(std::string(kBundle) + "/AppIcon60x60@2x.png", picture(2));
    device.tree.fileWith(std::string(kBundle) + "/AppIcon60x60@3x.png", picture(3));
    EXPECT_EQ(shadeOf(iconOfBundle(device)), 3);
}

TEST(AppIconSearch, AnUpperCaseExtensionIsFoundAfterAllLowerCaseOnes) {
    AppsDevice device;
    device.bundle("B1", "A", Dictionary{{"CFBundleIconFile", "Old"}});
    device.tree.fileWith(std::string(kBundle) + "/Old.PNG", picture(9));
    EXPECT_EQ(shadeOf(iconOfBundle(device)), 9);
    device.tree.fileWith(std::string(kBundle) + "/Old@3x.PNG", picture(8));
    EXPECT_EQ(shadeOf(iconOfBundle(device)), 8);
    device.tree.fileWith(std::string(kBundle) + "/Old.png", picture(7));
    EXPECT_EQ(shadeOf(iconOfBundle(device)), 7);
}

TEST(AppIconSearch, TheNameComesFromThePrimaryIconThenTheTopLevelThenTheOldKey) {
    AppsDevice device;
    for (const char* name : {"Primary", "Top", "Old", "First"})
        device.tree.fileWith(std::string(kBundle) + "/" + name + ".png",
                             picture(static_cast<std::uint8_t>(name[0])));
    const Dictionary primary{{"CFBundleIconFiles", PropertyList::Array{"First", "Primary"}}};
    const Dictionary empty{{"CFBundleIconFiles", PropertyList::Array{}}};
    const PropertyList top = PropertyList::Array{"First", "Top"};
    const auto shadeWith = [&](const Dictionary& info) {
        device.bundle("B1", "A", info);
        return shadeOf(iconOfBundle(device));
    };
    EXPECT_EQ(shadeWith({{"CFBundleIcons", Dictionary{{"CFBundlePrimaryIcon", primary}}},
                         {"CFBundleIconFiles", top},
                         {"CFBundleIconFile", "Old"}}),
              'P');
    EXPECT_EQ(shadeWith({{"CFBundleIcons", Dictionary{{"CFBundlePrimaryIcon", empty}}},
                         {"CFBundleIconFiles", top},
                         {"CFBundleIconFile", "Old"}}),
              'T');
    EXPECT_EQ(
        shadeWith({{"CFBundleIconFiles", PropertyList::Array{}}, {"CFBundleIconFile", "Old"}}),
        'O');
}

TEST(AppIconSearch, ABundleThatCannotBeReadIsSearchedByTheUsualNames) {
    AppsDevice device;
    device.tree.fileWith(std::string(kBundle) + "/Info.plist", "damaged");
    device.tree.fileWith(std::string(kBundle) + "/icon@3x.png", picture(6));
    EXPECT_EQ(shadeOf(iconOfBundle(device)), 6);
}

TEST(AppIconSearch, ThePicturesOfInstalledBundlesAreInTheDevicesOwnVariant) {
    AppsDevice device;
    device.tree.fileWith(std::string(kBundle) + "/AppIcon@2x.png", devicePicture(11));
    EXPECT_EQ(shadeOf(iconOfBundle(device)), 11);
    FakeApp app;
    app.icon = devicePicture(12);
    EXPECT_EQ(shadeOf(iconOf(device, app)), 12);
}

TEST(AppIconSearch, AnAppWithoutIconFilesGetsOurOwn) {
    AppsDevice device;
    device.ownIcon(picture(kOwn));
    device.tree.folder(kBundle);
    EXPECT_EQ(shadeOf(iconOfBundle(device)), kOwn);
    EXPECT_EQ(shadeOf(iconOf(device, FakeApp{})), kOwn);
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_EQ(shadeOf(manager.extractAppIconFromProxy(nullptr, "")), kOwn);
}

TEST(AppIconSearch, WithNothingToShowThereIsNone) {
    AppsDevice device;
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_FALSE(manager.extractAppIconFromProxy(nullptr, std::nullopt).has_value());
    device.ownIcon("no picture");
    ThirdPartyAppCacheManager another(device.services());
    EXPECT_FALSE(another.extractAppIconFromProxy(nullptr, std::nullopt).has_value());
}

TEST(AppIconSearch, AnEmptyBundlePathIsNotTheRoot) {
    AppsDevice device;
    device.tree.fileWith("/icon.png", picture(1));
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_FALSE(manager.extractAppIconFromProxy(nullptr, "").has_value());
}

TEST(AppIcon, CopiesShareTheirBytes) {
    const auto icon = AppIcon::fromBytes(picture(1));
    ASSERT_TRUE(icon.has_value());
    const std::vector<AppIcon> copies(2, *icon);
    EXPECT_EQ(&copies.front().bytes(), &copies.back().bytes());
    EXPECT_EQ(copies.front().bytes(), picture(1));
}

TEST(AppIcon, WhatIsNoPictureIsNone) {
    EXPECT_FALSE(AppIcon::fromBytes("").has_value());
    EXPECT_FALSE(AppIcon::fromBytes("no picture").has_value());
    const std::string whole = picture(1);
    EXPECT_FALSE(AppIcon::fromBytes(whole.substr(0, whole.size() - 5)).has_value());
}

}  // namespace
}  // namespace sweepwright
