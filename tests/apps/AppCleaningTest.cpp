// Emptying one app's caches.
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/AppsDevice.h"
#include "platform/log/Log.h"
#include "support/FaultyFileManager.h"

namespace sweepwright {
namespace {

using platform::LogCapture;
using test::AppsDevice;
using test::FakeApp;
using test::FaultyFileManager;
using test::kApp;
using test::kRoot;
using test::linesWith;
using test::Operation;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Pair;

TEST(AppCleaning, ThreeFoldersAreEmptiedAndStay) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    device.tree.file(data + "/Library/Caches/deep/.hidden/a", 1);
    device.tree.file(data + "/Library/Caches/.b", 10);
    device.tree.file(data + "/tmp/c", 100);
    device.tree.file(data + "/Library/WebKit/d", 1000);
    device.tree.file(data + "/Documents/e", 7);
    device.tree.file(data + "/Library/Preferences/f.plist", 7);
    device.tree.file(data + "/Library/Application Support/g", 7);
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    const auto outcome = device.clean(manager, kApp);
    EXPECT_TRUE(outcome.success);
    EXPECT_FALSE(outcome.error.has_value());
    EXPECT_EQ(outcome.bytes, 1111U);
    for (const char* folder : {"/Library/Caches", "/tmp", "/Library/WebKit"}) {
        EXPECT_TRUE(device.tree.exists(data + folder));
        EXPECT_THAT(*device.files.contentsOfDirectory(data + folder), IsEmpty()) << folder;
    }
    EXPECT_TRUE(device.tree.exists(data + "/Documents/e"));
    EXPECT_TRUE(device.tree.exists(data + "/Library/Preferences/f.plist"));
    EXPECT_TRUE(device.tree.exists(data + "/Library/Application Support/g"));
    EXPECT_THAT(log.lines(), ElementsAre("🧹 清理应用: com.example.a 数据路径: " + data,
                                         "✅ 清理完成: com.example.a 清理了 1111 字节"));
}

TEST(AppCleaning, FoldersAreEmptiedInOrder) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    const std::string root = kRoot;
    for (const std::string& folder :
         {data + "/tmp", data + "/Library/WebKit", data + "/Library/Caches", root + "/var/tmp",
          root + "/var/mobile/Library/Caches"})
        device.tree.file(folder + "/x", 1);
    FaultyFileManager watching(device.files, {Operation::RemoveFileAt});
    std::vector<std::string> removed;
    watching.before([&](Operation, const std::string& path) { removed.push_back(path); });
    DeviceEraser eraser(watching, test::noCommands(), platform::WebStorage::ofHost());
    ThirdPartyAppCacheManager manager(device.services(watching, eraser));
    device.clean(manager, kApp);
    EXPECT_THAT(removed,
                ElementsAre(data + "/Library/Caches/x", data + "/tmp/x", data + "/Library/WebKit/x",
                            root + "/var/mobile/Library/Caches/x", root + "/var/tmp/x"));
}

TEST(AppCleaning, EveryMatchingFolderOfEveryHiddenRootIsEmptied) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    const std::string root = kRoot;
    device.tree.file(root + "/var/mobile/Library/Caches/x", 10);
    device.tree.file(root + "/var/tmp/x", 20);
    device.tree.file(root + "/var/mobile/Documents/x", 1);
    device.tree.file(root + "/com.other.tool/tmp/x", 1);
    device.tree.file(root + "/com.example.a-77/mobile/Library/Caches/x", 300);
    device.tree.file(root + "/com.example.a-77/tmp/x", 400);
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    EXPECT_EQ(device.clean(manager, kApp).bytes, 730U);
    EXPECT_TRUE(device.tree.exists(root + "/com.other.tool/tmp/x"));
    EXPECT_TRUE(device.tree.exists(root + "/var/mobile/Documents/x"));
    EXPECT_FALSE(device.tree.exists(root + "/var/tmp/x"));
    EXPECT_THAT(
        log.lines(),
        ElementsAre("🧹 清理应用: com.example.a 数据路径: " + data,
                    "✅ 清理隐根设备缓存: " + root +
                        "/com.example.a-77/mobile/Library/Caches, 大小: 300 字节",
                    "✅ 清理隐根设备临时文件: " + root + "/com.example.a-77/tmp, 大小: 400 字节",
                    "✅ 清理隐根设备缓存: " + root + "/var/mobile/Library/Caches, 大小: 10 字节",
                    "✅ 清理隐根设备临时文件: " + root + "/var/tmp, 大小: 20 字节",
                    "✅ 清理完成: com.example.a 清理了 730 字节"));
}

