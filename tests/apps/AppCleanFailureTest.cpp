// App cleans that meet an error.
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/AppsDevice.h"
#include "platform/Log.h"
#include "support/FaultyFileManager.h"

namespace sweepwright {
namespace {

using platform::LogCapture;
using platform::PropertyList;
using test::AppsDevice;
using test::FakeApp;
using test::FaultyFileManager;
using test::kApp;
using test::kRoot;
using test::linesWith;
using test::Operation;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(AppCleanFailure, AFolderThatCannotBeReadIsLoggedAndCountsNothing) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    device.tree.file(data + "/tmp", 50);  // a file in the folder's place
    device.tree.file(data + "/Library/WebKit/x", 3);
    ThirdPartyAppCacheManager manager(device.services());
    const LogCapture log;
    EXPECT_EQ(device.clean(manager, kApp).bytes, 3U);
    EXPECT_TRUE(device.tree.exists(data + "/tmp"));
    const auto told = linesWith(log.lines(), "⚠️");
    ASSERT_EQ(told.size(), 1U);
    EXPECT_THAT(told[0], ::testing::StartsWith("⚠️ 无法读取目录: " + data + "/tmp 错误: "));
    EXPECT_FALSE(manager.removeContentsOfDirectory(data + "/tmp", {}, kApp));
    EXPECT_FALSE(manager.removeContentsOfDirectory(data + "/absent", {}, kApp));
    EXPECT_EQ(log.lines().back(), "⚠️ 无法读取目录: " + data + "/absent 错误: " + data +
                                      "/absent: No such file or directory");
}

TEST(AppCleanFailure, AListingThatFailsIsLoggedAndCountsNothing) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    device.tree.file(data + "/tmp/x", 50);
    FaultyFileManager faulty(device.files, {Operation::ReadEntries});
    faulty.failWhere([&](Operation, const std::string& path) { return path == data + "/tmp"; },
                     EIO);
    ThirdPartyAppCacheManager manager(device.services(faulty, device.deviceEraser));
    const LogCapture log;
    EXPECT_EQ(device.clean(manager, kApp).bytes, 0U);
    EXPECT_EQ(log.lines().at(1),
              "⚠️ 无法读取目录: " + data + "/tmp 错误: " + data + "/tmp: Input/output error");
}

TEST(AppCleanFailure, WhatWasThereCountsEvenIfAnEntryFailsToGo) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    device.tree.file(data + "/tmp/a", 1);
    device.tree.file(data + "/tmp/b", 10);
    device.tree.file(data + "/tmp/c", 100);
    FaultyFileManager faulty(device.files, {Operation::RemoveFileAt});
    faulty.failWhere([](Operation, const std::string& path) { return path.ends_with("/b"); },
                     EPERM);
    DeviceEraser eraser(faulty, test::noCommands(), platform::WebStorage::ofHost());
    ThirdPartyAppCacheManager manager(device.services(faulty, eraser));
    const LogCapture log;
    const auto outcome = device.clean(manager, kApp);
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.bytes, 111U);
    EXPECT_THAT(*device.files.contentsOfDirectory(data + "/tmp"), ElementsAre("b"));
    EXPECT_EQ(log.lines().at(1),
              "⚠️ 删除失败: " + data + "/tmp/b 错误: " + data + "/tmp/b: Operation not permitted");
    EXPECT_EQ(outcome.progress.back().second, 1.0);
    EXPECT_TRUE(manager.removeContentsOfDirectory(data + "/tmp", {}, kApp));
}

TEST(AppCleanFailure, AnIdentifierThatIsNoNameNeverFormsAPath) {
    AppsDevice device;
    device.tree.file("/var/mobile/Containers/Data/tmp/x", 5);
    device.tree.file("/var/mobile/Containers/Data/Application/tmp/x", 5);
    device.tree.file("/var/mobile/Containers/Data/Application/a/b/tmp/x", 5);
    device.tree.file("/x/tmp/x", 5);
    device.tree.file(std::string(kRoot) + "/var/tmp/x", 5);
    for (const bool available : {false, true}) {
        if (available) device.workspace.offer({});
        ThirdPartyAppCacheManager manager(device.services());
        for (const std::string& identifier :
             {std::string("../../x"), std::string("../../../../../x"), std::string(".."),
              std::string("."), std::string(), std::string("a/b"), std::string("/x"),
              std::string("..\0", 3)}) {
            const auto outcome = device.clean(manager, identifier);
            EXPECT_FALSE(outcome.success) << identifier;
            EXPECT_EQ(outcome.bytes, 0U);
            ASSERT_TRUE(outcome.error.has_value());
            EXPECT_EQ(*outcome.error,
                      (platform::Error{"ThirdPartyAppCacheManager", -1, "无法获取应用数据目录"}));
        }
    }
    EXPECT_TRUE(device.tree.exists("/var/mobile/Containers/Data/tmp/x"));
    EXPECT_TRUE(device.tree.exists("/var/mobile/Containers/Data/Application/tmp/x"));
    EXPECT_TRUE(device.tree.exists("/var/mobile/Containers/Data/Application/a/b/tmp/x"));
    EXPECT_TRUE(device.tree.exists("/x/tmp/x"));
    EXPECT_TRUE(device.tree.exists(std::string(kRoot) + "/var/tmp/x"));
    EXPECT_THAT(device.history.getAllCleanHistory(), IsEmpty());
}

