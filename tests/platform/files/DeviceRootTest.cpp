#include <cerrno>
#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

#include "platform/device/Device.h"
#include "platform/files/FileManagerFixture.h"
#include "support/ChildProcess.h"

namespace sweepwright::platform {

namespace {

int openError(const std::string& hostFolder) {
    return errorOf(DeviceRoot::open(hostFolder));
}

}  // namespace

TEST(DeviceRoot, TheComputersOwnRootIsRefusedUnderAnyName) {
    const test::TemporaryFolder folder;
    const std::string link = folder.path() + "/link";
    std::filesystem::create_symlink("/", link);
    for (const std::string& path : {std::string("/"), std::string("//"), std::string("/tmp/.."),
                                    std::string("/proc/self/root"), link}) {
        const auto root = DeviceRoot::open(path);
        ASSERT_FALSE(root) << path;
        EXPECT_EQ(root.error().code, EPERM) << path;
        EXPECT_NE(root.error().description.find("own root folder"), std::string::npos);
    }
}

TEST(DeviceRoot, TheComputersOwnRootMountedElsewhereIsRefused) {
    if (const std::string why = test::whyNoMounts(); !why.empty()) GTEST_SKIP() << why;
    const test::TemporaryFolder folder;
    test::withOwnMounts([&] {
        test::mountReadOnlyAt("/", folder.path());
        EXPECT_EQ(openError(folder.path()), EPERM);
    });
}

TEST(DeviceRoot, WhatIsNoReadableFolderIsRefused) {
    const test::TemporaryFolder folder;
    const std::string file = folder.path() + "/file";
    const std::string fifo = folder.path() + "/fifo";
    std::filesystem::copy_file("/proc/self/comm", file);
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(openError(folder.path() + "/absent"), ENOENT);
    EXPECT_EQ(openError(""), ENOENT);
    EXPECT_EQ(openError(file), ENOTDIR);
    EXPECT_EQ(openError(fifo), ENOTDIR);
}

TEST(DeviceRoot, AFolderThatMayNotBeReadIsRefused) {
    if (const std::string why = test::whyNoOrdinaryUser(); !why.empty()) GTEST_SKIP() << why;
    const test::TemporaryFolder folder;
    const std::string closed = folder.path() + "/closed";
    ASSERT_EQ(mkdir(closed.c_str(), 0111), 0);
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
    test::asOrdinaryUser([&] { EXPECT_EQ(openError(closed), EACCES); });
}

TEST(DeviceRoot, ItStaysTheSameFolderWhenItIsRenamed) {
    const test::TemporaryFolder folder;
    const std::string before = folder.path() + "/before";
    const std::string after = folder.path() + "/after";
    std::filesystem::create_directories(before + "/mine");
    const auto root = DeviceRoot::open(before);
    ASSERT_TRUE(root);
    EXPECT_EQ((*root)->hostFolder(), before);
    HostFileManager files(*root);
    std::filesystem::rename(before, after);
    std::filesystem::create_directories(before + "/others");
    EXPECT_TRUE(files.isDirectory("/mine"));
    EXPECT_FALSE(files.fileExists("/others"));
}

TEST(DeviceRoot, ACopiedTreeTellsWhereItsDiskIsMountedAndAMountedDeviceDoesNot) {
    if (const std::string why = test::whyNoMounts(); !why.empty()) GTEST_SKIP() << why;
    const test::TemporaryFolder folder;
    test::withOwnMounts([&] {
        test::mountMemory(folder.path());
        std::filesystem::create_directories(folder.path() + "/copies/phone");
        EXPECT_EQ(DeviceRoot::open(folder.path()).value()->mountAbove(), std::nullopt);
        EXPECT_EQ(DeviceRoot::open(folder.path() + "/copies/phone").value()->mountAbove(),
                  folder.path());
    });
}

TEST(Device, ATreeWithoutAUsersHomeIsNoDeviceUnlessAHomeIsGiven) {
    test::TemporaryDevice tree;
    DeviceOptions options;
    options.rootFolder = tree.root();
    EXPECT_EQ(errorOf(Device::open(options)), ENODEV);
    EXPECT_TRUE(tree.entriesBeneath("/").empty());
    options.home = "/app";
    EXPECT_TRUE(Device::open(options));
    options.home.reset();
    tree.folder("/private/var/mobile");
    EXPECT_TRUE(Device::open(options));
}

}  // namespace sweepwright::platform
