#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/log/Log.h"
#include "protection/PathWhitelistManager.h"
#include "protection/StoredDefaults.h"

namespace sweepwright {
namespace {

using platform::LogCapture;
using platform::PropertyList;
using test::kPathsKey;
using test::Strings;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kMaps = "/var/mobile/Library/Caches/com.apple.Maps";
const std::string kMapped = "/var/mobile/Library/Caches/MappedImageCache";
const std::string kGeo = "/var/mobile/Library/Caches/GeoServices";

class PathWhitelist : public testing::Test {
  protected:
    test::StoredDefaults stored_;
    PathWhitelistManager manager_{stored_.defaults};

    /// The answer for `path`, and the lines logged by it.
    bool asks(const std::string& path, const Strings& lines) const {
        const LogCapture log;
        const bool answer = manager_.isPathInWhitelist(path);
        EXPECT_EQ(log.lines(), lines) << path;
        return answer;
    }
};

TEST_F(PathWhitelist, NormalizingTakesTrailingSlashesOffAndNothingElse) {
    EXPECT_EQ(PathWhitelistManager::normalizePath("/a/b///"), "/a/b");
    EXPECT_EQ(PathWhitelistManager::normalizePath("/"), "/");
    EXPECT_EQ(PathWhitelistManager::normalizePath("///"), "/");
    EXPECT_EQ(PathWhitelistManager::normalizePath(""), "");
    EXPECT_EQ(PathWhitelistManager::normalizePath("/A//b/../c/."), "/A//b/../c/.");
    EXPECT_EQ(PathWhitelistManager::normalizePath("/private/var/"), "/private/var");
}

TEST_F(PathWhitelist, HoldsTheThreeBuiltInPathsFromTheStart) {
    EXPECT_THAT(PathWhitelistManager::builtInPathsList(), ElementsAre(kMaps, kMapped, kGeo));
    EXPECT_THAT(PathWhitelistManager::getBuiltInPaths(), ElementsAre(kMaps, kMapped, kGeo));
    EXPECT_THAT(manager_.whitelistedPaths(), ElementsAre(kMaps, kMapped, kGeo));
    EXPECT_THAT(manager_.getAllWhitelistedPaths(), ElementsAre(kMaps, kMapped, kGeo));
    EXPECT_THAT(manager_.getUserDefinedPaths(), IsEmpty());
    EXPECT_EQ(manager_.getWhitelistCount(), 3U);
    EXPECT_TRUE(manager_.readiness());
    EXPECT_THAT(stored_.stored(kPathsKey), ElementsAre("<absent>")) << "starting stores nothing";
}

TEST_F(PathWhitelist, ABuiltInPathIsProtected) {
    EXPECT_TRUE(asks(kMapped + "//", {"🔒 白名单内置路径匹配: " + kMapped + " == " + kMapped}));
}

TEST_F(PathWhitelist, WhatLiesInABuiltInPathIsProtected) {
    const std::string tile = kMaps + "/tiles/x";
    EXPECT_TRUE(
        asks(tile, {"🔒 白名单内置路径子路径匹配: " + tile + " 是 " + kMaps + " 的子路径"}));
}

TEST_F(PathWhitelist, EveryDirectoryAboveABuiltInPathIsProtected) {
    for (const std::string path :
         {"/var/mobile/Library/Caches", "/var/mobile/Library", "/var/mobile", "/var"}) {
        EXPECT_TRUE(
            asks(path, {"🔒 白名单内置路径父路径匹配: " + path + " 包含内置路径 " + kMaps}));
    }
}

TEST_F(PathWhitelist, WhatLiesAboveAProtectedPathMerelyHoldsIt) {
    ASSERT_TRUE(manager_.addPathToWhitelist("/var/a/b").has_value());
    for (const char* path : {"/var", "/var/a", "/var/a/", "/var/mobile/Library/Caches"})
        EXPECT_TRUE(manager_.holdsProtectedPath(path)) << path;
    for (const char* path : {"/var/a/b", "/var/a/b/", "/var/a/b/c", "/var/a/bc", "/x", "/", ""})
        EXPECT_FALSE(manager_.holdsProtectedPath(path)) << path;
    EXPECT_FALSE(manager_.holdsProtectedPath(kMaps + "/x"));
    // Protected both ways: protected it is.
    ASSERT_TRUE(manager_.addPathToWhitelist("/var/a").has_value());
    EXPECT_FALSE(manager_.holdsProtectedPath("/var/a"));
}

TEST_F(PathWhitelist, TheRootIsAboveNothing) {
    EXPECT_FALSE(asks("/", {}));
}

TEST_F(PathWhitelist, ANameThatOnlyBeginsAlikeIsNotProtected) {
    EXPECT_FALSE(asks(kMaps + "Extra", {}));
    EXPECT_FALSE(asks("/var/mobile/Library/Cache", {}));
    EXPECT_FALSE(asks("/va", {}));
}

TEST_F(PathWhitelist, TheEmptyPathIsNotProtected) {
    EXPECT_FALSE(asks("", {}));
}

TEST_F(PathWhitelist, CaseAndDoubledSlashesMatter) {
    EXPECT_FALSE(asks("/var/mobile/Library/Caches/com.apple.maps", {}));
    EXPECT_FALSE(asks("/var/mobile//Library/Caches/com.apple.Maps", {}));
    EXPECT_FALSE(asks("/private" + kMaps, {}));
}

TEST_F(PathWhitelist, AnAddedPathIsStoredNormalizedAndProtectsWhatLiesInIt) {
    const LogCapture log;
    EXPECT_TRUE(manager_.addPathToWhitelist("/var/mobile/Media/DCIM/"));
    EXPECT_THAT(log.lines(), ElementsAre("✅ 已添加路径到白名单: /var/mobile/Media/DCIM/ (标准化: "
                                         "/var/mobile/Media/DCIM)"));
    EXPECT_THAT(stored_.stored(kPathsKey), ElementsAre("/var/mobile/Media/DCIM"));

    const std::string dcim = "/var/mobile/Media/DCIM";
    const std::string photo = dcim + "/100APPLE/IMG_0001.JPG";
    EXPECT_TRUE(asks(photo, {"🔒 白名单子路径匹配: " + photo + " 是 " + dcim + " 的子路径"}));
    EXPECT_TRUE(asks(dcim, {"🔒 白名单精确匹配: " + dcim}));
    EXPECT_TRUE(asks("/var/mobile/Media/",
                     {"🔒 白名单父路径匹配: /var/mobile/Media 包含白名单路径 " + dcim}));
}

TEST_F(PathWhitelist, ABuiltInReasonComesBeforeAUsersOne) {
    EXPECT_TRUE(manager_.addPathToWhitelist("/var/mobile"));
    EXPECT_TRUE(
        asks("/var/mobile", {"🔒 白名单内置路径父路径匹配: /var/mobile 包含内置路径 " + kMaps}));
}

TEST_F(PathWhitelist, ThePathItselfComesBeforeOneAboveIt) {
    EXPECT_TRUE(manager_.addPathToWhitelist("/a"));
    EXPECT_TRUE(manager_.addPathToWhitelist("/a/b"));
    EXPECT_TRUE(asks("/a/b", {"🔒 白名单精确匹配: /a/b"}));
    EXPECT_TRUE(asks("/a/b/c", {"🔒 白名单子路径匹配: /a/b/c 是 /a 的子路径"}));
}

TEST_F(PathWhitelist, AUsersRootProtectsTheRootAlone) {
    EXPECT_TRUE(manager_.addPathToWhitelist("//"));
    EXPECT_THAT(stored_.stored(kPathsKey), ElementsAre("/"));
    EXPECT_TRUE(asks("/", {"🔒 白名单精确匹配: /"}));
    EXPECT_FALSE(asks("/usr", {}));
}

TEST_F(PathWhitelist, AddingTwiceKeepsOneEntryAndTheOrder) {
    for (const auto* path : {"/b", "/a", "/b/"})
        EXPECT_TRUE(manager_.addPathToWhitelist(path));
    EXPECT_THAT(stored_.stored(kPathsKey), ElementsAre("/b", "/a"));
    EXPECT_THAT(manager_.getUserDefinedPaths(), ElementsAre("/b", "/a"));
    EXPECT_THAT(manager_.getAllWhitelistedPaths(), ElementsAre(kMaps, kMapped, kGeo, "/b", "/a"));
    EXPECT_EQ(manager_.getWhitelistCount(), 5U);
}

TEST_F(PathWhitelist, EmptyPathsAreIgnored) {
    const LogCapture log;
    EXPECT_TRUE(manager_.addPathToWhitelist(""));
    EXPECT_TRUE(manager_.removePathFromWhitelist(""));
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(stored_.stored(kPathsKey), ElementsAre("<absent>"));
    EXPECT_EQ(manager_.getWhitelistCount(), 3U);
}

TEST_F(PathWhitelist, AddingABuiltInPathIsAcceptedAndNeverStored) {
    EXPECT_TRUE(manager_.addPathToWhitelist("/x"));
    const LogCapture log;
    EXPECT_TRUE(manager_.addPathToWhitelist(kGeo + "/"));
    EXPECT_THAT(log.lines(),
                ElementsAre("✅ 已添加路径到白名单: " + kGeo + "/ (标准化: " + kGeo + ")"));
    EXPECT_THAT(stored_.stored(kPathsKey), ElementsAre("/x"));
    EXPECT_EQ(manager_.getWhitelistCount(), 4U);
}

TEST_F(PathWhitelist, RemovingABuiltInPathIsRefused) {
    EXPECT_TRUE(manager_.addPathToWhitelist("/x"));
    const LogCapture log;
    EXPECT_TRUE(manager_.removePathFromWhitelist(kGeo + "/"));
    EXPECT_THAT(log.lines(), ElementsAre("⚠️ 不能删除内置路径: " + kGeo));
    EXPECT_THAT(stored_.stored(kPathsKey), ElementsAre("/x"));
    EXPECT_TRUE(manager_.isPathInWhitelist(kGeo));
}

TEST_F(PathWhitelist, RemovingTakesAPathOffAndLogsEvenWhenItWasNotThere) {
    EXPECT_TRUE(manager_.addPathToWhitelist("/a/b"));
    const LogCapture log;
    EXPECT_TRUE(manager_.removePathFromWhitelist("/a/b//"));
    EXPECT_TRUE(manager_.removePathFromWhitelist("/none"));
    EXPECT_THAT(log.lines(), ElementsAre("✅ 已从白名单移除路径: /a/b// (标准化: /a/b)",
                                         "✅ 已从白名单移除路径: /none (标准化: /none)"));
    EXPECT_THAT(stored_.stored(kPathsKey), IsEmpty());
    EXPECT_FALSE(manager_.isPathInWhitelist("/a/b"));
}

TEST_F(PathWhitelist, ClearingLeavesTheBuiltInPaths) {
    EXPECT_TRUE(manager_.addPathToWhitelist("/a"));
    EXPECT_TRUE(manager_.addPathToWhitelist("/b"));
    const LogCapture log;
    EXPECT_TRUE(manager_.clearAllWhitelistedPaths());
    EXPECT_THAT(log.lines(), ElementsAre("✅ 已清除所有用户自定义路径白名单（保留内置路径）"));
    EXPECT_EQ(manager_.getWhitelistCount(), 3U);
    EXPECT_THAT(manager_.getUserDefinedPaths(), IsEmpty());
    EXPECT_THAT(stored_.stored(kPathsKey), IsEmpty());
    EXPECT_TRUE(manager_.isPathInWhitelist(kMaps));
}

TEST_F(PathWhitelist, ABuiltInPathIsTheVeryPathAndNotItsChild) {
    EXPECT_TRUE(PathWhitelistManager::isBuiltInPath(kMaps + "/"));
    EXPECT_FALSE(PathWhitelistManager::isBuiltInPath(kMaps + "/tiles"));
    EXPECT_FALSE(PathWhitelistManager::isBuiltInPath("/var"));
    EXPECT_FALSE(PathWhitelistManager::isBuiltInPath(""));
}

TEST_F(PathWhitelist, AStoredListWithDuplicatesIsCleanedAtOnce) {
    stored_.store(kPathsKey, {"/a/b/", "/a/b"});
    const PathWhitelistManager manager(stored_.defaults);
    EXPECT_THAT(manager.getUserDefinedPaths(), ElementsAre("/a/b"));
    EXPECT_THAT(stored_.stored(kPathsKey), ElementsAre("/a/b"));
}

TEST_F(PathWhitelist, AStoredListWithoutDuplicatesIsLeftAsItIsUntilAChange) {
    stored_.store(kPathsKey, {"/a/b/", kGeo});
    PathWhitelistManager manager(stored_.defaults);
    EXPECT_THAT(manager.getUserDefinedPaths(), ElementsAre("/a/b"));
    EXPECT_EQ(manager.getWhitelistCount(), 4U);
    EXPECT_THAT(stored_.stored(kPathsKey), ElementsAre("/a/b/", kGeo));
    EXPECT_TRUE(manager.addPathToWhitelist("/c"));
    EXPECT_THAT(stored_.stored(kPathsKey), ElementsAre("/a/b", "/c"));
}

TEST_F(PathWhitelist, AnEmptyStoredEntryProtectsEveryAbsolutePath) {
    stored_.store(kPathsKey, {""});
    manager_.reload();
    EXPECT_TRUE(asks("/usr", {"🔒 白名单子路径匹配: /usr 是  的子路径"}));
    EXPECT_FALSE(manager_.isFree("/usr"));
}

TEST_F(PathWhitelist, APathThatIsNotUtf8IsKeptByteForByte) {
    const std::string path = "/var/\xFF\xFE";
    EXPECT_TRUE(manager_.addPathToWhitelist(path));
    const PathWhitelistManager again(stored_.defaults);
    EXPECT_THAT(again.getUserDefinedPaths(), ElementsAre(path));
    EXPECT_TRUE(again.isPathInWhitelist(path + "/x"));
}

TEST_F(PathWhitelist, TwoManagersOfOneFileLoseNothing) {
    PathWhitelistManager other(stored_.defaults);
    EXPECT_TRUE(manager_.addPathToWhitelist("/a"));
    EXPECT_TRUE(other.addPathToWhitelist("/b"));
    EXPECT_THAT(stored_.stored(kPathsKey), ElementsAre("/a", "/b"));
    EXPECT_THAT(other.getUserDefinedPaths(), ElementsAre("/a", "/b"));
    EXPECT_TRUE(manager_.removePathFromWhitelist("/a"));
    EXPECT_THAT(manager_.getUserDefinedPaths(), ElementsAre("/b"));
    EXPECT_TRUE(other.isPathInWhitelist("/a")) << "until it reads again";
    other.reload();
    EXPECT_FALSE(other.isPathInWhitelist("/a"));
}

TEST_F(PathWhitelist, AListThatIsNoListOfTextsMakesItUnreadyAndIsNotWrittenOver) {
    const PropertyList wrong[] = {PropertyList("text"), PropertyList(7), PropertyList(),
                                  PropertyList(PropertyList::Array{"/a", 7})};
    for (const PropertyList& value : wrong) {
        ASSERT_TRUE(stored_.defaults.set(kPathsKey, value));
        PathWhitelistManager manager(stored_.defaults);
        ASSERT_FALSE(manager.readiness());
        EXPECT_EQ(manager.readiness().error().description,
                  stored_.file + ": \"PathWhitelistPaths\" is not a list of texts");
        EXPECT_TRUE(manager.isPathInWhitelist(kMaps));
        EXPECT_EQ(manager.getWhitelistCount(), 3U);
        const LogCapture log;
        EXPECT_FALSE(manager.addPathToWhitelist("/x"));
        EXPECT_FALSE(manager.removePathFromWhitelist("/x"));
        EXPECT_FALSE(manager.clearAllWhitelistedPaths());
        EXPECT_THAT(log.lines(), testing::Each(HasSubstr("❌ 保存 PathWhitelistPaths 失败: ")));
        EXPECT_EQ(log.lines().size(), 3U);
        EXPECT_EQ(stored_.defaults.object(kPathsKey), value);
        EXPECT_FALSE(manager.isPathInWhitelist("/x"));
    }
}

TEST_F(PathWhitelist, ADamagedFileMakesItUnreadyAndIsNotWrittenOver) {
    EXPECT_TRUE(manager_.addPathToWhitelist("/kept"));
    stored_.damage();
    const std::string before = stored_.device.content(stored_.file);
    PathWhitelistManager fresh(stored_.defaults);
    EXPECT_FALSE(fresh.readiness());
    EXPECT_FALSE(fresh.addPathToWhitelist("/x"));
    EXPECT_EQ(stored_.device.content(stored_.file), before);

    EXPECT_TRUE(manager_.readiness()) << "as last read";
    manager_.reload();
    EXPECT_FALSE(manager_.readiness());
    EXPECT_TRUE(manager_.isPathInWhitelist("/kept")) << "what was known stays protected";
}

TEST_F(PathWhitelist, AFileSetAsideKeepsItUnreadyUntilItIsRemoved) {
    stored_.damage();
    ASSERT_TRUE(stored_.defaults.set("other", "value"));
    manager_.reload();
    EXPECT_FALSE(manager_.readiness());
    EXPECT_FALSE(manager_.addPathToWhitelist("/x"));
    EXPECT_THAT(stored_.stored(kPathsKey), ElementsAre("<absent>"));
}

TEST_F(PathWhitelist, AListThatIsReadableAgainMakesItReady) {
    ASSERT_TRUE(stored_.defaults.set(kPathsKey, 7));
    manager_.reload();
    EXPECT_FALSE(manager_.readiness());
    stored_.store(kPathsKey, {"/a"});
    manager_.reload();
    EXPECT_TRUE(manager_.readiness());
    EXPECT_TRUE(manager_.isPathInWhitelist("/a"));
}

TEST_F(PathWhitelist, AChangeThatCanNotBeStoredIsAnErrorAndChangesNothing) {
    EXPECT_TRUE(manager_.addPathToWhitelist("/a"));
    stored_.files.full = true;
    const LogCapture log;
    EXPECT_FALSE(manager_.addPathToWhitelist("/b"));
    EXPECT_FALSE(manager_.removePathFromWhitelist("/a"));
    EXPECT_FALSE(manager_.clearAllWhitelistedPaths());
    EXPECT_THAT(manager_.getUserDefinedPaths(), ElementsAre("/a"));
    EXPECT_EQ(log.lines().size(), 3U) << "no line tells of success";
    stored_.files.full = false;
    EXPECT_THAT(stored_.stored(kPathsKey), ElementsAre("/a"));
}

TEST_F(PathWhitelist, IsFreeWhereNothingInAtOrAboveCanBeProtected) {
    EXPECT_TRUE(manager_.addPathToWhitelist("/srv/keep"));
    const LogCapture log;
    EXPECT_TRUE(manager_.isFree("/srv/other"));
    EXPECT_TRUE(manager_.isFree("/srv/keeper/"));
    EXPECT_TRUE(manager_.isFree("/usr"));
    EXPECT_FALSE(manager_.isFree("/srv"));
    EXPECT_FALSE(manager_.isFree("/srv/keep/a/b"));
    EXPECT_FALSE(manager_.isFree("/")) << "not protected itself, but what lies in it is";
    EXPECT_FALSE(manager_.isFree("///"));
    EXPECT_FALSE(manager_.isFree(""));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(PathWhitelist, ReadersSeeOneStateWhileTheListChanges) {
    std::atomic<bool> stop = false;
    std::atomic<bool> lost = false;
    EXPECT_TRUE(manager_.addPathToWhitelist("/always"));
    std::vector<std::thread> readers;
    for (int i = 0; i < 3; ++i) {
        readers.emplace_back([&] {
            while (!stop) {
                const bool kept = manager_.isPathInWhitelist("/always/x") &&
                                  manager_.isPathInWhitelist(kMaps) &&
                                  !manager_.isPathInWhitelist("/never") && manager_.readiness();
                if (!kept) lost = true;
            }
        });
    }
    for (int i = 0; i < 40; ++i) {
        EXPECT_TRUE(manager_.addPathToWhitelist("/changes"));
        manager_.reload();
        EXPECT_TRUE(manager_.removePathFromWhitelist("/changes"));
    }
    stop = true;
    for (auto& reader : readers)
        reader.join();
    EXPECT_FALSE(lost);
}

TEST_F(PathWhitelist, ThreadsThatAddAtOnceLoseNothing) {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = 0; i < 10; ++i) {
                EXPECT_TRUE(manager_.addPathToWhitelist("/p" + std::to_string(thread * 10 + i)));
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(manager_.getUserDefinedPaths().size(), 40U);
    EXPECT_EQ(stored_.stored(kPathsKey), manager_.getUserDefinedPaths());
}

}  // namespace
}  // namespace sweepwright
