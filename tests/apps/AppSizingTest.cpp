// How big an app's caches are.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "apps/AppsDevice.h"
#include "platform/log/Log.h"
#include "support/FaultyFileManager.h"

namespace sweepwright {
namespace {

using platform::LogCapture;
using test::AppsDevice;
using test::FakeApp;
using test::kRoot;
using test::linesWith;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

AppCacheInfo sized(AppsDevice& device, const std::string& container) {
    ThirdPartyAppCacheManager manager(device.services());
    AppCacheInfo info;
    info.bundleIdentifier = "com.example.a";
    info.dataPath = container;
    manager.calculateCacheSizeForAppInfo(info);
    return info;
}

TEST(AppSizing, ThreeFoldersOfTheContainerCount) {
    AppsDevice device;
    const std::string data = AppsDevice::containerPath("C1");
    device.tree.file(data + "/Library/Caches/a", 1);
    device.tree.file(data + "/Library/Caches/deep/er/b", 10);
    device.tree.file(data + "/Library/WebKit/c", 100);
    device.tree.file(data + "/tmp/d", 1000);
    device.tree.file(data + "/Documents/e", 1U << 20U);
    device.tree.file(data + "/Library/Preferences/f", 1U << 20U);
    device.tree.file(data + "/Library/f", 1U << 20U);
    device.tree.file(data + "/Library/Application Support/f", 1U << 20U);
    device.tree.file(data + "/SystemData/f", 1U << 20U);
    const AppCacheInfo info = sized(device, data);
    EXPECT_EQ(info.cacheSize, 111U);
    EXPECT_EQ(info.tmpSize, 1000U);
    EXPECT_EQ(info.totalSize, 1111U);
}

TEST(AppSizing, AnAppWithDocumentsOnlyHasSizeZero) {
    AppsDevice device;
    const std::string data = AppsDevice::containerPath("C1");
    device.tree.file(data + "/Documents/e", 4096);
    EXPECT_EQ(sized(device, data).totalSize, 0U);
}

TEST(AppSizing, ARecordWithoutDataPathStaysAsItIs) {
    AppsDevice device;
    device.tree.file(std::string(kRoot) + "/var/tmp/x", 5);
    ThirdPartyAppCacheManager manager(device.services());
    AppCacheInfo info;
    info.bundleIdentifier = "com.example.a";
    info.cacheSize = 1;
    info.tmpSize = 2;
    info.totalSize = 99;
    manager.calculateCacheSizeForAppInfo(info);
    EXPECT_EQ(info.cacheSize, 1U);
    EXPECT_EQ(info.tmpSize, 2U);
    EXPECT_EQ(info.totalSize, 99U);
}

TEST(AppSizing, HiddenFilesAndLinksCountByTheirOwnSize) {
    AppsDevice device;
    const std::string data = AppsDevice::containerPath("C1");
    device.tree.file(data + "/Library/Caches/.hidden", 10);
    device.tree.file(data + "/Library/Caches/.folder/x", 100);
    device.tree.file("/big", 1U << 20U);
    device.tree.link(data + "/Library/Caches/link", "/big");
    device.tree.folder("/bigfolder");
    device.tree.file("/bigfolder/x", 1U << 20U);
    device.tree.link(data + "/Library/Caches/linked", "/bigfolder");
    EXPECT_EQ(sized(device, data).cacheSize, 110U + 4U + 10U);
}

TEST(AppSizing, HiddenRootsCountForEveryMatchingFolder) {
    AppsDevice device;
    const std::string data = AppsDevice::containerPath("C1");
    const std::string root = kRoot;
    device.tree.file(data + "/tmp/x", 1);
    device.tree.file(root + "/var/mobile/Library/Caches/x", 10);
    device.tree.file(root + "/var/tmp/x", 20);
    device.tree.file(root + "/var/mobile/Documents/x", 1U << 20U);
    device.tree.file(root + "/com.other.tool/tmp/x", 1U << 20U);
    device.tree.file(root + "/com.example.a-77/mobile/Library/Caches/x", 300);
    device.tree.file(root + "/com.example.a-77/tmp/x", 400);
    const LogCapture log;
    const AppCacheInfo info = sized(device, data);
    EXPECT_EQ(info.cacheSize, 310U);
    EXPECT_EQ(info.tmpSize, 421U);
    EXPECT_EQ(info.totalSize, 731U);
    EXPECT_THAT(
        log.lines(),
        ElementsAre(
            "🔍 隐根设备路径发现缓存: " + root +
                "/com.example.a-77/mobile/Library/Caches, 大小: 300 字节",
            "🔍 隐根设备路径发现临时文件: " + root + "/com.example.a-77/tmp, 大小: 400 字节",
            "🔍 隐根设备路径发现缓存: " + root + "/var/mobile/Library/Caches, 大小: 10 字节",
            "🔍 隐根设备路径发现临时文件: " + root + "/var/tmp, 大小: 20 字节"));
}

TEST(AppSizing, FoldersThatAHiddenRootLacksAreNotMentioned) {
    AppsDevice device;
    device.tree.folder(std::string(kRoot) + "/var/mobile/Documents");
    const LogCapture log;
    EXPECT_EQ(sized(device, AppsDevice::containerPath("C1")).totalSize, 0U);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(AppSizing, AnotherAppsFolderThroughALinkDoesNotCount) {
    AppsDevice device;
    const std::string data = AppsDevice::containerPath("C1");
    const std::string other = AppsDevice::containerPath("C2");
    device.tree.file(other + "/Library/Caches/x", 100);
    device.tree.file(other + "/tmp/x", 100);
    device.tree.link(data + "/Library", other + "/Library");
    device.tree.link(data + "/tmp", other + "/tmp");
    EXPECT_EQ(sized(device, data).totalSize, 0U);
    device.tree.link(AppsDevice::containerPath("C3"), other);
    EXPECT_EQ(sized(device, AppsDevice::containerPath("C3")).totalSize, 0U);
    EXPECT_EQ(sized(device, other).totalSize, 200U);
}

TEST(AppSizing, ALinkInsideAHiddenRootDoesNotCount) {
    AppsDevice device;
    device.tree.file("/var/mobile/Library/Caches/x", 100);
    device.tree.folder(std::string(kRoot) + "/var");
    device.tree.link(std::string(kRoot) + "/var/mobile", "/var/mobile");
    EXPECT_EQ(sized(device, AppsDevice::containerPath("C1")).totalSize, 0U);
}

std::string chain(std::size_t folders) {
    std::string path;
    for (std::size_t i = 0; i < folders; ++i)
        path += "/d";
    return path;
}

TEST(AppSizing, TheHundredthLevelCountsAndTheNextDoesNot) {
    AppsDevice device;
    device.tree.file("/top" + chain(99) + "/last", 7);
    device.tree.file("/top" + chain(100) + "/beyond", 1000);
    device.tree.file("/top/beside/x", 30);
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    EXPECT_EQ(manager.sizeOfDirectoryAtPath("/top"), 37U);
    EXPECT_THAT(log.lines(), ElementsAre("⚠️ 达到最大递归深度，跳过路径: /top" + chain(100)));
}

TEST(AppSizing, DepthIsCountedFromTheFolderMeasured) {
    AppsDevice device;
    device.tree.file("/top/a", 1);
    device.tree.file("/top/d/b", 10);
    device.tree.file("/top/d/d/c", 100);
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_EQ(manager.sizeOfDirectoryAtPath("/top", 3), 111U);
    EXPECT_EQ(manager.sizeOfDirectoryAtPath("/top", 2), 11U);
    EXPECT_EQ(manager.sizeOfDirectoryAtPath("/top", 1), 1U);
    for (const int depth : {0, -1, -100}) {
        const LogCapture log;
        EXPECT_EQ(manager.sizeOfDirectoryAtPath("/top", depth), 0U);
        EXPECT_THAT(log.lines(), ElementsAre("⚠️ 达到最大递归深度，跳过路径: /top"));
    }
}

TEST(AppSizing, WhatCannotBeReadCountsNothing) {
    AppsDevice device;
    device.tree.file("/top/a", 1);
    device.tree.file("/top/b", 10);
    device.tree.file("/top/d/c", 100);
    test::FaultyFileManager faulty(device.files,
                                   {test::Operation::AttributesAt, test::Operation::OpenBeneath});
    faulty.failWhere(
        [](test::Operation, const std::string& path) {
            return path.ends_with("/b") || path.ends_with("/d");
        },
        EACCES);
    ThirdPartyAppCacheManager manager(device.services(faulty, device.deviceEraser));
    EXPECT_EQ(manager.sizeOfDirectoryAtPath("/top"), 1U);
    EXPECT_EQ(manager.sizeOfDirectoryAtPath("/absent"), 0U);
    EXPECT_EQ(manager.sizeOfDirectoryAtPath("/top/a"), 0U);
}

/// The size of a folder as a plain recursion counts it.
std::uint64_t plainSize(platform::FileManager& files, const std::string& path, int depth) {
    if (depth <= 0) return 0;
    const auto names = files.contentsOfDirectory(path);
    if (!names) return 0;
    std::uint64_t sum = 0;
    for (const std::string& name : *names) {
        const std::string entry = platform::joinPath(path, name);
        const auto attributes = files.attributes(entry, platform::LastLink::Refuse);
        if (!attributes) continue;
        sum += attributes->type == platform::FileType::Directory
                   ? plainSize(files, entry, depth - 1)
                   : attributes->size;
    }
    return sum;
}

RC_GTEST_PROP(AppSizing, AnyTreeIsAsBigAsAPlainRecursionSays, ()) {
    AppsDevice device;
    device.tree.folder("/top");
    const auto count = *rc::gen::inRange(0, 25);
    for (int i = 0; i < count; ++i) {
        std::string path = "/top";
        const auto levels = *rc::gen::inRange(0, 6);
        for (int level = 0; level < levels; ++level)
            path += *rc::gen::element<std::string>("/a", "/.b", "/c d");
        path += "/f" + std::to_string(i);
        if (*rc::gen::inRange(0, 4) == 0) {
            device.tree.link(path, "/top");
        } else {
            device.tree.file(path, *rc::gen::inRange<std::uint64_t>(0, 100'000));
        }
    }
    ThirdPartyAppCacheManager manager(device.services());
    const auto depth = *rc::gen::inRange(-1, 8);
    RC_ASSERT(manager.sizeOfDirectoryAtPath("/top", depth) ==
              plainSize(device.files, "/top", depth));
    RC_ASSERT(manager.sizeOfDirectoryAtPath("/top") == plainSize(device.files, "/top", 100));
}

std::optional<AppCacheInfo> infoOf(AppsDevice& device, ThirdPartyAppCacheManager& manager,
                                   const std::string& identifier) {
    std::optional<AppCacheInfo> found;
    bool done = false;
    manager.getCacheInfoForApp(identifier, [&](const auto& info) {
        found = info;
        done = true;
    });
    device.mainQueue.runUntil([&] { return done; });
    return found;
}

TEST(AppInfo, TheRecordOfOneAppIsMadeByItsIdentifier) {
    AppsDevice device;
    const std::string data = device.container("C1", "com.example.a");
    device.tree.file(data + "/tmp/x", 12);
    ThirdPartyAppCacheManager manager(device.services());
    const auto info = infoOf(device, manager, "com.example.a");
    ASSERT_TRUE(info.has_value());
    EXPECT_EQ(info->bundleIdentifier, "com.example.a");
    EXPECT_EQ(info->dataPath, data);
    EXPECT_EQ(info->tmpSize, 12U);
    EXPECT_EQ(info->totalSize, 12U);
    EXPECT_EQ(infoOf(device, manager, "com.example.b"), std::nullopt);
}

TEST(AppInfo, TheServiceSaysWhereAnAppLies) {
    AppsDevice device;
    device.container("C1", "com.example.a");
    device.tree.file(AppsDevice::containerPath("C2") + "/tmp/x", 12);
    FakeApp app;
    app.identifier = "com.example.a";
    app.dataPath = AppsDevice::containerPath("C2");
    device.workspace.offer({FakeApp{}, app});
    ThirdPartyAppCacheManager manager(device.services());
    const auto info = infoOf(device, manager, "com.example.a");
    ASSERT_TRUE(info.has_value());
    EXPECT_EQ(info->dataPath, AppsDevice::containerPath("C2"));
    EXPECT_EQ(infoOf(device, manager, "com.example.b"), std::nullopt);
    device.workspace.installed = test::raised("not now");
    EXPECT_EQ(infoOf(device, manager, "com.example.c"), std::nullopt);
}

TEST(AppInfo, AKnownRecordIsGivenAtOnceUntilItIsInvalidated) {
    AppsDevice device;
    const std::string data = device.container("C1", "com.example.a");
    device.tree.file(data + "/tmp/x", 12);
    ThirdPartyAppCacheManager manager(device.services());
    infoOf(device, manager, "com.example.a");
    device.tree.file(data + "/tmp/y", 100);

    std::optional<AppCacheInfo> atOnce;
    manager.getCacheInfoForApp("com.example.a", [&](const auto& info) { atOnce = info; });
    ASSERT_TRUE(atOnce.has_value());  // though the main queue did not run
    EXPECT_EQ(atOnce->totalSize, 12U);

    manager.invalidateCacheForApp("com.example.b");
    EXPECT_EQ(infoOf(device, manager, "com.example.a")->totalSize, 12U);
    manager.invalidateCacheForApp("com.example.a");
    EXPECT_EQ(infoOf(device, manager, "com.example.a")->totalSize, 112U);
    device.tree.file(data + "/tmp/z", 1000);
    manager.refreshAppListCache();
    EXPECT_EQ(infoOf(device, manager, "com.example.a")->totalSize, 1112U);
    device.tree.file(data + "/tmp/w", 10'000);
    manager.invalidateAllCache();
    EXPECT_EQ(infoOf(device, manager, "com.example.a")->totalSize, 11'112U);
}

TEST(AppInfo, AnAppThatIsNotFoundIsNotRemembered) {
    AppsDevice device;
    ThirdPartyAppCacheManager manager(device.services());
    EXPECT_EQ(infoOf(device, manager, "com.example.a"), std::nullopt);
    device.container("C1", "com.example.a");
    EXPECT_TRUE(infoOf(device, manager, "com.example.a").has_value());
    manager.getCacheInfoForApp("com.example.a", {});
    manager.getCacheInfoForApp("com.example.unknown", {});
}

}  // namespace
}  // namespace sweepwright
