// Which apps a scan finds by a walk of the containers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/AppsDevice.h"
#include "platform/log/Log.h"

namespace sweepwright {
namespace {

using platform::LogCapture;
using platform::PropertyList;
using test::AppsDevice;
using test::FakeApp;
using test::identifiersOf;
using test::linesWith;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Dictionary = PropertyList::Dictionary;
using AppList = ThirdPartyAppCacheManager::AppList;

/// The apps that a walk adds to none.
AppList walked(AppsDevice& device) {
    ThirdPartyAppCacheManager manager(device.services());
    AppList apps;
    manager.scanAppDirectoriesIntoArray(apps);
    return apps;
}

/// An app installed alone: container "C1", bundle with `info` and the identifier added.
AppCacheInfo only(AppsDevice& device, Dictionary info) {
    device.container("C1", "com.example.a");
    info.set("CFBundleIdentifier", "com.example.a");
    device.bundle("B1", "A", info);
    const AppList apps = walked(device);
    EXPECT_EQ(apps.size(), 1U);
    return apps.at(0);
}

constexpr auto kBundle = "/var/containers/Bundle/Application/B1/A.app";

TEST(AppWalk, AContainerIsRecordedUnderItsMetadata) {
    AppsDevice device;
    const AppCacheInfo app =
        only(device, {{"CFBundleDisplayName", "Shown"}, {"CFBundleName", "Short"}});
    EXPECT_EQ(app.bundleIdentifier, "com.example.a");
    EXPECT_EQ(app.dataPath, "/var/mobile/Containers/Data/Application/C1");
    EXPECT_EQ(app.bundlePath, kBundle);
    EXPECT_EQ(app.appName, "Shown");
    EXPECT_FALSE(app.isSystemApp);
}

TEST(AppWalk, WithoutDisplayNameTheBundleNameIsTaken) {
    AppsDevice device;
    EXPECT_EQ(only(device, {{"CFBundleName", "Short"}}).appName, "Short");
}

TEST(AppWalk, WithoutAnyNameTheIdentifierIsTaken) {
    AppsDevice device;
    const AppCacheInfo app = only(device, {});
    EXPECT_EQ(app.appName, "com.example.a");
    EXPECT_EQ(app.bundlePath, kBundle);
}

TEST(AppWalk, AContainerWithoutMetadataGoesByItsOwnName) {
    AppsDevice device;
    device.tree.folder(AppsDevice::containerPath("11-22-33"));
    const AppList apps = walked(device);
    ASSERT_EQ(apps.size(), 1U);
    EXPECT_EQ(apps[0].bundleIdentifier, "11-22-33");
    EXPECT_EQ(apps[0].appName, "11-22-33");
    EXPECT_EQ(apps[0].bundlePath, std::nullopt);
    EXPECT_FALSE(apps[0].appIcon.has_value());
}

TEST(AppWalk, MetadataWithoutIdentifierLeavesTheContainersName) {
    AppsDevice device;
    const std::string metadata = "/.com.apple.mobile_container_manager.metadata.plist";
    device.tree.fileWith(AppsDevice::containerPath("C1") + metadata, PropertyList().toXml());
    device.tree.fileWith(AppsDevice::containerPath("C2") + metadata, "damaged");
    device.tree.fileWith(AppsDevice::containerPath("C3") + metadata,
                         PropertyList(Dictionary{{"MCMMetadataIdentifier", ""}}).toXml());
    EXPECT_THAT(identifiersOf(walked(device)), ElementsAre("C1", "C2", "C3"));
}

TEST(AppWalk, MetadataMayBeText) {
    AppsDevice device;
    device.tree.fileWith(
        AppsDevice::containerPath("C1") + "/.com.apple.mobile_container_manager.metadata.plist",
        PropertyList(Dictionary{{"MCMMetadataIdentifier", "com.example.xml"}}).toXml());
    EXPECT_THAT(identifiersOf(walked(device)), ElementsAre("com.example.xml"));
}

TEST(AppWalk, WhatIsNoDirectoryIsNoContainer) {
    AppsDevice device;
    device.tree.file(AppsDevice::containerPath("stray"), 3);
    device.tree.link(AppsDevice::containerPath("dangling"), "/nowhere");
    device.container("C1", "com.example.a");
    const LogCapture log;
    EXPECT_THAT(identifiersOf(walked(device)), ElementsAre("com.example.a"));
    EXPECT_TRUE(
        log.contains("📂 扫描容器目录: /var/mobile/Containers/Data/Application, 发现 3 个容器"));
    EXPECT_TRUE(log.contains("✅ 从目录扫描新增 1 个应用"));
}

TEST(AppWalk, WhatTheServiceFoundIsNotAddedAgain) {
    AppsDevice device;
    device.container("C1", "com.example.a");
    device.container("C2", "com.example.b");
    FakeApp app;
    app.identifier = "com.example.a";
    app.name = "By the service";
    device.workspace.offer({app});
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    const AppList apps = device.scanAll(manager);
    EXPECT_THAT(identifiersOf(apps), ElementsAre("com.example.a", "com.example.b"));
    EXPECT_EQ(apps[0].appName, "By the service");
    EXPECT_TRUE(log.contains("✅ 从目录扫描新增 1 个应用"));
}

TEST(AppWalk, RecordsWithoutIdentifierHideNothing) {
    AppsDevice device;
    device.container("C1", "com.example.a");
    ThirdPartyAppCacheManager manager(device.services());
    AppList apps(1);
    manager.scanAppDirectoriesIntoArray(apps);
    EXPECT_THAT(identifiersOf(apps), ElementsAre("(none)", "com.example.a"));
}

TEST(AppWalk, OfTwoContainersWithOneIdentifierTheFirstIsTaken) {
    AppsDevice device;
    device.container("C1", "com.example.a");
    const std::string second = device.container("C2", "com.example.a");
    device.tree.file(second + "/tmp/x", 10);
    const AppList apps = walked(device);
    ASSERT_EQ(apps.size(), 1U);
    EXPECT_EQ(apps[0].dataPath, AppsDevice::containerPath("C1"));
    EXPECT_EQ(apps[0].totalSize, 0U);
}

TEST(AppWalk, ASystemAppWithNothingToCleanIsLeftOut) {
    AppsDevice device;
    device.container("C1", "com.apple.empty");
    device.tree.file(device.container("C2", "com.apple.full") + "/tmp/x", 10);
    const LogCapture log;
    const AppList apps = walked(device);
    EXPECT_THAT(identifiersOf(apps), ElementsAre("com.apple.full"));
    EXPECT_TRUE(apps[0].isSystemApp);
    EXPECT_TRUE(log.contains("✅ 从目录扫描新增 1 个应用"));
}

TEST(AppWalk, ADroppedSystemAppLeavesItsIdentifierToTheNextContainer) {
    AppsDevice device;
    device.container("C1", "com.apple.twice");
    device.tree.file(device.container("C2", "com.apple.twice") + "/tmp/x", 10);
    device.tree.file(device.container("C3", "com.apple.twice") + "/tmp/x", 99);
    const AppList apps = walked(device);
    ASSERT_EQ(apps.size(), 1U);
    EXPECT_EQ(apps[0].dataPath, AppsDevice::containerPath("C2"));
}

TEST(AppWalk, ABundleInTheSystemFolderCountsByItsPath) {
    AppsDevice device;
    device.tree.file(device.container("C1", "com.example.a") + "/tmp/x", 10);
    device.bundle("Applications", "A", Dictionary{{"CFBundleIdentifier", "com.example.a"}});
    EXPECT_TRUE(walked(device).at(0).isSystemApp);
}

TEST(AppWalk, OnlyDirectoriesNamedAppAreBundles) {
    AppsDevice device;
    device.container("C1", "com.example.a");
    const std::string other = "/var/containers/Bundle/Application/B1/Other.bundle/Info.plist";
    device.tree.fileWith(other, PropertyList(Dictionary{{"CFBundleIdentifier", "com.example.a"},
                                                        {"CFBundleName", "Wrong"}})
                                    .toBinary());
    device.tree.fileWith("/var/containers/Bundle/Application/B1/iTunesMetadata.plist", "x");
    device.tree.fileWith("/var/containers/Bundle/Application/stray.app", "x");
    const AppList apps = walked(device);
    EXPECT_EQ(apps.at(0).appName, "com.example.a");
    EXPECT_EQ(apps.at(0).bundlePath, std::nullopt);
}

TEST(AppWalk, TheFirstMatchOfABundleContainerIsTaken) {
    AppsDevice device;
    device.container("C1", "com.example.a");
    device.bundle("B1", "1",
                  Dictionary{{"CFBundleIdentifier", "com.example.a"}, {"CFBundleName", "First"}});
    device.bundle("B1", "2",
                  Dictionary{{"CFBundleIdentifier", "com.example.a"}, {"CFBundleName", "Second"}});
    device.bundle("B2", "3",
                  Dictionary{{"CFBundleIdentifier", "com.example.a"}, {"CFBundleName", "Third"}});
    EXPECT_EQ(walked(device).at(0).appName, "First");
}

TEST(AppWalk, ANameThatIsTheContainersLeavesTheSearchOpen) {
    AppsDevice device;
    device.container("Same", "com.example.a");
    device.bundle("B1", "1",
                  Dictionary{{"CFBundleIdentifier", "com.example.a"}, {"CFBundleName", "Same"}});
    device.bundle("B2", "2",
                  Dictionary{{"CFBundleIdentifier", "com.example.a"}, {"CFBundleName", "Better"}});
    const AppList apps = walked(device);
    EXPECT_EQ(apps.at(0).appName, "Better");
    EXPECT_EQ(apps.at(0).bundlePath, "/var/containers/Bundle/Application/B2/2.app");
}

TEST(AppWalk, TheIconPathIsOfThePrimaryIconsLastFile) {
    AppsDevice device;
    device.tree.fileWith(std::string(kBundle) + "/New.png", test::picture(1));
    const Dictionary primary{{"CFBundleIconFiles", PropertyList::Array{"Old", "New"}}};
    const AppCacheInfo app =
        only(device, {{"CFBundleIcons", Dictionary{{"CFBundlePrimaryIcon", primary}}},
                      {"CFBundleIconFiles", PropertyList::Array{"Top"}}});
    EXPECT_EQ(app.appIconPath, std::string(kBundle) + "/New.png");
    EXPECT_EQ(test::shadeOf(app.appIcon), 1);
}

TEST(AppWalk, TheIconPathFallsBackToTheTopLevelFiles) {
    AppsDevice device;
    device.tree.fileWith(std::string(kBundle) + "/Top.png", "whatever it holds");
    const Dictionary primary{{"CFBundleIconFiles", PropertyList::Array{}}};
    const AppCacheInfo app =
        only(device, {{"CFBundleIcons", Dictionary{{"CFBundlePrimaryIcon", primary}}},
                      {"CFBundleIconFiles", PropertyList::Array{"First", "Top"}}});
    EXPECT_EQ(app.appIconPath, std::string(kBundle) + "/Top.png");
}

TEST(AppWalk, AnIconPathWithoutFileHasNoExtension) {
    AppsDevice device;
    EXPECT_EQ(only(device, {{"CFBundleIconFiles", PropertyList::Array{"Icon@2x"}}}).appIconPath,
              std::string(kBundle) + "/Icon@2x");
}

TEST(AppWalk, TheOldSingleIconFileGivesAnIconButNoPath) {
    AppsDevice device;
    device.tree.fileWith(std::string(kBundle) + "/Single.png", test::picture(3));
    const AppCacheInfo app = only(device, {{"CFBundleIconFile", "Single"}});
    EXPECT_EQ(app.appIconPath, std::nullopt);
    EXPECT_EQ(test::shadeOf(app.appIcon), 3);
}

TEST(AppWalk, ABundleWithoutIconGetsOurOwn) {
    AppsDevice device;
    device.ownIcon(test::picture(200));
    EXPECT_EQ(test::shadeOf(only(device, {}).appIcon), 200);
}

TEST(AppWalk, HiddenRootsAreReportedAndAddNoRecords) {
    AppsDevice device;
    const std::string groups = "/var/mobile/Containers/Shared/AppGroup";
    device.tree.folder(groups + "/.jbroot-1/var");
    device.tree.folder(groups + "/.jbroot-2/usr");
    device.tree.file(groups + "/.jbroot-3/var", 1);
    device.tree.folder(groups + "/ordinary/var");
    device.tree.folder(groups + "/x.jbroot-4/var");
    const LogCapture log;
    EXPECT_THAT(walked(device), IsEmpty());
    EXPECT_THAT(
        log.lines(),
        ElementsAre("📂 扫描容器目录: /var/mobile/Containers/Data/Application, 发现 0 个容器",
                    "📂 扫描 AppGroup 目录: " + groups + ", 发现 5 个 AppGroup",
                    "🔍 发现隐根设备路径: " + groups + "/.jbroot-1",
                    "🔍 隐根路径包含 var 目录: " + groups + "/.jbroot-1/var",
                    "🔍 发现隐根设备路径: " + groups + "/.jbroot-2",
                    "🔍 发现隐根设备路径: " + groups + "/.jbroot-3", "✅ 从目录扫描新增 0 个应用"));
}

}  // namespace
}  // namespace sweepwright
