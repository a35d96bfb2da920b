#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/AppsDevice.h"
#include "apps/HiddenRoots.h"

namespace sweepwright {
namespace {

using test::AppsDevice;
using test::kRoot;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> matching(const HiddenRoots& roots, const std::string& identifier) {
    std::vector<std::string> paths;
    for (const auto* folder : roots.matching(identifier))
        paths.push_back(folder->root + "/" + folder->name);
    return paths;
}

TEST(HiddenRoots, TheFoldersOfAnAppAreVarAndThoseWithItsIdentifier) {
    AppsDevice device;
    const std::string root = kRoot;
    for (const char* name :
         {"/var", "/varnish", "/com.other.tool", "/com.example.a-7F", "/x.com.example.a"})
        device.tree.folder(root + name);
    const HiddenRoots roots(device.files);
    EXPECT_THAT(matching(roots, "com.example.a"),
                ElementsAre(root + "/com.example.a-7F", root + "/var", root + "/x.com.example.a"));
    EXPECT_THAT(matching(roots, "com.nowhere"), ElementsAre(root + "/var"));
    EXPECT_THAT(matching(roots, ""), ElementsAre(root + "/var"));
}

TEST(HiddenRoots, EveryRootIsUsedAndNoOrdinaryGroup) {
    AppsDevice device;
    const std::string groups = "/var/mobile/Containers/Shared/AppGroup";
    for (const char* name :
         {"/.jbroot-1/var", "/.jbroot-2/var", "/.jbroot/var", "/group/var", "/a.jbroot-3/var"})
        device.tree.folder(groups + name);
    EXPECT_THAT(matching(HiddenRoots(device.files), "com.example.a"),
                ElementsAre(groups + "/.jbroot-1/var", groups + "/.jbroot-2/var"));
}

TEST(HiddenRoots, FilesAndLinksAreNoFolders) {
    AppsDevice device;
    const std::string groups = "/var/mobile/Containers/Shared/AppGroup";
    device.tree.file(groups + "/.jbroot-1/var", 1);
    device.tree.link(groups + "/.jbroot-2/var", "/var");
    device.tree.folder("/elsewhere/var");
    device.tree.link(groups + "/.jbroot-3", "/elsewhere");
    EXPECT_THAT(matching(HiddenRoots(device.files), "com.example.a"), IsEmpty());
}

TEST(HiddenRoots, WithoutGroupsThereAreNone) {
    AppsDevice device;
    EXPECT_THAT(matching(HiddenRoots(device.files), "com.example.a"), IsEmpty());
}

TEST(HiddenRoots, AFolderIsMeasuredOnce) {
    AppsDevice device;
    const std::string root = kRoot;
    device.tree.folder(root + "/var/mobile/Library/Caches");
    device.tree.folder(root + "/var/tmp");
    HiddenRoots roots(device.files);
    std::vector<std::string> measured;
    const auto measure = [&](const std::string& base, std::string_view relative) {
        measured.push_back(base + "|" + std::string(relative));
        return std::uint64_t{7};
    };
    for (int i = 0; i < 3; ++i) {
        for (const auto* folder : roots.matching("com.example.a")) {
            EXPECT_EQ(roots.cacheSize(*folder, measure), 7U);
            EXPECT_EQ(roots.tmpSize(*folder, measure), 7U);
        }
    }
    EXPECT_THAT(measured, ElementsAre(root + "|var/mobile/Library/Caches", root + "|var/tmp"));
}

TEST(HiddenRoots, WhatIsNotThereHasNoSize) {
    AppsDevice device;
    device.tree.folder(std::string(kRoot) + "/var");
    HiddenRoots roots(device.files);
    const auto measure = [](const std::string& /*base*/, std::string_view /*relative*/) {
        ADD_FAILURE();
        return std::uint64_t{7};
    };
    const auto* folder = roots.matching("x").at(0);
    EXPECT_EQ(roots.cacheSize(*folder, measure), std::nullopt);
    EXPECT_EQ(roots.tmpSize(*folder, measure), std::nullopt);
    EXPECT_EQ(folder->cachePath(), std::string(kRoot) + "/var/mobile/Library/Caches");
    EXPECT_EQ(folder->tmpPath(), std::string(kRoot) + "/var/tmp");
}

}  // namespace
}  // namespace sweepwright
