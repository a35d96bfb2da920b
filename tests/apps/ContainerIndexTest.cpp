#include <filesystem>
#include <thread>

#include <gtest/gtest.h>

#include "apps/AppsDevice.h"
#include "apps/ContainerIndex.h"
#include "support/FaultyFileManager.h"

namespace sweepwright {
namespace {

using test::AppsDevice;
using test::FaultyFileManager;
using test::Operation;

TEST(ContainerIndex, FindsAContainerByItsMetadata) {
    AppsDevice device;
    device.container("C1", "com.example.a");
    device.container("C2", "com.example.b");
    ContainerIndex index(device.files);
    EXPECT_EQ(index.find("com.example.b"), AppsDevice::containerPath("C2"));
    EXPECT_EQ(index.find("com.example.a"), AppsDevice::containerPath("C1"));
    EXPECT_EQ(index.find("com.example.c"), std::nullopt);
    EXPECT_EQ(index.find("C1"), std::nullopt);
    EXPECT_EQ(index.find(""), std::nullopt);
}

TEST(ContainerIndex, TheFirstInListingOrderIsTaken) {
    AppsDevice device;
    device.container("C2", "com.example.a");
    device.container("C1", "com.example.a");
    ContainerIndex index(device.files);
    EXPECT_EQ(index.find("com.example.a"), AppsDevice::containerPath("C1"));
}

TEST(ContainerIndex, AContainerWithoutMetadataGoesByItsOwnName) {
    AppsDevice device;
    device.tree.folder(AppsDevice::containerPath("11-22"));
    device.tree.file(AppsDevice::containerPath("stray"), 1);
    ContainerIndex index(device.files);
    EXPECT_EQ(index.find("11-22"), AppsDevice::containerPath("11-22"));
    EXPECT_EQ(index.find("stray"), std::nullopt);
}

TEST(ContainerIndex, AnAppThatMovedIsFoundAnew) {
    AppsDevice device;
    device.container("C1", "com.example.a");
    ContainerIndex index(device.files);
    ASSERT_EQ(index.find("com.example.a"), AppsDevice::containerPath("C1"));
    device.container("C1", "com.example.other");
    EXPECT_EQ(index.find("com.example.a"), std::nullopt);
    device.container("C2", "com.example.a");
    EXPECT_EQ(index.find("com.example.a"), AppsDevice::containerPath("C2"));
    EXPECT_EQ(index.find("com.example.other"), AppsDevice::containerPath("C1"));
}

TEST(ContainerIndex, AContainerThatIsGoneIsNotHandedOut) {
    AppsDevice device;
    device.tree.folder(AppsDevice::containerPath("11-22"));
    ContainerIndex index(device.files);
    ASSERT_TRUE(index.find("11-22").has_value());
    std::filesystem::remove_all(device.tree.host(AppsDevice::containerPath("11-22")));
    EXPECT_EQ(index.find("11-22"), std::nullopt);
}

TEST(ContainerIndex, AnIdentifierThatReadsLikeAPathFindsOnlyItsOwnContainer) {
    AppsDevice device;
    device.container("C1", "../../x");
    device.tree.folder("/var/mobile/Containers/x");
    ContainerIndex index(device.files);
    EXPECT_EQ(index.find("../../x"), AppsDevice::containerPath("C1"));
    EXPECT_EQ(index.find(".."), std::nullopt);
    EXPECT_EQ(index.find("../Application/C1"), std::nullopt);
}

TEST(ContainerIndex, WhatIsKnownCostsNoNewListing) {
    AppsDevice device;
    for (int i = 0; i < 50; ++i)
        device.container("C" + std::to_string(i), "com.example." + std::to_string(i));
    FaultyFileManager counting(device.files, {Operation::ReadFile, Operation::ReadEntries});
    ContainerIndex index(counting);
    ASSERT_TRUE(index.find("com.example.0").has_value());
    const auto first = counting.calls();
    for (int i = 0; i < 50; ++i)
        EXPECT_TRUE(index.find("com.example." + std::to_string(i)).has_value());
    EXPECT_EQ(counting.calls(), first + 50);  // one reading of metadata each
}

TEST(ContainerIndex, MayBeAskedFromSeveralThreads) {
    AppsDevice device;
    device.container("C1", "com.example.a");
    ContainerIndex index(device.files);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 20; ++round) {
                EXPECT_EQ(index.find("com.example.a"), AppsDevice::containerPath("C1"));
                EXPECT_EQ(index.find("com.example.b"), std::nullopt);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

}  // namespace
}  // namespace sweepwright
