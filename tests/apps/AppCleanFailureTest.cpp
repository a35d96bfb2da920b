// App cleans that meet an error.
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/AppsDevice.h"
#include "engine/Failures.h"
#include "platform/log/Log.h"
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

/// A manager over `files` whose failures are collected.
struct Watched {
    Watched(AppsDevice& device, platform::FileManager& files)
        : eraser(files, test::noCommands(), platform::WebStorage::ofHost()),
          manager(device.services(files, eraser)) {
        manager.setObserver(&failures);
    }
    [[nodiscard]] std::vector<std::string> failed() const {
        return pathsOf(failures.failedEntries());
    }
    [[nodiscard]] std::vector<std::string> unreadable() const {
        return pathsOf(failures.unreadableFolders());
    }
    static std::vector<std::string> pathsOf(const FailureList& list) {
        std::vector<std::string> paths;
        for (const FailureList::Entry& entry : list.entries)
            paths.push_back(entry.path);
        return paths;
    }

    Failures failures;
    DeviceEraser eraser;
    ThirdPartyAppCacheManager manager;
};

TEST(AppCleanFailure, TheObserverHearsOfEachEntryThatStayedAndOfNoneThatVanished) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    for (const char* name : {"/tmp/goes", "/tmp/stays", "/tmp/vanishes", "/Library/WebKit/stays"})
        device.tree.file(data + name, 1);
    FaultyFileManager stuck(device.files, {Operation::RemoveFileAt});
    stuck.failWhere([](Operation, const std::string& path) { return path.ends_with("/stays"); },
                    EPERM);
    FaultyFileManager vanished(stuck, {Operation::RemoveFileAt, Operation::AttributesAt});
    vanished.failWhere(
        [](Operation, const std::string& path) { return path.ends_with("/vanishes"); }, ENOENT);
    Watched watched(device, vanished);
    EXPECT_TRUE(device.clean(watched.manager, kApp).success);
    EXPECT_THAT(watched.failed(), ElementsAre(data + "/Library/WebKit/stays", data + "/tmp/stays"));
    EXPECT_THAT(watched.unreadable(), IsEmpty());
}

TEST(AppCleanFailure, TheObserverHearsOfFoldersThatCannotBeReadWhenTheyAreSizedAndCleaned) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    device.tree.file(data + "/tmp/x", 5);
    device.tree.file(data + "/Library/Caches/x", 5);
    FaultyFileManager closed(
        device.files, {Operation::OpenDirectory, Operation::OpenBeneath, Operation::Attributes});
    closed.failWhere(
        [&](Operation operation, const std::string& path) {
            const bool opens = operation != Operation::Attributes;
            return path.starts_with(data + "/Library/") ||
                   (opens && (path == data + "/Library" || path == data + "/tmp"));
        },
        EACCES);
    for (const bool cleans : {false, true}) {
        Watched watched(device, closed);
        if (cleans) {
            EXPECT_EQ(device.clean(watched.manager, kApp).bytes, 0U);
        } else {
            EXPECT_EQ(device.scanAll(watched.manager).at(0).totalSize, 0U);
        }
        EXPECT_THAT(watched.unreadable(), ElementsAre(data + "/Library", data + "/tmp"));
        EXPECT_THAT(watched.failed(), IsEmpty());
    }
}

TEST(AppCleanFailure, TheObserverHearsOfFoldersOfAppsThatCannotBeRead) {
    AppsDevice device;
    device.container("C1", kApp);
    device.bundle("B1", "X", PropertyList(PropertyList::Dictionary{}));
    device.tree.file(std::string(kRoot) + "/var/tmp/x", 5);
    const std::vector<std::string> folders = {"/var/containers/Bundle/Application/B1",
                                              "/var/mobile/Containers/Data/Application", kRoot};
    for (const std::string& folder : folders) {
        FaultyFileManager closed(device.files, {Operation::OpenDirectory});
        closed.failWhere([&](Operation, const std::string& path) { return path == folder; },
                         EACCES);
        Watched watched(device, closed);
        device.scanAll(watched.manager);
        EXPECT_THAT(watched.unreadable(), ElementsAre(folder));
    }
}

TEST(AppCleanFailure, ACleanOfAllAppsTellsItsOwnObserverThatTheyCannotBeListed) {
    AppsDevice device;
    device.container("C1", kApp);
    FaultyFileManager closed(device.files, {Operation::OpenDirectory});
    closed.failWhere(
        [](Operation, const std::string& path) {
            return path == "/var/mobile/Containers/Data/Application";
        },
        EACCES);
    Watched watched(device, closed);
    watched.manager.setObserver(nullptr);
    const auto own = std::make_shared<Failures>();
    bool done = false;
    watched.manager.cleanAllThirdPartyAppCaches(
        {}, [&](bool, std::uint64_t, const auto&) { done = true; }, own);
    device.mainQueue.runUntil([&] { return done; });
    EXPECT_THAT(Watched::pathsOf(own->unreadableFolders()),
                ElementsAre("/var/mobile/Containers/Data/Application"));
}

TEST(AppCleanFailure, InABatchTheObserverHearsOfTheAppsThatWereNotCleaned) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    device.tree.file(data + "/tmp/x", 5);
    device.container("C2", "com.example.other");
    FaultyFileManager unreadable(device.files, {Operation::ReadFile});
    Watched watched(device, unreadable);
    bool isFound = false;  // who owns the container, until its caches are to be cleaned
    unreadable.failWhere(
        [&](Operation, const std::string& path) {
            return path.starts_with(data) && std::exchange(isFound, true);
        },
        EIO);
    const auto outcome = device.cleanBatch(watched.manager, {kApp, "com.example.other"});
    EXPECT_TRUE(outcome.success);
    EXPECT_TRUE(device.tree.exists(data + "/tmp/x"));
    EXPECT_THAT(watched.failed(), ElementsAre(kApp));
}

TEST(AppCleanFailure, AnObserverOfItsOwnHearsOfACleanAndWhetherItIsRecorded) {
    AppsDevice device;
    const std::string data = device.container("C1", kApp);
    device.tree.file(data + "/tmp/x", 5);
    device.tree.folder(std::string(device.device.userDefaultsFile()) + ".lock");
    Watched watched(device, device.files);
    const auto own = std::make_shared<Failures>();
    bool done = false;
    watched.manager.cleanCacheForApps(
        {kApp}, {}, [&](bool, std::uint64_t, const auto&) { done = true; }, own);
    device.mainQueue.runUntil([&] { return done; });
    ASSERT_TRUE(own->recordError().has_value());
    EXPECT_THAT(own->recordError()->description, ::testing::HasSubstr(".plist.lock"));
    EXPECT_EQ(watched.failures.recordError(), std::nullopt);
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
