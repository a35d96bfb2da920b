// The list that a scan hands out and keeps, and how it is asked for.
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/AppsDevice.h"
#include "platform/log/Log.h"

namespace sweepwright {
namespace {

using platform::LogCapture;
using test::AppsDevice;
using test::appsInNumber;
using test::FakeApp;
using test::identifiersOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

TEST(AppList, LargestFirstAndTheListIsKept) {
    AppsDevice device;
    std::vector<FakeApp> apps;
    for (const unsigned bytes : {10U, 300U, 20U, 1000U}) {
        const std::string identifier =
            (bytes == 300 ? "com.apple.n" : "com.example.n") + std::to_string(bytes);
        FakeApp app = FakeApp::named(identifier);
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

TEST(AppList, EveryScanReplacesTheKeptList) {
    AppsDevice device;
    device.workspace.offer(appsInNumber(6));
    ThirdPartyAppCacheManager manager(device.services());
    device.scanAll(manager);
    device.workspace.offer(appsInNumber(5));
    device.scanAll(manager);
    EXPECT_EQ(manager.getInstalledAppCount(), 5U);
}

TEST(AppList, EveryInvalidationDropsTheKeptList) {
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

TEST(AppList, TheCompletionRunsOnTheMainQueue) {
    AppsDevice device;
    ThirdPartyAppCacheManager manager(device.services());
    std::optional<std::thread::id> thread;
    manager.scanAllAppsWithCompletion(
        [&](const auto& /*apps*/) { thread = std::this_thread::get_id(); });
    EXPECT_FALSE(thread);
    device.mainQueue.runUntil([&] { return thread.has_value(); });
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST(AppList, AScanNeedsNoCompletion) {
    AppsDevice device;
    device.workspace.offer(appsInNumber(5));
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    manager.scanThirdPartyAppsWithCompletion({});
    manager.scanAllAppsWithCompletion({});
    device.mainQueue.runUntil([&] { return log.contains("✅ 找到 5 个第三方应用"); });
    EXPECT_EQ(device.scanAll(manager).size(), 5U);
}

TEST(AppList, ScansRunSideBySide) {
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

TEST(AppList, AScanTellsHowFarItIs) {
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

TEST(AppList, AccessIsWhetherTheContainersAreInSight) {
    AppsDevice device;
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_FALSE(manager.hasPrivateAPIAccess());
    device.tree.folder("/var/mobile/Containers/Data/Application");
    EXPECT_TRUE(manager.hasPrivateAPIAccess());
}

TEST(AppList, ARecordDescribesItself) {
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