TEST(AppCleaning, ACleanIsRecordedAndAnnounced) {
    AppsDevice device;
    device.tree.file(device.container("C1", kApp) + "/tmp/x", 100);
    ThirdPartyAppCacheManager manager(device.services());
    device.scanAll(manager);
    ASSERT_EQ(manager.getInstalledAppCount(), 1U);
    ASSERT_TRUE(device.defaults.set("totalCleanedBytes", std::uint64_t{5}).has_value());
    ASSERT_TRUE(device.defaults.set("cleanCount", 2).has_value());
    int posts = 0;
    const auto subscription =
        device.notifications.observe("CleanHistoryUpdated", [&](const auto& /*info*/) {
            ++posts;
            EXPECT_EQ(device.history.getAllCleanHistory().size(), 1U);  // written before
            EXPECT_EQ(device.statistics.totals().cleanCount, 3);
        });
    device.clean(manager, kApp);
    EXPECT_EQ(posts, 1);
    EXPECT_EQ(device.defaults.unsignedInteger("totalCleanedBytes"), 105U);
    EXPECT_EQ(device.defaults.integer("cleanCount"), 3);
    EXPECT_THAT(device.defaults.string("lastCleanDate").value_or(""),
                MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}"));
    const auto history = device.history.getAllCleanHistory();
    ASSERT_EQ(history.size(), 1U);
    EXPECT_EQ(static_cast<int>(history[0].cleanType), 10);
    EXPECT_EQ(history[0].cleanTypeName, "第三方应用: com.example.a");
    EXPECT_EQ(history[0].cleanedBytes, 100U);
    EXPECT_EQ(manager.getInstalledAppCount(), 0U);  // the next scan measures afresh
}

TEST(AppCleaning, AnIdentifierWithoutDotIsRecordedUnderACommonName) {
    AppsDevice device;
    device.tree.file(AppsDevice::containerPath("11-22") + "/tmp/x", 100);
    ThirdPartyAppCacheManager manager(device.services());
    device.clean(manager, "11-22");
    ASSERT_EQ(device.history.getAllCleanHistory().size(), 1U);
    EXPECT_EQ(device.history.getAllCleanHistory()[0].cleanTypeName, "第三方应用: 第三方应用缓存");
}

TEST(AppCleaning, ACleanThatFreesNothingLeavesNoTrace) {
    AppsDevice device;
    device.tree.file(device.container("C1", kApp) + "/Documents/x", 100);
    device.tree.folder(AppsDevice::containerPath("C1") + "/tmp");
    ThirdPartyAppCacheManager manager(device.services());
    device.scanAll(manager);
    int posts = 0;
    const auto subscription =
        device.notifications.observe("CleanHistoryUpdated", [&](const auto& /*info*/) { ++posts; });
    const auto outcome = device.clean(manager, kApp);
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.bytes, 0U);
    EXPECT_EQ(posts, 0);
    EXPECT_THAT(device.history.getAllCleanHistory(), IsEmpty());
    EXPECT_EQ(device.statistics.totals().cleanCount, 0);
    EXPECT_FALSE(device.tree.exists(device.device.userDefaultsFile()));
    EXPECT_EQ(manager.getInstalledAppCount(), 1U);
}

TEST(AppCleaning, ProgressRunsFromZeroToOneOncePerFolder) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    for (const char* folder : {"/Library/Caches", "/tmp", "/Library/WebKit"}) {
        device.tree.file(data + folder + "/a", 1);
        device.tree.file(data + folder + "/b/c/d", 1);
    }
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_THAT(device.clean(manager, kApp).progress,
                ElementsAre(Pair(kApp, 0.5), Pair(kApp, 1.0), Pair(kApp, 0.5), Pair(kApp, 1.0),
                            Pair(kApp, 0.5), Pair(kApp, 1.0)));
}

TEST(AppCleaning, ProgressOfAnyNumberOfEntriesEndsAtOne) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    for (int i = 0; i < 200; ++i)
        device.tree.file(data + "/tmp/" + std::to_string(i), 1);
    ThirdPartyAppCacheManager manager(device.services());
    const auto progress = device.clean(manager, kApp).progress;
    ASSERT_GE(progress.size(), 2U);
    EXPECT_EQ(progress.front().second, 1.0 / 200);
    EXPECT_EQ(progress.back().second, 1.0);
    EXPECT_TRUE(std::ranges::is_sorted(progress));
}

