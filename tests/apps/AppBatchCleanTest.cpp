// Emptying the caches of several apps, and of all.
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/AppsDevice.h"
#include "platform/log/Log.h"
#include "support/FaultyFileManager.h"

namespace sweepwright {
namespace {

using platform::LogCapture;
using test::AppsDevice;
using test::FaultyFileManager;
using test::linesWith;
using test::Operation;
using ::testing::_;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

constexpr auto kA = "com.example.a";
constexpr auto kB = "com.example.b";

/// Two apps of 100 and 20 bytes.
void installTwo(AppsDevice& device) {
    device.tree.file(device.container("CA", kA) + "/Library/Caches/x", 100);
    device.tree.file(device.container("CB", kB) + "/tmp/x", 20);
}

std::vector<std::pair<std::string, std::uint64_t>> historyOf(const AppsDevice& device) {
    std::vector<std::pair<std::string, std::uint64_t>> entries;
    for (const auto& item : device.history.getAllCleanHistory()) {
        EXPECT_EQ(item.cleanType, CleanType::ThirdPartyApps);
        entries.emplace_back(item.cleanTypeName, item.cleanedBytes);
    }
    return entries;
}

TEST(AppBatchClean, TwoAppsYieldThreeEntriesAndThreeCounts) {
    AppsDevice device;
    installTwo(device);
    ThirdPartyAppCacheManager manager(device.services());
    int posts = 0;
    const auto subscription =
        device.notifications.observe("CleanHistoryUpdated", [&](const auto& /*info*/) { ++posts; });
    const auto outcome = device.cleanBatch(manager, {kA, kB});
    EXPECT_TRUE(outcome.success);
    EXPECT_FALSE(outcome.error.has_value());
    EXPECT_EQ(outcome.bytes, 120U);
    EXPECT_EQ(posts, 3);
    EXPECT_THAT(historyOf(device), ElementsAre(Pair("第三方应用缓存（全部）", 120),
                                               Pair("第三方应用: com.example.b", 20),
                                               Pair("第三方应用: com.example.a", 100)));
    EXPECT_EQ(device.statistics.totals().totalCleanedBytes, 240U);
    EXPECT_EQ(device.statistics.totals().cleanCount, 3);
}

TEST(AppBatchClean, AppsAreCleanedInTheOrderGiven) {
    AppsDevice device;
    installTwo(device);
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    device.cleanBatch(manager, {kB, kA});
    EXPECT_THAT(
        log.lines(),
        ElementsAre("🧹 清理应用: com.example.b 数据路径: " + AppsDevice::containerPath("CB"),
                    "✅ 清理完成: com.example.b 清理了 20 字节",
                    "🧹 清理应用: com.example.a 数据路径: " + AppsDevice::containerPath("CA"),
                    "✅ 清理完成: com.example.a 清理了 100 字节"));
}

TEST(AppBatchClean, ProgressIsMappedIntoEachAppsShare) {
    AppsDevice device;
    const std::string a = device.container("CA", kA);
    device.tree.file(a + "/Library/Caches/1", 1);
    device.tree.file(a + "/Library/Caches/2", 1);
    device.tree.file(a + "/tmp/1", 1);
    const std::string b = device.container("CB", kB);
    device.tree.file(b + "/tmp/1", 1);
    device.tree.file(b + "/tmp/2", 1);
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_THAT(
        device.cleanBatch(manager, {kA, kB}).progress,
        ElementsAre(Pair(kA, 0.25), Pair(kA, 0.5), Pair(kA, 0.5), Pair(kB, 0.75), Pair(kB, 1.0)));
}

TEST(AppBatchClean, AnEmptyBatchCompletesWithNothing) {
    AppsDevice device;
    ThirdPartyAppCacheManager manager(device.services());
    const auto outcome = device.cleanBatch(manager, {});
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.bytes, 0U);
    EXPECT_THAT(historyOf(device), IsEmpty());
    EXPECT_EQ(device.statistics.totals().cleanCount, 0);
}

TEST(AppBatchClean, ABatchThatFreesNothingIsNotRecorded) {
    AppsDevice device;
    device.container("CA", kA);
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_TRUE(device.cleanBatch(manager, {kA, kB}).success);
    EXPECT_THAT(historyOf(device), IsEmpty());
}

TEST(AppBatchClean, EveryAppIsForgottenEvenIfNothingWasFreed) {
    AppsDevice device;
    device.container("CA", kA);
    device.container("CB", kB);
    ThirdPartyAppCacheManager manager(device.services());
    int known = 0;
    const auto ask = [&](const char* identifier) {
        manager.getCacheInfoForApp(identifier, [&](const auto& info) { known += info ? 1 : 0; });
    };
    ask(kA);
    ask(kB);
    device.mainQueue.runUntil([&] { return known == 2; });
    device.scanAll(manager);
    device.cleanBatch(manager, {kA, kB});
    EXPECT_EQ(manager.getInstalledAppCount(), 0U);
    ask(kA);
    ask(kB);
    EXPECT_EQ(known, 2);  // not at once: they are looked up anew
    device.mainQueue.runUntil([&] { return known == 4; });
}

TEST(AppBatchClean, AnAppThatFailsDoesNotEndTheBatch) {
    AppsDevice device;
    installTwo(device);
    ThirdPartyAppCacheManager manager(device.services());
    const auto outcome = device.cleanBatch(manager, {"../../x", kA, "", kB});
    EXPECT_TRUE(outcome.success);
    EXPECT_FALSE(outcome.error.has_value());
    EXPECT_EQ(outcome.bytes, 120U);
    EXPECT_EQ(historyOf(device).size(), 3U);
}

TEST(AppBatchClean, WhatAnInterruptedAppFreedCountsInTheSumAlone) {
    AppsDevice device;
    installTwo(device);
    FaultyFileManager files(device.files, {Operation::Attributes});
    files.before([](Operation, const std::string& path) {
        if (path == AppsDevice::containerPath("CA") + "/tmp") throw std::runtime_error("boom");
    });
    ThirdPartyAppCacheManager manager(device.services(files, device.deviceEraser));
    const auto outcome = device.cleanBatch(manager, {kA, kB});
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.bytes, 120U);
    EXPECT_THAT(historyOf(device), ElementsAre(Pair("第三方应用缓存（全部）", 120),
                                               Pair("第三方应用: com.example.b", 20)));
}

