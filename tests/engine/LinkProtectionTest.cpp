#include <cerrno>
#include <filesystem>

#include "EngineTest.h"
#include "engine/LinkProtection.h"

namespace sweepwright {
namespace {

using platform::LastLink;
using test::EngineDevice;
using test::Operation;
using testing::Contains;

/// A device whose "/var" is a link to "private/var", as on a real one.
class LinkProtectionTest : public EngineTest {
  protected:
    LinkProtectionTest() {
        std::filesystem::rename(d_.tree.host("/var"), d_.tree.host("/private-var"));
        d_.tree.folder("/private");
        std::filesystem::rename(d_.tree.host("/private-var"), d_.tree.host("/private/var"));
        d_.tree.link("/var", "private/var");
    }

    bool leads(const std::string& path) {
        return ProtectedPlaces::find(d_.files, d_.pathWhitelist)
            .whitelisted.touches(d_.files.resolvedPath(path).value_or(path));
    }
    std::uint64_t empty(const std::string& path) {
        return d_.engine.removeContentsOfDirectory(path, {});
    }
};

TEST_F(LinkProtectionTest, TheOtherNameOfAProtectedFolderIsProtected) {
    d_.tree.file("/var/mobile/keep/a", 10);
    d_.tree.file("/var/mobile/other/a", 10);
    d_.protect("/var/mobile/keep");
    for (const char* path : {"/private/var/mobile/keep", "/private/var/mobile/keep/a",
                             "/private/var/mobile", "/private", "/var/mobile/keep"})
        EXPECT_TRUE(leads(path)) << path;
    for (const char* path : {"/private/var/mobile/other", "/var/mobile/other", "/"})
        EXPECT_FALSE(leads(path)) << path;
}

TEST_F(LinkProtectionTest, AFolderProtectedByItsOtherNameIsProtected) {
    d_.tree.file("/var/mobile/keep/a", 10);
    d_.tree.folder("/var/mobile/keeper");
    d_.protect("/private/var/mobile/keep");
    EXPECT_TRUE(leads("/var/mobile/keep"));
    EXPECT_TRUE(leads("/var/mobile"));
    EXPECT_FALSE(leads("/var/mobile/keeper"));
}

TEST_F(LinkProtectionTest, CleaningByTheOtherNameLeavesTheProtected) {
    d_.tree.file("/var/mobile/keep/a", 10);
    d_.protect("/var/mobile/keep");
    EXPECT_EQ(empty("/private/var/mobile/keep"), 0U);
    EXPECT_EQ(empty("/private/var/mobile"), 0U);
    EXPECT_TRUE(d_.tree.exists("/var/mobile/keep/a"));
    EXPECT_TRUE(logged("🔒 白名单目录跳过删除: /private/var/mobile/keep"));
}

TEST_F(LinkProtectionTest, CleaningTheWholeDeviceLeavesTheProtectedByEitherName) {
    d_.tree.file("/var/mobile/keep/a", 10);
    d_.tree.file("/x", 10);
    d_.protect("/var/mobile/keep");
    for (const char* root : {"/", "//", "/.", "/var/../.."}) {
        empty(root);
        EXPECT_TRUE(d_.tree.exists("/var/mobile/keep/a")) << root;
    }
    EXPECT_FALSE(d_.tree.exists("/x"));
    EXPECT_TRUE(logged("🔒 跳过白名单路径: /private"));
}

TEST_F(LinkProtectionTest, CleaningAlongDotsLeavesTheProtected) {
    d_.tree.file("/var/mobile/keep/a", 10);
    d_.tree.folder("/var/mobile/other");
    d_.protect("/var/mobile/keep");
    EXPECT_EQ(empty("/var/mobile/other/../keep"), 0U);
    EXPECT_EQ(empty("/var/mobile/other/.."), 0U);
    EXPECT_EQ(empty("/var//mobile/./keep"), 0U);
    EXPECT_TRUE(d_.tree.exists("/var/mobile/keep/a"));
}

TEST_F(LinkProtectionTest, CleaningThroughALinkOnTheWayLeavesTheProtected) {
    d_.tree.file("/var/mobile/keep/sub/a", 10);
    d_.tree.link("/var/mobile/way", "keep");
    d_.protect("/var/mobile/keep");
    EXPECT_EQ(empty("/var/mobile/way/sub"), 0U);
    EXPECT_EQ(empty("/var/mobile/way"), 0U);
    EXPECT_TRUE(d_.tree.exists("/var/mobile/keep/sub/a"));
}

TEST_F(LinkProtectionTest, WhatAProtectedLinkLeadsToIsProtected) {
    d_.tree.file("/var/mobile/real/a", 10);
    d_.tree.link("/var/mobile/keep", "real");
    d_.protect("/var/mobile/keep");
    EXPECT_EQ(empty("/var/mobile/real"), 0U);
    EXPECT_TRUE(d_.tree.exists("/var/mobile/real/a"));
}

TEST_F(LinkProtectionTest, TheLinksByWhichAProtectedPathLeadsAreProtected) {
    d_.tree.file("/var/mobile/real/a", 10);
    d_.tree.link("/var/mobile/t/sub/link", "/var/mobile/real");
    d_.protect("/private/var/mobile/t/sub/link/a");
    EXPECT_EQ(empty("/var/mobile/t"), 0U);
    EXPECT_EQ(empty("/var/mobile/real"), 0U);
    EXPECT_TRUE(d_.tree.exists("/var/mobile/t/sub/link"));
}

TEST_F(LinkProtectionTest, AProtectedPathThatIsNotThereYetProtectsWhatWouldHoldIt) {
    d_.tree.file("/var/mobile/t/a", 10);
    d_.protect("/private/var/mobile/t/not/yet");
    EXPECT_EQ(empty("/var/mobile/t"), 0U);
}

TEST_F(LinkProtectionTest, ACustomPathByTheOtherNameLeavesTheProtected) {
    d_.tree.file("/var/mobile/keep/a", 10);
    d_.protect("/var/mobile/keep");
    d_.addCustomPath("/private/var/mobile/keep");
    EXPECT_EQ(d_.clean(CleanType::Cache).bytes, 0U);
    EXPECT_TRUE(d_.tree.exists("/var/mobile/keep/a"));
}

TEST_F(LinkProtectionTest, ASystemPathProtectedByItsOtherNameIsNotHandedToTheShell) {
    d_.tree.file("/var/MobileAsset/AssetsV2/keep/a", 10);
    d_.protect("/private/var/MobileAsset/AssetsV2/keep");
    EXPECT_EQ(empty("/var/MobileAsset/AssetsV2"), 0U);
    EXPECT_TRUE(d_.commands.commands().empty());
    EXPECT_TRUE(d_.tree.exists("/var/MobileAsset/AssetsV2/keep/a"));
}

TEST_F(LinkProtectionTest, MapsCachesAreProtectedByEitherName) {
    d_.tree.file("/var/mobile/Library/Caches/GeoServices/a", 10);
    EXPECT_EQ(empty("/private/var/mobile/Library/Caches/GeoServices"), 0U);
    EXPECT_EQ(empty("/private/var/mobile/Library/Caches"), 0U);
    EXPECT_TRUE(d_.tree.exists("/var/mobile/Library/Caches/GeoServices/a"));
}

TEST_F(LinkProtectionTest, WhatIsNotProtectedGoesByEitherName) {
    d_.tree.file("/var/mobile/a/x", 10);
    d_.tree.file("/var/mobile/b/x", 10);
    EXPECT_EQ(empty("/private/var/mobile/a"), 10U);
    EXPECT_EQ(empty("/var/mobile/b"), 10U);
}

TEST_F(LinkProtectionTest, AnOpenDirectoryIsProtectedByWhereItLiesAndNotByItsPath) {
    d_.tree.folder("/var/mobile/keep/sub");
    d_.tree.folder("/var/mobile/free/sub");
    d_.protect("/var/mobile/keep");
    const auto keep = d_.tree.files().openDirectory("/var/mobile/keep", LastLink::Refuse).value();
    const auto free = d_.tree.files().openDirectory("/var/mobile/free", LastLink::Refuse).value();
    // Both change places behind the open directories.
    const auto move = [&](const char* from, const char* to) {
        std::filesystem::rename(d_.tree.host(from), d_.tree.host(to));
    };
    move("/var/mobile/keep", "/var/mobile/x");
    move("/var/mobile/free", "/var/mobile/keep");
    move("/var/mobile/x", "/var/mobile/free");
    EXPECT_FALSE(LinkProtection(d_.files, d_.pathWhitelist, keep).coversDirectory());
    EXPECT_TRUE(LinkProtection(d_.files, d_.pathWhitelist, free).coversDirectory());
}

TEST_F(LinkProtectionTest, EntriesAreProtectedOneByOne) {
    d_.tree.folder("/var/mobile/keep");
    d_.protect("/var/mobile/keep");
    const auto mobile =
        d_.tree.files().openDirectory("/private/var/mobile", LastLink::Refuse).value();
    const LinkProtection protection(d_.files, d_.pathWhitelist, mobile);
    EXPECT_TRUE(protection.coversDirectory());
    EXPECT_TRUE(protection.covers("keep"));
    EXPECT_FALSE(protection.covers("keeper"));
}

TEST_F(LinkProtectionTest, ADirectoryThatIsGoneIsProtectedBecauseNobodyCanTellWhereItLies) {
    d_.tree.folder("/var/mobile/gone");
    const auto gone = d_.tree.files().openDirectory("/var/mobile/gone", LastLink::Refuse).value();
    std::filesystem::remove(d_.tree.host("/var/mobile/gone"));
    const LinkProtection protection(d_.files, d_.pathWhitelist, gone);
    EXPECT_TRUE(protection.coversDirectory());
    EXPECT_TRUE(protection.covers("a"));
}

TEST_F(LinkProtectionTest, ADirectoryMovedOutOfTheDeviceIsProtected) {
    const test::TemporaryFolder outside;
    d_.tree.folder("/var/mobile/moved");
    const auto moved = d_.tree.files().openDirectory("/var/mobile/moved", LastLink::Refuse).value();
    std::filesystem::rename(d_.tree.host("/var/mobile/moved"), outside.path() + "/moved");
    EXPECT_TRUE(LinkProtection(d_.files, d_.pathWhitelist, moved).coversDirectory());
}

TEST_F(LinkProtectionTest, WhereTheHostCannotTellThePathIsResolved) {
    d_.tree.folder("/var/mobile/keep");
    d_.tree.folder("/var/mobile/free");
    d_.protect("/var/mobile/keep");
    d_.files.failWhere(
        [](Operation operation, const std::string&) { return operation == Operation::HostPath; },
        EPERM);
    const auto covers = [&](const std::string& path) {
        const auto opened = d_.tree.files().openDirectory(path, LastLink::Refuse).value();
        return LinkProtection(d_.files, d_.pathWhitelist, opened).coversDirectory();
    };
    EXPECT_TRUE(covers("/private/var/mobile/keep"));
    EXPECT_FALSE(covers("/private/var/mobile/free"));
}

TEST_F(LinkProtectionTest, WhoProtectsAPathIsTold) {
    d_.tree.file("/var/mobile/keep/a", 10);
    d_.protect("/var/mobile/keep/");
    const auto by = [&](const std::string& path) {
        return protectingPath(d_.files, d_.pathWhitelist, path);
    };
    EXPECT_EQ(by("/var/mobile/keep"), "/var/mobile/keep");
    EXPECT_EQ(by("/var/mobile/keep/a/"), "/var/mobile/keep");
    EXPECT_EQ(by("/private/var/mobile/keep/a"), "/var/mobile/keep");
    EXPECT_EQ(by("/var/mobile/Library/Caches"), "/var/mobile/Library/Caches/com.apple.Maps");
    EXPECT_EQ(by("/var/other"), "");
    EXPECT_EQ(by("/private/var/other"), "");
    d_.tree.link("/var/mobile/t/link", "/var/mobile/keep");
    d_.protect("/private/var/mobile/t/link/b");
    EXPECT_EQ(by("/var/mobile/t/link"), "/var/mobile/keep");
    EXPECT_EQ(by("/var/mobile/t"), "/private/var/mobile/t/link/b");
}

}  // namespace
}  // namespace sweepwright
