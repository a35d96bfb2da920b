// Which apps a scan finds by the workspace service.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/AppsDevice.h"
#include "platform/log/Log.h"

namespace sweepwright {
namespace {

using platform::Idiom;
using platform::LogCapture;
using test::AppsDevice;
using test::appsInNumber;
using test::FakeApp;
using test::identifiersOf;
using test::linesWith;
using test::raised;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Availability = platform::ApplicationWorkspace::Availability;

TEST(AppDiscovery, FiveAppsOfTheServiceSpareAPhoneTheWalk) {
    AppsDevice device;
    device.workspace.offer(appsInNumber(5));
    device.container("C1", "com.example.unlisted");
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    EXPECT_EQ(device.scanAll(manager).size(), 5U);
    EXPECT_THAT(
        log.lines(),
        ElementsAre("📱 当前设备类型: iPhone", "🔍 使用 allInstalledApplications 发现 5 个应用",
                    "✅ 成功提取 5 个应用信息", "📊 最终找到 5 个应用（设备: iPhone）"));
}

TEST(AppDiscovery, FourAppsOfTheServiceLetAPhoneWalk) {
    AppsDevice device;
    device.workspace.offer(appsInNumber(4));
    device.container("C1", "com.example.unlisted");
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    EXPECT_EQ(device.scanAll(manager).size(), 5U);
    EXPECT_THAT(
        log.lines(),
        ElementsAre("📱 当前设备类型: iPhone", "🔍 使用 allInstalledApplications 发现 4 个应用",
                    "✅ 成功提取 4 个应用信息",
                    "📂 补充扫描应用目录（设备类型: iPhone, 当前应用数: 4）",
                    "📂 扫描容器目录: /var/mobile/Containers/Data/Application, 发现 1 个容器",
                    "✅ 从目录扫描新增 1 个应用", "📊 最终找到 5 个应用（设备: iPhone）"));
}

TEST(AppDiscovery, APadAlwaysWalks) {
    AppsDevice device(Idiom::Pad);
    device.workspace.offer(appsInNumber(7));
    device.container("C1", "com.example.unlisted");
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    EXPECT_EQ(device.scanAll(manager).size(), 8U);
    EXPECT_THAT(
        log.lines(),
        ElementsAre("📱 当前设备类型: iPad", "🔍 使用 allInstalledApplications 发现 7 个应用",
                    "✅ 成功提取 7 个应用信息",
                    "📂 补充扫描应用目录（设备类型: iPad, 当前应用数: 7）",
                    "📂 扫描容器目录: /var/mobile/Containers/Data/Application, 发现 1 个容器",
                    "✅ 从目录扫描新增 1 个应用", "📊 最终找到 8 个应用（设备: iPad）"));
}

TEST(AppDiscovery, AMissingServiceLeavesTheWalk) {
    AppsDevice device;
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    EXPECT_THAT(device.scanAll(manager), IsEmpty());
    EXPECT_THAT(
        log.lines(),
        ElementsAre("📱 当前设备类型: iPhone", "⚠️ LSApplicationWorkspace 类不可用",
                    "📂 补充扫描应用目录（设备类型: iPhone, 当前应用数: 0）",
                    "📂 扫描容器目录: /var/mobile/Containers/Data/Application, 发现 0 个容器",
                    "✅ 从目录扫描新增 0 个应用", "📊 最终找到 0 个应用（设备: iPhone）"));
}

TEST(AppDiscovery, AServiceWithoutAnInstanceLeavesTheWalk) {
    AppsDevice device;
    device.workspace.offer(appsInNumber(6));
    device.workspace.offered = Availability::InstanceMissing;
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    EXPECT_THAT(device.scanAll(manager), IsEmpty());
    EXPECT_EQ(log.lines().at(1), "⚠️ 无法获取 LSApplicationWorkspace 实例");
    EXPECT_EQ(log.lines().at(2), "📂 补充扫描应用目录（设备类型: iPhone, 当前应用数: 0）");
}

TEST(AppDiscovery, TheOlderOperationIsAskedWhenTheNewerRaises) {
    AppsDevice device;
    device.workspace.offer({});
    device.workspace.installed = raised("no entitlement");
    device.workspace.all = appsInNumber(5);
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    EXPECT_EQ(device.scanAll(manager).size(), 5U);
    EXPECT_THAT(log.lines(),
                ElementsAre("📱 当前设备类型: iPhone",
                            "⚠️ allInstalledApplications 调用失败: no entitlement",
                            "🔍 使用 allApplications 发现 5 个应用", "✅ 成功提取 5 个应用信息",
                            "📊 最终找到 5 个应用（设备: iPhone）"));
}

TEST(AppDiscovery, TheOlderOperationIsAskedWhenTheNewerIsEmpty) {
    AppsDevice device;
    device.workspace.offer({});
    device.workspace.all = appsInNumber(5);
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    EXPECT_EQ(device.scanAll(manager).size(), 5U);
    EXPECT_EQ(log.lines().at(1), "🔍 使用 allInstalledApplications 发现 0 个应用");
    EXPECT_EQ(log.lines().at(2), "🔍 使用 allApplications 发现 5 个应用");
}

TEST(AppDiscovery, TheOlderOperationIsNotAskedWhenTheNewerFindsApps) {
    AppsDevice device;
    device.workspace.offer(appsInNumber(1));
    device.workspace.all = appsInNumber(5);
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_EQ(device.scanAll(manager).size(), 1U);
}

TEST(AppDiscovery, OperationsThatTheServiceLacksAreNotMentioned) {
    AppsDevice device;
    device.workspace.offered = Availability::Available;
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    EXPECT_THAT(device.scanAll(manager), IsEmpty());
    EXPECT_EQ(log.lines().at(1), "⚠️ 私有API未返回应用列表，可能是权限问题或非越狱设备");
    EXPECT_EQ(log.lines().at(2), "📂 补充扫描应用目录（设备类型: iPhone, 当前应用数: 0）");
}

TEST(AppDiscovery, BothOperationsRaisingIsToldInThatOrder) {
    AppsDevice device;
    device.workspace.offer({});
    device.workspace.installed = raised("first");
    device.workspace.all = raised("second");
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    EXPECT_THAT(device.scanAll(manager), IsEmpty());
    EXPECT_THAT(linesWith(log.lines(), "⚠️"),
                ElementsAre("⚠️ allInstalledApplications 调用失败: first",
                            "⚠️ allApplications 调用失败: second",
                            "⚠️ 私有API未返回应用列表，可能是权限问题或非越狱设备"));
}

TEST(AppDiscovery, ARecordHoldsWhatTheServiceTells) {
    AppsDevice device;
    const std::string data = device.container("C1", "com.example.a");
    device.tree.file(data + "/Library/Caches/a", 100);
    device.tree.file(data + "/tmp/b", 20);
    FakeApp app = FakeApp::named("com.example.a");
    app.name = "Example";
    app.bundlePath = "/var/containers/Bundle/Application/B1/Example.app";
    app.dataPath = data;
    app.icon = test::picture(7);
    device.workspace.offer({app});
    ThirdPartyAppCacheManager manager(device.services());
    const auto apps = device.scanAll(manager);
    ASSERT_EQ(apps.size(), 1U);
    EXPECT_EQ(apps[0].bundleIdentifier, "com.example.a");
    EXPECT_EQ(apps[0].appName, "Example");
    EXPECT_EQ(apps[0].bundlePath, "/var/containers/Bundle/Application/B1/Example.app");
    EXPECT_EQ(apps[0].dataPath, data);
    EXPECT_EQ(apps[0].appIconPath, std::nullopt);
    EXPECT_EQ(test::shadeOf(apps[0].appIcon), 7);
    EXPECT_FALSE(apps[0].isSystemApp);
    EXPECT_EQ(apps[0].cacheSize, 100U);
    EXPECT_EQ(apps[0].tmpSize, 20U);
    EXPECT_EQ(apps[0].totalSize, 120U);
}

TEST(AppDiscovery, WhatTheServiceDoesNotTellStaysEmpty) {
    AppsDevice device;
    device.tree.file("/var/mobile/Containers/Shared/AppGroup/.jbroot-1/var/tmp/t", 5);
    device.workspace.offer({FakeApp::named("com.example.a")});
    ThirdPartyAppCacheManager manager(device.services());
    const auto apps = device.scanAll(manager);
    ASSERT_EQ(apps.size(), 1U);
    EXPECT_EQ(apps[0].appName, std::nullopt);
    EXPECT_EQ(apps[0].bundlePath, std::nullopt);
    EXPECT_EQ(apps[0].dataPath, std::nullopt);
    EXPECT_EQ(apps[0].totalSize, 0U);  // without a data container not even hidden roots count
}

TEST(AppDiscovery, AProxyThatRaisesIsSkipped) {
    std::vector<FakeApp> apps(4, FakeApp::named("com.example.bad"));
    apps[0].identifier = raised("identifier");
    apps[1].name = raised("name");
    apps[2].bundlePath = raised("bundle");
    apps[3].dataPath = raised("data");
    apps.push_back(FakeApp::named("com.example.good"));
    AppsDevice device;
    device.workspace.offer(apps);
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    EXPECT_THAT(identifiersOf(device.scanAll(manager)), ElementsAre("com.example.good"));
    EXPECT_THAT(linesWith(log.lines(), "⚠️"),
                ElementsAre("⚠️ 提取应用信息失败: identifier", "⚠️ 提取应用信息失败: name",
                            "⚠️ 提取应用信息失败: bundle", "⚠️ 提取应用信息失败: data"));
    EXPECT_TRUE(log.contains("✅ 成功提取 1 个应用信息"));
}

TEST(AppDiscovery, AnAppWithoutIdentifierIsDropped) {
    AppsDevice device;
    device.workspace.offer({FakeApp{}, FakeApp::named("com.example.a")});
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    EXPECT_THAT(identifiersOf(device.scanAll(manager)), ElementsAre("com.example.a"));
    EXPECT_TRUE(log.contains("🔍 使用 allInstalledApplications 发现 2 个应用"));
    EXPECT_TRUE(log.contains("✅ 成功提取 1 个应用信息"));
}

TEST(AppDiscovery, ProxiesAreNotComparedAmongThemselves) {
    AppsDevice device;
    device.workspace.offer({FakeApp::named("com.example.a"), FakeApp::named("com.example.a")});
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_THAT(identifiersOf(device.scanAll(manager)),
                ElementsAre("com.example.a", "com.example.a"));
}

TEST(AppDiscovery, TheExtractOperationSizesItsRecord) {
    class Proxy final : public platform::ApplicationProxy {
      public:
        FakeApp::Text applicationIdentifier() override { return "com.example.a"; }
        FakeApp::Text localizedName() override { return std::nullopt; }
        FakeApp::Text bundlePath() override { return "/Applications/A.app"; }
        FakeApp::Text dataContainerPath() override { return AppsDevice::containerPath("C1"); }
        FakeApp::Text iconDataForVariant(std::int32_t /*variant*/) override { return std::nullopt; }
        platform::Result<std::vector<SizedIcon>> iconsOfAllSizes() override {
            return std::vector<SizedIcon>();
        }
    } proxy;
    AppsDevice device;
    device.tree.file(AppsDevice::containerPath("C1") + "/tmp/x", 9);
    ThirdPartyAppCacheManager manager(device.services());
    const auto info = manager.extractAppInfoFromProxy(proxy);
    ASSERT_TRUE(info.has_value());
    EXPECT_EQ(info->totalSize, 9U);
    EXPECT_TRUE(info->isSystemApp);
}

TEST(AppDiscovery, AnIdentifierIsInstalledByTheServiceAContainerOrABundle) {
    AppsDevice device;
    device.container("C1", "com.example.container");
    device.bundle("B1", "X",
                  platform::PropertyList(platform::PropertyList::Dictionary{
                      {"CFBundleIdentifier", "com.example.bundle"}}));
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_THAT(manager.installedIdentifiers(),
                ElementsAre("com.example.bundle", "com.example.container"));
    EXPECT_TRUE(manager.isInstalled("com.example.container"));
    EXPECT_TRUE(manager.isInstalled("com.example.bundle"));
    EXPECT_FALSE(manager.isInstalled("com.example.service"));
    EXPECT_FALSE(manager.isInstalled("com.example"));
    device.workspace.offer({FakeApp::named("com.example.service")});
    EXPECT_TRUE(manager.isInstalled("com.example.service"));
    EXPECT_TRUE(manager.isInstalled("com.example.container")) << "which the service leaves out";
}

TEST(AppDiscovery, SystemAppsAreThoseOfThreeMakersAndOfTheSystemFolder) {
    const auto isSystem = ThirdPartyAppCacheManager::isSystemApp;
    const std::string ordinary = "/var/containers/Bundle/Application/B1/A.app";
    EXPECT_TRUE(isSystem("com.apple.mobilesafari", ordinary));
    EXPECT_TRUE(isSystem("com.facebook.Facebook", ordinary));
    EXPECT_TRUE(isSystem("com.twitter.client", std::nullopt));
    EXPECT_FALSE(isSystem("com.example.app", ordinary));
    EXPECT_FALSE(isSystem("com.example.app", std::nullopt));
    EXPECT_TRUE(isSystem("com.example.app", "/Applications/A.app"));
    EXPECT_TRUE(isSystem("com.example.app", "/var/jb/Applications/A.app"));
    EXPECT_FALSE(isSystem("com.example.app", "/MyApplications/A.app"));
    EXPECT_FALSE(isSystem("com.example.app", "/Applications"));
    EXPECT_FALSE(isSystem("com.apple", ordinary));
    EXPECT_FALSE(isSystem("com.applesauce.app", ordinary));
    EXPECT_FALSE(isSystem("org.com.apple.x", ordinary));
    EXPECT_FALSE(isSystem("COM.APPLE.x", ordinary));
    EXPECT_FALSE(isSystem(std::nullopt, std::nullopt));
}

}  // namespace
}  // namespace sweepwright