// As when the app's window is closed in the middle of it.
TEST(AppBatchClean, EndsThoughNothingRunsOnTheMainQueueAnyMore) {
    AppsDevice device;
    installTwo(device);
    {
        ThirdPartyAppCacheManager manager(device.services());
        manager.cleanCacheForApps({kA, kB}, {}, [](bool, std::uint64_t, const auto&) { FAIL(); });
    }
    EXPECT_EQ(device.statistics.totals().totalCleanedBytes, 240U);
    EXPECT_THAT(historyOf(device),
                ElementsAre(Pair("第三方应用缓存（全部）", 120), Pair(_, 20), Pair(_, 100)));
}

TEST(AppBatchClean, ManyAppsDoNotStarveTheQueue) {
    AppsDevice device;
    std::vector<std::string> identifiers;
    for (int i = 0; i < 40; ++i) {
        identifiers.push_back("com.example.n" + std::to_string(i));
        device.tree.file(device.container("C" + std::to_string(i), identifiers.back()) + "/tmp/x",
                         1);
    }
    ThirdPartyAppCacheManager manager(device.services());
    int finished = 0;
    std::uint64_t freed = 0;
    for (int batch = 0; batch < 4; ++batch) {
        manager.cleanCacheForApps(identifiers, {},
                                  [&](bool, std::uint64_t bytes, const auto& /*error*/) {
                                      freed += bytes;
                                      ++finished;
                                  });
    }
    device.mainQueue.runUntil([&] { return finished == 4; });
    EXPECT_GE(freed, 40U);
    for (int i = 0; i < 40; ++i)
        EXPECT_FALSE(
            device.tree.exists(AppsDevice::containerPath("C" + std::to_string(i)) + "/tmp/x"));
}

