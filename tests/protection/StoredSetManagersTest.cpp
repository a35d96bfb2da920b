#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/log/Log.h"
#include "protection/AppWhitelistManager.h"
#include "protection/CustomPathManager.h"
#include "protection/OrderedStringSet.h"
#include "protection/StoredDefaults.h"

namespace sweepwright {
namespace {

using platform::LogCapture;
using platform::PropertyList;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kApps = "AppWhitelistBundleIdentifiers";
const std::string kPaths = "CustomCleanPaths";

class AppWhitelist : public testing::Test {
  protected:
    test::StoredDefaults stored_;
    AppWhitelistManager manager_{stored_.defaults};
};

class CustomPaths : public testing::Test {
  protected:
    test::StoredDefaults stored_;
    CustomPathManager manager_{stored_.defaults};
};

TEST(OrderedStringSet, KeepsTheOrderAndOneOfEach) {
    OrderedStringSet set({"b", "a", "b"});
    EXPECT_THAT(set.strings(), ElementsAre("b", "a"));
    EXPECT_FALSE(set.add("a"));
    EXPECT_TRUE(set.add("c"));
    EXPECT_TRUE(set.remove("b"));
    EXPECT_FALSE(set.remove("b"));
    EXPECT_FALSE(set.contains("b"));
    EXPECT_TRUE(set.contains("c"));
    EXPECT_THAT(set.strings(), ElementsAre("a", "c"));
}

TEST_F(AppWhitelist, StartsEmpty) {
    EXPECT_EQ(manager_.getWhitelistCount(), 0U);
    EXPECT_THAT(manager_.getAllWhitelistedApps(), IsEmpty());
    EXPECT_TRUE(manager_.readiness());
    EXPECT_THAT(stored_.stored(kApps), ElementsAre("<absent>"));
}

TEST_F(AppWhitelist, AddingTwiceLeavesOneMemberAndOneStoredEntry) {
    const LogCapture log;
    EXPECT_TRUE(manager_.addAppToWhitelist("com.example.App"));
    EXPECT_TRUE(manager_.addAppToWhitelist("com.example.App"));
    EXPECT_EQ(manager_.getWhitelistCount(), 1U);
    EXPECT_THAT(stored_.stored(kApps), ElementsAre("com.example.App"));
    EXPECT_THAT(log.lines(), ElementsAre("✅ 已添加应用到白名单: com.example.App",
                                         "✅ 已添加应用到白名单: com.example.App"));
}

TEST_F(AppWhitelist, IdentifiersAreComparedExactly) {
    EXPECT_TRUE(manager_.addAppToWhitelist("com.example.App"));
    EXPECT_TRUE(manager_.addAppToWhitelist("com.example.app"));
    EXPECT_TRUE(manager_.addAppToWhitelist(" com.example.app"));
    EXPECT_THAT(manager_.getAllWhitelistedApps(),
                ElementsAre("com.example.App", "com.example.app", " com.example.app"));
    EXPECT_TRUE(manager_.isAppInWhitelist("com.example.App"));
    EXPECT_FALSE(manager_.isAppInWhitelist("com.example"));
    EXPECT_FALSE(manager_.isAppInWhitelist("com.example.App.x"));
    EXPECT_FALSE(manager_.isAppInWhitelist(""));
}

TEST_F(AppWhitelist, RemovingAnAbsentIdentifierIsNoError) {
    EXPECT_TRUE(manager_.addAppToWhitelist("a"));
    const LogCapture log;
    EXPECT_TRUE(manager_.removeAppFromWhitelist("b"));
    EXPECT_TRUE(manager_.removeAppFromWhitelist("a"));
    EXPECT_THAT(log.lines(), ElementsAre("✅ 已从白名单移除应用: b", "✅ 已从白名单移除应用: a"));
    EXPECT_FALSE(manager_.isAppInWhitelist("a"));
    EXPECT_THAT(stored_.stored(kApps), IsEmpty());
}

TEST_F(AppWhitelist, EmptyIdentifiersAreIgnored) {
    const LogCapture log;
    EXPECT_TRUE(manager_.addAppToWhitelist(""));
    EXPECT_TRUE(manager_.removeAppFromWhitelist(""));
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(stored_.stored(kApps), ElementsAre("<absent>"));
}

TEST_F(AppWhitelist, ClearingEmptiesIt) {
    EXPECT_TRUE(manager_.addAppToWhitelist("a"));
    const LogCapture log;
    EXPECT_TRUE(manager_.clearAllWhitelistedApps());
    EXPECT_THAT(log.lines(), ElementsAre("✅ 已清除所有白名单"));
    EXPECT_EQ(manager_.getWhitelistCount(), 0U);
    EXPECT_THAT(stored_.stored(kApps), IsEmpty());
}

TEST_F(AppWhitelist, AnotherManagerOfTheFileReadsWhatWasAdded) {
    AppWhitelistManager other(stored_.defaults);
    EXPECT_TRUE(manager_.addAppToWhitelist("a"));
    EXPECT_TRUE(other.addAppToWhitelist("b"));
    EXPECT_THAT(other.getAllWhitelistedApps(), ElementsAre("a", "b"));
    EXPECT_FALSE(manager_.isAppInWhitelist("b"));
    manager_.reload();
    EXPECT_TRUE(manager_.isAppInWhitelist("b"));
}

TEST_F(AppWhitelist, AListThatCanNotBeReadMakesItUnreadyAndIsNotWrittenOver) {
    EXPECT_TRUE(manager_.addAppToWhitelist("known"));
    const PropertyList wrong(PropertyList::Array{"a", PropertyList(true)});
    ASSERT_TRUE(stored_.defaults.set(kApps, wrong));
    manager_.reload();
    ASSERT_FALSE(manager_.readiness());
    EXPECT_EQ(manager_.readiness().error().description,
              stored_.file + ": \"AppWhitelistBundleIdentifiers\" is not a list of texts");
    EXPECT_TRUE(manager_.isAppInWhitelist("known"));
    EXPECT_FALSE(manager_.addAppToWhitelist("b"));
    EXPECT_FALSE(manager_.removeAppFromWhitelist("known"));
    EXPECT_FALSE(manager_.clearAllWhitelistedApps());
    EXPECT_EQ(stored_.defaults.object(kApps), wrong);
    EXPECT_THAT(manager_.getAllWhitelistedApps(), ElementsAre("known"));
}

TEST_F(AppWhitelist, ADamagedFileMakesItUnready) {
    stored_.damage();
    manager_.reload();
    EXPECT_FALSE(manager_.readiness());
    EXPECT_FALSE(manager_.addAppToWhitelist("a"));
}

TEST_F(CustomPaths, StartEmpty) {
    EXPECT_EQ(manager_.getCustomPathCount(), 0U);
    EXPECT_THAT(manager_.getAllCustomPaths(), IsEmpty());
    EXPECT_FALSE(manager_.isCustomPath("/a"));
    EXPECT_TRUE(manager_.readiness());
}

TEST_F(CustomPaths, AreKeptAsTypedInTheOrderAdded) {
    const LogCapture log;
    EXPECT_TRUE(manager_.addCustomPath("/var/b/"));
    EXPECT_TRUE(manager_.addCustomPath("relative"));
    EXPECT_TRUE(manager_.addCustomPath("/var/b/"));
    EXPECT_TRUE(manager_.addCustomPath("/\xFF"));
    EXPECT_THAT(stored_.stored(kPaths), ElementsAre("/var/b/", "relative", "/\xFF"));
    EXPECT_THAT(manager_.getAllCustomPaths(), ElementsAre("/var/b/", "relative", "/\xFF"));
    EXPECT_EQ(manager_.getCustomPathCount(), 3U);
    EXPECT_EQ(log.lines().front(), "✅ 已添加自定义路径: /var/b/");
    EXPECT_THAT(CustomPathManager(stored_.defaults).getAllCustomPaths(),
                ElementsAre("/var/b/", "relative", "/\xFF"));
}

TEST_F(CustomPaths, MatchByTheirBytesInBothDirections) {
    EXPECT_TRUE(manager_.addCustomPath("/var/mobile/Media/Foo"));
    EXPECT_TRUE(manager_.isCustomPath("/var/mobile/Media/Foo"));
    EXPECT_TRUE(manager_.isCustomPath("/var/mobile/Media/Foo/x"));
    EXPECT_TRUE(manager_.isCustomPath("/var/mobile/Media/FooBar"));
    EXPECT_TRUE(manager_.isCustomPath("/var/mobile"));
    EXPECT_TRUE(manager_.isCustomPath("/"));
    EXPECT_FALSE(manager_.isCustomPath("/var/mobile/Media/Bar"));
    EXPECT_FALSE(manager_.isCustomPath("/VAR"));
    EXPECT_FALSE(manager_.isCustomPath(""));
}

TEST_F(CustomPaths, ATrailingSlashIsKeptAndThePathWithoutItIsStillOne) {
    EXPECT_TRUE(manager_.addCustomPath("/var/x/"));
    EXPECT_THAT(stored_.stored(kPaths), ElementsAre("/var/x/"));
    EXPECT_TRUE(manager_.isCustomPath("/var/x"));
}

TEST_F(CustomPaths, RemovingIsExactAndClearingEmpties) {
    EXPECT_TRUE(manager_.addCustomPath("/a"));
    EXPECT_TRUE(manager_.addCustomPath("/b"));
    const LogCapture log;
    EXPECT_TRUE(manager_.removeCustomPath("/a/"));
    EXPECT_EQ(manager_.getCustomPathCount(), 2U);
    EXPECT_TRUE(manager_.removeCustomPath("/a"));
    EXPECT_THAT(stored_.stored(kPaths), ElementsAre("/b"));
    EXPECT_TRUE(manager_.clearAllCustomPaths());
    EXPECT_THAT(stored_.stored(kPaths), IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre("✅ 已移除自定义路径: /a/", "✅ 已移除自定义路径: /a",
                                         "✅ 已清除所有自定义路径"));
}

TEST_F(CustomPaths, EmptyPathsAreIgnored) {
    const LogCapture log;
    EXPECT_TRUE(manager_.addCustomPath(""));
    EXPECT_TRUE(manager_.removeCustomPath(""));
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(stored_.stored(kPaths), ElementsAre("<absent>"));
}

TEST_F(CustomPaths, AListThatCanNotBeReadMakesThemUnready) {
    ASSERT_TRUE(stored_.defaults.set(kPaths, "text"));
    manager_.reload();
    ASSERT_FALSE(manager_.readiness());
    EXPECT_EQ(manager_.readiness().error().description,
              stored_.file + ": \"CustomCleanPaths\" is not a list of texts");
    EXPECT_FALSE(manager_.addCustomPath("/a"));
    EXPECT_EQ(stored_.defaults.string(kPaths), "text");
}

TEST_F(CustomPaths, AChangeThatCanNotBeStoredIsAnErrorAndChangesNothing) {
    EXPECT_TRUE(manager_.addCustomPath("/a"));
    stored_.files.full = true;
    const LogCapture log;
    EXPECT_FALSE(manager_.addCustomPath("/b"));
    EXPECT_FALSE(manager_.clearAllCustomPaths());
    EXPECT_THAT(manager_.getAllCustomPaths(), ElementsAre("/a"));
    EXPECT_THAT(log.lines(), testing::Each(testing::StartsWith("❌ 保存 CustomCleanPaths 失败: ")));
}

}  // namespace
}  // namespace sweepwright
