// A preview tells exactly what the clean would do.
#include <filesystem>
#include <map>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "apps/AppCleanPreview.h"
#include "apps/AppsDevice.h"

namespace sweepwright {
namespace {

namespace fs = std::filesystem;
using platform::PropertyList;
using test::AppsDevice;
using test::kRoot;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Entry = CleanPreview::Entry;

/// Everything beneath the containers, by device path.
std::set<std::string> everything(const AppsDevice& device) {
    std::set<std::string> paths;
    const std::string top = "/var/mobile/Containers";
    for (const auto& entry : fs::recursive_directory_iterator(device.tree.host(top)))
        paths.insert(entry.path().string().substr(device.tree.root().size()));
    return paths;
}

TEST(AppCleanPreview, TellsWhatGoesAndWhatStaysAndTouchesNothing) {
    AppsDevice device;
    const std::string a = device.container("CA", "com.example.a");
    const std::string b = device.container("CB", "com.example.b");
    device.tree.file(a + "/Library/Caches/folder/x", 10);
    device.tree.file(a + "/tmp/keep", 5);
    device.tree.file(b + "/tmp/.y", 100);
    device.tree.file(std::string(kRoot) + "/var/tmp/z", 1000);
    ASSERT_TRUE(device.pathWhitelist.addPathToWhitelist(a + "/tmp/keep").has_value());
    const auto before = everything(device);
    const auto preview =
        previewAppsClean(device.services(), {"com.example.a", "com.example.b", "com.example.a"});
    ASSERT_TRUE(preview.has_value());
    EXPECT_EQ(preview->wouldFree, 1110U);
    EXPECT_THAT(preview->entries, ElementsAre(Entry{a + "/Library/Caches/folder", 10},
                                              Entry{std::string(kRoot) + "/var/tmp/z", 1000},
                                              Entry{b + "/tmp/.y", 100}));
    ASSERT_EQ(preview->kept.size(), 1U);
    EXPECT_EQ(preview->kept[0].path, a + "/tmp/keep");
    EXPECT_EQ(preview->kept[0].reason, KeptReason::Protected);
    EXPECT_EQ(preview->kept[0].by, a + "/tmp/keep");
    EXPECT_EQ(everything(device), before);
    EXPECT_THAT(device.history.getAllCleanHistory(), IsEmpty());
    EXPECT_EQ(device.statistics.totals().cleanCount, 0);
}

TEST(AppCleanPreview, IsDividedByApp) {
    AppsDevice device;
    device.tree.file(device.container("CA", "com.example.a") + "/tmp/x", 10);
    const std::string b = device.container("CB", "com.example.b");
    device.tree.file(b + "/tmp/y", 5);
    device.tree.file(b + "/Library/Caches/z", 100);
    const auto preview =
        previewAppsClean(device.services(), {"com.example.a", "com.gone", "com.example.b"});
    ASSERT_TRUE(preview.has_value());
    EXPECT_THAT(
        preview->parts,
        ElementsAre(CleanPreview::Part{{CleanType::ThirdPartyApps, "com.example.a"}, 10, 1},
                    CleanPreview::Part{{CleanType::ThirdPartyApps, "com.gone"}, 0, 0},
                    CleanPreview::Part{{CleanType::ThirdPartyApps, "com.example.b"}, 105, 2}));
}

TEST(AppCleanPreview, AnAppThatCannotBeCleanedIsTheErrorIfAlone) {
    AppsDevice device;
    device.tree.file(device.container("CA", "com.example.a") + "/tmp/x", 5);
    const auto alone = previewAppsClean(device.services(), {"../../x"});
    ASSERT_FALSE(alone.has_value());
    EXPECT_EQ(alone.error().code, -1);
    const auto several = previewAppsClean(device.services(), {"../../x", "com.example.a"});
    ASSERT_TRUE(several.has_value());
    EXPECT_EQ(several->wouldFree, 5U);
}

TEST(AppCleanPreview, RefusesWhileAProtectionListCannotBeRead) {
    AppsDevice device;
    ASSERT_TRUE(device.defaults.set("PathWhitelistPaths", PropertyList("no list")).has_value());
    EXPECT_FALSE(previewAppsClean(device.services(), {"com.example.a"}).has_value());
}

TEST(AppCleanPreview, OfNoAppsIsEmpty) {
    AppsDevice device;
    const auto preview = previewAppsClean(device.services(), {});
    ASSERT_TRUE(preview.has_value());
    EXPECT_EQ(preview->wouldFree, 0U);
    EXPECT_THAT(preview->entries, IsEmpty());
}

TEST(AppCleanPreview, EntriesCountAsDeepAsTheCleanCounts) {
    AppsDevice device;
    std::string deep = device.container("CA", "com.example.a") + "/tmp";
    for (int i = 0; i < 99; ++i)
        deep += "/d";
    device.tree.file(deep + "/last", 7);
    device.tree.file(deep + "/d/beyond", 1000);
    const auto preview = previewAppsClean(device.services(), {"com.example.a"});
    ASSERT_TRUE(preview.has_value());
    EXPECT_EQ(preview->wouldFree, 7U);
    EXPECT_THAT(preview->entries,
                ElementsAre(Entry{AppsDevice::containerPath("CA") + "/tmp/d", 7}));
}

/// Apps with anything in their folders, some of it protected; their identifiers.
std::vector<std::string> anyApps(AppsDevice& device) {
    std::vector<std::string> identifiers;
    std::vector<std::string> folders = {std::string(kRoot) + "/var/tmp",
                                        std::string(kRoot) + "/var/mobile/Library/Caches",
                                        std::string(kRoot) + "/com.example.n0-x/tmp"};
    const auto apps = *rc::gen::inRange(1, 4);
    for (int i = 0; i < apps; ++i) {
        identifiers.push_back("com.example.n" + std::to_string(i));
        const std::string data = device.container("C" + std::to_string(i), identifiers.back());
        for (const char* folder : {"/Library/Caches", "/tmp", "/Library/WebKit", "/Documents"})
            folders.push_back(data + folder);
    }
    const auto count = *rc::gen::inRange(0, 30);
    for (int i = 0; i < count; ++i) {
        std::string path = *rc::gen::elementOf(folders);
        const auto levels = *rc::gen::inRange(0, 3);
        for (int level = 0; level < levels; ++level)
            path += *rc::gen::element<std::string>("/d", "/.e", "/f g");
        const bool isProtected = *rc::gen::inRange(0, 6) == 0;
        if (isProtected && *rc::gen::arbitrary<bool>())
            RC_ASSERT(device.pathWhitelist.addPathToWhitelist(path).has_value());
        path += "/x" + std::to_string(i);
        if (*rc::gen::inRange(0, 5) == 0) {
            device.tree.link(path,
                             *rc::gen::element<std::string>("/", "/nowhere", "..", "/var/mobile"));
        } else {
            device.tree.file(path, *rc::gen::inRange<std::uint64_t>(0, 10'000));
        }
        if (isProtected) RC_ASSERT(device.pathWhitelist.addPathToWhitelist(path).has_value());
    }
    return identifiers;
}

bool liesIn(const std::string& path, const std::string& above) {
    return path == above || path.starts_with(above + "/");
}

RC_GTEST_PROP(AppCleanPreview, TheCleanRemovesWhatWasPreviewedAndFreesThatMany, ()) {
    AppsDevice device;
    const auto identifiers = anyApps(device);
    const auto before = everything(device);
    const auto preview = previewAppsClean(device.services(), identifiers);
    RC_ASSERT(preview.has_value());
    RC_ASSERT(everything(device) == before);

    ThirdPartyAppCacheManager manager(device.services());
    const auto outcome = device.cleanBatch(manager, identifiers);
    RC_ASSERT(outcome.success);
    RC_ASSERT(outcome.bytes == preview->wouldFree);
    std::uint64_t sum = 0;
    for (const Entry& entry : preview->entries)
        sum += entry.size;
    RC_ASSERT(sum == preview->wouldFree);

    std::set<std::string> expected;
    for (const std::string& path : before) {
        const bool goes = std::ranges::any_of(
            preview->entries, [&](const Entry& entry) { return liesIn(path, entry.path); });
        if (!goes) expected.insert(path);
    }
    RC_ASSERT(everything(device) == expected);
}

RC_GTEST_PROP(AppCleaning, WhatTheScanLosesIsWhatTheCleanFrees, ()) {
    AppsDevice device;
    const auto identifiers = anyApps(device);
    ThirdPartyAppCacheManager manager(device.services());
    AppCacheInfo info;
    info.bundleIdentifier = identifiers.front();
    info.dataPath = AppsDevice::containerPath("C0");
    manager.calculateCacheSizeForAppInfo(info);
    const auto before = info.totalSize;
    const auto freed = device.clean(manager, identifiers.front()).bytes;
    manager.calculateCacheSizeForAppInfo(info);
    RC_ASSERT(before - info.totalSize == freed);
}

}  // namespace
}  // namespace sweepwright