TEST(AppCleanAll, WhitelistedAndSystemAppsAreSpared) {
    AppsDevice device;
    installTwo(device);
    device.tree.file(device.container("CC", "com.example.c") + "/tmp/x", 3);
    device.tree.file(device.container("CS", "com.apple.s") + "/tmp/x", 999);
    ASSERT_TRUE(device.appWhitelist.addAppToWhitelist(kB).has_value());
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    const auto outcome = device.cleanAll(manager);
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.bytes, 103U);
    EXPECT_TRUE(device.tree.exists(AppsDevice::containerPath("CB") + "/tmp/x"));
    EXPECT_TRUE(device.tree.exists(AppsDevice::containerPath("CS") + "/tmp/x"));
    EXPECT_FALSE(device.tree.exists(AppsDevice::containerPath("CA") + "/Library/Caches/x"));
    EXPECT_THAT(linesWith(log.lines(), "✅ 跳过"),
                ElementsAre("✅ 跳过白名单应用: com.example.b (com.example.b)"));
    EXPECT_TRUE(log.contains("✅ 找到 3 个第三方应用"));
    EXPECT_TRUE(log.contains("📊 白名单过滤后，待清理应用数: 2 / 3"));
    EXPECT_THAT(linesWith(log.lines(), "🧹 清理应用: com.example.b"), IsEmpty());
    // Largest first, as the scan found them.
    EXPECT_THAT(historyOf(device), ElementsAre(Pair("第三方应用缓存（全部）", 103),
                                               Pair("第三方应用: com.example.c", 3),
                                               Pair("第三方应用: com.example.a", 100)));
}

TEST(AppCleanAll, WithEveryAppWhitelistedTheBatchIsEmpty) {
    AppsDevice device;
    installTwo(device);
    ASSERT_TRUE(device.appWhitelist.addAppToWhitelist(kA).has_value());
    ASSERT_TRUE(device.appWhitelist.addAppToWhitelist(kB).has_value());
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    const auto outcome = device.cleanAll(manager);
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.bytes, 0U);
    EXPECT_EQ(log.lines().back(), "📊 白名单过滤后，待清理应用数: 0 / 2");
    EXPECT_THAT(historyOf(device), IsEmpty());
}

TEST(AppCleanAll, ASparedAppIsLoggedByItsName) {
    AppsDevice device;
    AppCacheInfo named;
    named.bundleIdentifier = kA;
    named.appName = "Example";
    AppCacheInfo nameless;
    nameless.bundleIdentifier = kB;
    ASSERT_TRUE(device.appWhitelist.addAppToWhitelist(kA).has_value());
    ASSERT_TRUE(device.appWhitelist.addAppToWhitelist(kB).has_value());
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    EXPECT_THAT(manager.withoutWhitelisted({named, nameless}), IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre("✅ 跳过白名单应用: Example (com.example.a)",
                                         "✅ 跳过白名单应用: com.example.b (com.example.b)",
                                         "📊 白名单过滤后，待清理应用数: 0 / 2"));
}

TEST(AppCleanAll, TheWhitelistIsComparedExactly) {
    AppsDevice device;
    installTwo(device);
    ASSERT_TRUE(device.appWhitelist.addAppToWhitelist("com.example").has_value());
    ASSERT_TRUE(device.appWhitelist.addAppToWhitelist("COM.EXAMPLE.A").has_value());
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_EQ(device.cleanAll(manager).bytes, 120U);
}

TEST(AppCleanAll, AnAppWhitelistedByAnotherProcessIsSpared) {
    AppsDevice device;
    installTwo(device);
    ThirdPartyAppCacheManager manager(device.services());
    platform::UserDefaults ofAnother(device.tree.files(), device.device.userDefaultsFile());
    AppWhitelistManager another(ofAnother);
    ASSERT_TRUE(another.addAppToWhitelist(kA).has_value());
    EXPECT_EQ(device.cleanAll(manager).bytes, 20U);
    EXPECT_TRUE(device.tree.exists(AppsDevice::containerPath("CA") + "/Library/Caches/x"));
}

TEST(AppCleanAll, TheWhitelistIsNotAskedForAppsThatAPersonChose) {
    AppsDevice device;
    installTwo(device);
    ASSERT_TRUE(device.appWhitelist.addAppToWhitelist(kA).has_value());
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_EQ(device.clean(manager, kA).bytes, 100U);
    EXPECT_EQ(device.scanAll(manager).size(), 2U);  // nor in discovery
}

TEST(AppCleanAll, AppsAreLookedForAfresh) {
    AppsDevice device;
    ThirdPartyAppCacheManager manager(device.services());
    device.scanAll(manager);
    installTwo(device);
    EXPECT_EQ(device.cleanAll(manager).bytes, 120U);
}

}  // namespace
}  // namespace sweepwright