TEST(AppCleaning, AnEmptyFolderIsEmptiedWithoutProgress) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    device.tree.folder(data + "/Library/Caches");
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_EQ(manager.sizeOfDirectoryAtPath(data + "/Library/Caches"), 0U);
    bool told = false;
    EXPECT_TRUE(manager.removeContentsOfDirectory(
        data + "/Library/Caches", [&](const std::string&, double) { told = true; }, kApp));
    device.mainQueue.drain();
    EXPECT_FALSE(told);
    EXPECT_THAT(device.clean(manager, kApp).progress, IsEmpty());
}

TEST(AppCleaning, TheServiceSaysWhereAnAppLies) {
    AppsDevice device;
    device.tree.file(device.container("C1", kApp) + "/tmp/x", 5);
    device.tree.file(AppsDevice::containerPath("C2") + "/tmp/x", 7);
    FakeApp app;
    app.identifier = kApp;
    app.dataPath = AppsDevice::containerPath("C2");
    device.workspace.offer({FakeApp{}, app});
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_EQ(device.clean(manager, kApp).bytes, 7U);
    EXPECT_TRUE(device.tree.exists(AppsDevice::containerPath("C1") + "/tmp/x"));
}

TEST(AppCleaning, AContainerNamedAfterItsAppIsTheFallback) {
    AppsDevice device;
    device.tree.file(AppsDevice::containerPath(kApp) + "/tmp/x", 5);
    device.workspace.offer({});
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    EXPECT_EQ(device.clean(manager, kApp).bytes, 5U);
    EXPECT_EQ(log.lines().at(0),
              "🧹 清理应用: com.example.a 数据路径: "
              "/var/mobile/Containers/Data/Application/com.example.a");
    const auto absent = device.clean(manager, "com.example.absent");
    EXPECT_TRUE(absent.success);
    EXPECT_EQ(absent.bytes, 0U);
}

TEST(AppCleaning, ACleanReturnsAtOnceAndCompletesOnTheMainQueue) {
    AppsDevice device;
    device.tree.file(device.container("C1", kApp) + "/tmp/x", 1);
    ThirdPartyAppCacheManager manager(device.services());
    std::vector<std::thread::id> threads;
    bool done = false;
    manager.cleanCacheForApp(
        kApp, [&](const std::string&, double) { threads.push_back(std::this_thread::get_id()); },
        [&](bool, std::uint64_t, const auto& /*error*/) {
            threads.push_back(std::this_thread::get_id());
            done = true;
        });
    EXPECT_THAT(threads, IsEmpty());
    device.mainQueue.runUntil([&] { return done; });
    EXPECT_THAT(threads, ElementsAre(std::this_thread::get_id(), std::this_thread::get_id()));
}

TEST(AppCleaning, NeitherProgressNorCompletionIsNeeded) {
    AppsDevice device;
    device.tree.file(device.container("C1", kApp) + "/tmp/x", 1);
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    manager.cleanCacheForApp(kApp, {}, {});
    manager.cleanCacheForApps({kApp}, {}, {});
    manager.cleanAllThirdPartyAppCaches({}, {});
    device.mainQueue.runUntil([&] { return log.contains("📊 白名单过滤后，待清理应用数: 1 / 1"); });
    device.cleanBatch(manager, {kApp});
    EXPECT_FALSE(device.tree.exists(AppsDevice::containerPath("C1") + "/tmp/x"));
}

TEST(AppCleaning, StatisticsAddUp) {
    AppsDevice device;
    ThirdPartyAppCacheManager manager(device.services());
    manager.saveCleanStatistics(std::uint64_t{1} << 63U);
    manager.saveCleanStatistics(5);
    EXPECT_EQ(device.statistics.totals().totalCleanedBytes, (std::uint64_t{1} << 63U) + 5);
    EXPECT_EQ(device.statistics.totals().cleanCount, 2);
}

TEST(AppCleaning, TheDepthLimitIsToldOnceAndDoesNotLimitTheRemoval) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    std::string deep = data + "/tmp";
    for (int i = 0; i < 100; ++i)
        deep += "/d";
    device.tree.file(deep + "/beyond", 1000);
    device.tree.file(data + "/tmp/x", 5);
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    EXPECT_EQ(device.clean(manager, kApp).bytes, 5U);
    EXPECT_THAT(linesWith(log.lines(), "⚠️"), ElementsAre("⚠️ 达到最大递归深度，跳过路径: " + deep));
    EXPECT_THAT(*device.files.contentsOfDirectory(data + "/tmp"), IsEmpty());
}

}  // namespace
}  // namespace sweepwright
