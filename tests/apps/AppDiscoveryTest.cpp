// Which apps a scan finds by the workspace service.
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/AppsDevice.h"
#include "platform/Log.h"

namespace sweepwright {
namespace {

using platform::Idiom;
using platform::LogCapture;
using test::AppsDevice;
using test::FakeApp;
using test::identifiersOf;
using test::linesWith;
using test::raised;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using Availability = platform::ApplicationWorkspace::Availability;

FakeApp appNamed(const std::string& identifier) {
    FakeApp app;
    app.identifier = identifier;
    return app;
}

std::vector<FakeApp> appsInNumber(std::size_t count) {
    std::vector<FakeApp> apps;
    for (std::size_t i = 0; i < count; ++i)
        apps.push_back(appNamed("com.example.app" + std::to_string(i)));
    return apps;
}

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
    FakeApp app = appNamed("com.example.a");
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
    device.workspace.offer({appNamed("com.example.a")});
    ThirdPartyAppCacheManager manager(device.services());
    const auto apps = device.scanAll(manager);
    ASSERT_EQ(apps.size(), 1U);
    EXPECT_EQ(apps[0].appName, std::nullopt);
    EXPECT_EQ(apps[0].bundlePath, std::nullopt);
    EXPECT_EQ(apps[0].dataPath, std::nullopt);
    EXPECT_EQ(apps[0].totalSize, 0U);  // without a data container not even hidden roots count
}

TEST(AppDiscovery, AProxyThatRaisesIsSkipped) {
    std::vector<FakeApp> apps(4, appNamed("com.example.bad"));
    apps[0].identifier = raised("identifier");
    apps[1].name = raised("name");
    apps[2].bundlePath = raised("bundle");
    apps[3].dataPath = raised("data");
    apps.push_back(appNamed("com.example.good"));
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
    device.workspace.offer({FakeApp{}, appNamed("com.example.a")});
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    EXPECT_THAT(identifiersOf(device.scanAll(manager)), ElementsAre("com.example.a"));
    EXPECT_TRUE(log.contains("🔍 使用 allInstalledApplications 发现 2 个应用"));
    EXPECT_TRUE(log.contains("✅ 成功提取 1 个应用信息"));
}

TEST(AppDiscovery, ProxiesAreNotComparedAmongThemselves) {
    AppsDevice device;
    device.workspace.offer({appNamed("com.example.a"), appNamed("com.example.a")});
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

TEST(AppDiscovery, LargestFirstAndTheListIsKept) {
    AppsDevice device;
    std::vector<FakeApp> apps;
    for (const unsigned bytes : {10U, 300U, 20U, 1000U}) {
        const std::string identifier =
            (bytes == 300 ? "com.apple.n" : "com.example.n") + std::to_string(bytes);
        FakeApp app = appNamed(identifier);
        app.dataPath = device.container("C" + std::to_string(bytes), identifier);
        device.tree.file(AppsDevice::containerPath("C" + std::to_string(bytes)) + "/tmp/x", bytes);
        apps.push_back(app);
    }
    device.workspace.offer(apps);
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_EQ(manager.getInstalledAppCount(), 0U);
    EXPECT_EQ(manager.getThirdPartyAppCount(), 0U);
    EXPECT_EQ(manager.getTotalThirdPartyAppCacheSize(), 0U);
    EXPECT_THAT(
        identifiersOf(device.scanAll(manager)),
        ElementsAre("com.example.n1000", "com.apple.n300", "com.example.n20", "com.example.n10"));
    EXPECT_EQ(manager.getInstalledAppCount(), 4U);
    EXPECT_EQ(manager.getThirdPartyAppCount(), 3U);
    EXPECT_EQ(manager.getTotalThirdPartyAppCacheSize(), 1030U);

    const LogCapture log;
    EXPECT_THAT(identifiersOf(device.scanThirdParty(manager)),
                ElementsAre("com.example.n1000", "com.example.n20", "com.example.n10"));
    EXPECT_EQ(log.lines().back(), "✅ 找到 3 个第三方应用");
    EXPECT_EQ(manager.getInstalledAppCount(), 4U);  // the kept list is the full one
}

TEST(AppDiscovery, EveryScanReplacesTheKeptList) {
    AppsDevice device;
    device.workspace.offer(appsInNumber(6));
    ThirdPartyAppCacheManager manager(device.services());
    device.scanAll(manager);
    device.workspace.offer(appsInNumber(5));
    device.scanAll(manager);
    EXPECT_EQ(manager.getInstalledAppCount(), 5U);
}

TEST(AppDiscovery, EveryInvalidationDropsTheKeptList) {
    using Manager = ThirdPartyAppCacheManager;
    const std::vector<std::function<void(Manager&)>> invalidations = {
        [](Manager& manager) { manager.refreshAppListCache(); },
        [](Manager& manager) { manager.invalidateAllCache(); },
        [](Manager& manager) { manager.invalidateCacheForApp("com.example.other"); }};
    for (const auto& invalidate : invalidations) {
        AppsDevice device;
        device.workspace.offer(appsInNumber(5));
        Manager manager(device.services());
        device.scanAll(manager);
        ASSERT_EQ(manager.getInstalledAppCount(), 5U);
        invalidate(manager);
        EXPECT_EQ(manager.getInstalledAppCount(), 0U);
        EXPECT_EQ(manager.getThirdPartyAppCount(), 0U);
    }
}

TEST(AppDiscovery, TheCompletionRunsOnTheMainQueue) {
    AppsDevice device;
    ThirdPartyAppCacheManager manager(device.services());
    std::optional<std::thread::id> thread;
    manager.scanAllAppsWithCompletion(
        [&](const auto& /*apps*/) { thread = std::this_thread::get_id(); });
    EXPECT_FALSE(thread);
    device.mainQueue.runUntil([&] { return thread.has_value(); });
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST(AppDiscovery, AScanNeedsNoCompletion) {
    AppsDevice device;
    device.workspace.offer(appsInNumber(5));
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    manager.scanThirdPartyAppsWithCompletion({});
    manager.scanAllAppsWithCompletion({});
    device.mainQueue.runUntil([&] { return log.contains("✅ 找到 5 个第三方应用"); });
    EXPECT_EQ(device.scanAll(manager).size(), 5U);
}

TEST(AppDiscovery, ScansRunSideBySide) {
    AppsDevice device;
    device.workspace.offer(appsInNumber(5));
    ThirdPartyAppCacheManager manager(device.services());
    int finished = 0;
    for (int i = 0; i < 4; ++i) {
        manager.scanAllAppsWithCompletion([&](const auto& apps) {
            EXPECT_EQ(apps.size(), 5U);
            ++finished;
        });
    }
    device.mainQueue.runUntil([&] { return finished == 4; });
    EXPECT_EQ(manager.getInstalledAppCount(), 5U);
}

TEST(AppDiscovery, AScanTellsHowFarItIs) {
    AppsDevice device;
    device.workspace.offer(appsInNumber(5));
    ThirdPartyAppCacheManager manager(device.services());
    std::vector<double> fractions;
    bool done = false;
    manager.scanAllAppsWithCompletion([&](const auto& /*apps*/) { done = true; },
                                      [&](const std::string& name, double fraction) {
                                          EXPECT_TRUE(name.starts_with("com.example.app")) << name;
                                          EXPECT_FALSE(done);
                                          fractions.push_back(fraction);
                                      });
    device.mainQueue.runUntil([&] { return done; });
    ASSERT_THAT(fractions, Not(IsEmpty()));
    for (const double fraction : fractions) {
        EXPECT_GT(fraction, 0.0);
        EXPECT_LE(fraction, 1.0);
    }
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

TEST(AppDiscovery, AccessIsWhetherTheContainersAreInSight) {
    AppsDevice device;
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_FALSE(manager.hasPrivateAPIAccess());
    device.tree.folder("/var/mobile/Containers/Data/Application");
    EXPECT_TRUE(manager.hasPrivateAPIAccess());
}

TEST(AppDiscovery, ARecordDescribesItself) {
    AppCacheInfo info;
    info.appName = "Example";
    info.bundleIdentifier = "com.example.a";
    info.cacheSize = 12;
    const std::string text = info.description();
    EXPECT_TRUE(text.starts_with("<AppCacheInfo: 0x")) << text;
    EXPECT_TRUE(text.ends_with("> appName=Example, bundleID=com.example.a, cacheSize=12")) << text;
}

}  // namespace
}  // namespace sweepwright