TEST(AppCleanFailure, AnExceptionOfTheServiceIsTheError) {
    AppsDevice device;
    device.tree.file(AppsDevice::containerPath(kApp) + "/tmp/x", 5);
    for (const char* reason : {"no entitlement", ""}) {
        FakeApp broken;
        broken.identifier = test::raised(reason);
        FakeApp homeless;
        homeless.identifier = kApp;
        homeless.dataPath = test::raised(reason);
        const std::vector<test::FakeWorkspace::Apps> services = {
            test::raised(reason), std::vector{broken}, std::vector{homeless}};
        for (const auto& apps : services) {
            device.workspace.offer({});
            device.workspace.installed = apps;
            ThirdPartyAppCacheManager manager(device.services());
            const LogCapture log;
            const auto outcome = device.clean(manager, kApp);
            EXPECT_FALSE(outcome.success);
            EXPECT_EQ(outcome.bytes, 0U);
            ASSERT_TRUE(outcome.error.has_value());
            EXPECT_EQ(outcome.error->domain, "ThirdPartyAppCacheManager");
            EXPECT_EQ(outcome.error->code, -2);
            EXPECT_EQ(outcome.error->description, *reason == 0 ? "清理失败" : reason);
            EXPECT_THAT(log.lines(), ElementsAre(std::string("❌ 清理异常: ") + reason));
        }
    }
    EXPECT_TRUE(device.tree.exists(AppsDevice::containerPath(kApp) + "/tmp/x"));
}

TEST(AppCleanFailure, AnExceptionMidwayEndsTheCleanWithWhatItFreed) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    device.tree.file(data + "/Library/Caches/x", 10);
    device.tree.file(data + "/tmp/x", 100);
    FaultyFileManager files(device.files, {Operation::Attributes});
    files.before([&](Operation, const std::string& path) {
        if (path == data + "/tmp") throw std::runtime_error("memory is out");
    });
    ThirdPartyAppCacheManager manager(device.services(files, device.deviceEraser));
    const LogCapture log;
    const auto outcome = device.clean(manager, kApp);
    EXPECT_FALSE(outcome.success);
    EXPECT_EQ(outcome.bytes, 10U);
    EXPECT_EQ(outcome.error, (platform::Error{"ThirdPartyAppCacheManager", -2, "memory is out"}));
    EXPECT_EQ(log.lines().back(), "❌ 清理异常: memory is out");
    EXPECT_TRUE(device.tree.exists(data + "/tmp/x"));
    EXPECT_THAT(device.history.getAllCleanHistory(), IsEmpty());
    EXPECT_EQ(device.statistics.totals().cleanCount, 0);
}

TEST(AppCleanFailure, AnExceptionWithoutReasonIsAFailedClean) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    FaultyFileManager files(device.files, {Operation::Attributes});
    files.before([&](Operation, const std::string& path) {
        if (path == data + "/tmp") throw 5;
    });
    ThirdPartyAppCacheManager manager(device.services(files, device.deviceEraser));
    EXPECT_EQ(device.clean(manager, kApp).error,
              (platform::Error{"ThirdPartyAppCacheManager", -2, "清理失败"}));
}

TEST(AppCleanFailure, ACleanRefusesWhileAProtectionListCannotBeRead) {
    for (const char* key : {"AppWhitelistBundleIdentifiers", "PathWhitelistPaths"}) {
        AppsDevice device;
        const std::string data = device.container("C1", kApp);
        device.tree.file(data + "/tmp/x", 100);
        ASSERT_TRUE(device.defaults.set(key, PropertyList("no list")).has_value());
        ThirdPartyAppCacheManager manager(device.services());
        for (const auto& outcome : {device.clean(manager, kApp), device.cleanBatch(manager, {kApp}),
                                    device.cleanAll(manager)}) {
            EXPECT_FALSE(outcome.success) << key;
            EXPECT_TRUE(outcome.error.has_value());
            EXPECT_EQ(outcome.bytes, 0U);
        }
        EXPECT_TRUE(device.tree.exists(data + "/tmp/x"));
    }
}

}  // namespace
}  // namespace sweepwright
