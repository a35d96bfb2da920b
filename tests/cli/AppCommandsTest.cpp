#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/Sweepctl.h"
#include "platform/plist/PropertyList.h"

namespace sweepwright::test {
namespace {

using nlohmann::json;
using platform::PropertyList;
using testing::HasSubstr;

const std::string kContainers = "/var/mobile/Containers/Data/Application/";

/// Installs an app with a cache and a document.
std::string install(TemporaryDevice& device, const std::string& container,
                    const std::string& identifier, std::uint64_t cacheBytes) {
    const std::string data = kContainers + container;
    device.fileWith(
        data + "/.com.apple.mobile_container_manager.metadata.plist",
        PropertyList(PropertyList::Dictionary{{"MCMMetadataIdentifier", identifier}}).toBinary());
    device.fileWith("/var/containers/Bundle/Application/" + container + "/X.app/Info.plist",
                    PropertyList(PropertyList::Dictionary{{"CFBundleIdentifier", identifier},
                                                          {"CFBundleName", "Name of " + container}})
                        .toXml());
    device.file(data + "/Library/Caches/" + container, cacheBytes);
    device.file(data + "/Documents/letter", 7);
    return data;
}

TEST(AppsCommand, ListsAppsWithNamesAndSizesLargestFirst) {
    Sweepctl sweepctl;
    const std::string chat = install(sweepctl.device(), "A", "com.example.chat", 10);
    install(sweepctl.device(), "B", "com.apple.music", 20);
    const json apps = sweepctl.json({"apps"});
    ASSERT_EQ(apps.size(), 2U);
    EXPECT_EQ(apps[0].at("bundleIdentifier"), "com.apple.music");
    EXPECT_EQ(apps[0].at("isSystemApp"), true);
    EXPECT_EQ(apps[1], (json{{"bundleIdentifier", "com.example.chat"},
                             {"appName", "Name of A"},
                             {"appIconPath", nullptr},
                             {"hasIcon", true},
                             {"cacheSize", 10},
                             {"tmpSize", 0},
                             {"totalSize", 10},
                             {"dataPath", chat},
                             {"bundlePath", "/var/containers/Bundle/Application/A/X.app"},
                             {"isSystemApp", false}}));
    EXPECT_EQ(sweepctl.json({"apps", "--third-party"}), (json{apps[1]}));
    EXPECT_THAT(sweepctl.run({"apps"}).output, HasSubstr("com.example.chat  Name of A\n"));
}

TEST(AppsCommand, OnATerminalNamesStandBeforeIdentifiersAtEveryWidth) {
    Sweepctl sweepctl;
    install(sweepctl.device(), "A", "com.example.chat", 10);
    EXPECT_EQ(sweepctl.run({"apps"}).output,
              "10 B  10 B  0 B  third-party  com.example.chat  Name of A\n");
    sweepctl.setTerminal({.output = true}, 80);
    EXPECT_EQ(sweepctl.run({"apps"}).screen,
              "TOTAL  CACHES  TEMPORARY  APP        KIND         IDENTIFIER\n"
              " 10 B    10 B        0 B  Name of A  third-party  com.example.chat\n");
    sweepctl.setTerminal({.output = true}, 40);
    EXPECT_EQ(sweepctl.run({"apps"}).screen,
              "TOTAL  APP        IDENTIFIER\n"
              " 10 B  Name of A  com.example.chat\n");
    sweepctl.setTerminal({.output = true}, 30);
    EXPECT_EQ(sweepctl.run({"apps"}).screen,
              "TOTAL  APP\n"
              "  IDENTIFIER\n"
              " 10 B  Name of A\n"
              "  com.example.chat\n");
}

TEST(AppsCommand, WhitelistedAppsAreNamedOnATerminal) {
    Sweepctl sweepctl;
    install(sweepctl.device(), "A", "com.example.chat", 10);
    EXPECT_EQ(sweepctl.run({"whitelist", "apps", "add", "com.example.chat", "com.gone"}).status, 0);
    EXPECT_EQ(sweepctl.run({"whitelist", "apps"}).output, "com.example.chat\ncom.gone\n");
    sweepctl.setTerminal({.output = true});
    EXPECT_EQ(sweepctl.run({"whitelist", "apps"}).screen,
              "APP        IDENTIFIER\n"
              "Name of A  com.example.chat\n"
              "           com.gone\n");
}

TEST(AppsCleanCommand, OneAppIsCleanedAndRecordedOnce) {
    Sweepctl sweepctl;
    const std::string chat = install(sweepctl.device(), "A", "com.example.chat", 10);
    EXPECT_EQ(sweepctl.run({"apps", "clean", "com.example.chat"}).status, 2);
    EXPECT_EQ(sweepctl.json({"apps", "clean", "com.example.chat", "--yes"}),
              (json{{"success", true}, {"cleanedBytes", 10}, {"error", nullptr}}));
    EXPECT_FALSE(sweepctl.device().exists(chat + "/Library/Caches/A"));
    EXPECT_TRUE(sweepctl.device().exists(chat + "/Documents/letter"));
    const json history = sweepctl.json({"history"});
    ASSERT_EQ(history.size(), 1U);
    EXPECT_EQ(history[0].at("cleanTypeName"), "第三方应用: com.example.chat");
    EXPECT_EQ(history[0].at("cleanType"), 10);
}

TEST(AppsCleanCommand, SeveralAreABatchRecordedOnceMore) {
    Sweepctl sweepctl;
    install(sweepctl.device(), "A", "com.example.chat", 10);
    install(sweepctl.device(), "B", "com.example.mail", 5);
    EXPECT_EQ(sweepctl.json({"apps", "clean", "com.example.chat", "com.example.mail", "--yes"})
                  .at("cleanedBytes"),
              15);
    EXPECT_EQ(sweepctl.json({"history"}).size(), 3U);
    EXPECT_EQ(sweepctl.json({"stats"}).at("running").at("totalCleanedBytes"), 30);
}

TEST(AppsCleanCommand, AllLeavesSystemAndWhitelistedAppsAlone) {
    Sweepctl sweepctl;
    const std::string chat = install(sweepctl.device(), "A", "com.example.chat", 10);
    const std::string mail = install(sweepctl.device(), "B", "com.example.mail", 5);
    const std::string music = install(sweepctl.device(), "C", "com.apple.music", 5);
    EXPECT_EQ(sweepctl.run({"whitelist", "apps", "add", "com.example.mail"}).status, 0);
    EXPECT_EQ(sweepctl.json({"apps", "clean", "--all", "--yes"}).at("cleanedBytes"), 10);
    EXPECT_FALSE(sweepctl.device().exists(chat + "/Library/Caches/A"));
    EXPECT_TRUE(sweepctl.device().exists(mail + "/Library/Caches/B"));
    EXPECT_TRUE(sweepctl.device().exists(music + "/Library/Caches/C"));
}

TEST(AppsCleanCommand, AWhitelistedAppIsRefusedByName) {
    Sweepctl sweepctl;
    const std::string chat = install(sweepctl.device(), "A", "com.example.chat", 10);
    EXPECT_EQ(sweepctl.run({"whitelist", "apps", "add", "com.example.chat"}).status, 0);
    const ProcessResult result = sweepctl.run({"apps", "clean", "com.example.chat", "--yes"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(isOneLine(result.error)) << result.error;
    EXPECT_TRUE(sweepctl.device().exists(chat + "/Library/Caches/A"));
}

TEST(AppsCleanCommand, AnIdentifierThatNothingKnowsIsRefusedBeforeAnythingRuns) {
    Sweepctl sweepctl;
    const std::string chat = install(sweepctl.device(), "A", "com.example.chat", 10);
    // What every app shares would be cleaned for any word.
    const std::string shared =
        "/var/mobile/Containers/Shared/AppGroup/.jbroot-1/var/mobile/Library/Caches/x";
    sweepctl.device().file(shared, 1000);
    for (const char* how : {"--yes", "--dry-run"}) {
        const ProcessResult result =
            sweepctl.run({"apps", "clean", "com.example.chat", "com.nothing", how});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.error,
                  "sweepctl: com.nothing: no app with this identifier is installed; see sweepctl "
                  "apps\n");
    }
    EXPECT_EQ(errorIn(sweepctl.run({"apps", "clean", "com.nothing", "--yes", "--json"}).output),
              "com.nothing: no app with this identifier is installed; see sweepctl apps");
    EXPECT_TRUE(sweepctl.device().exists(shared));
    EXPECT_TRUE(sweepctl.device().exists(chat + "/Library/Caches/A"));
    EXPECT_EQ(sweepctl.json({"history"}), json::array());
}

TEST(AppsCleanCommand, AnIdentifierThatNothingKnowsGetsTheOneThatWasMeant) {
    Sweepctl sweepctl;
    install(sweepctl.device(), "A", "com.example.chat", 10);
    install(sweepctl.device(), "B", "com.example.mail", 10);
    for (const char* mistyped : {"com.example.caht", "com.example.Chat", "CHAT"}) {
        EXPECT_THAT(sweepctl.run({"apps", "clean", mistyped, "--yes"}).error,
                    HasSubstr("did you mean \"com.example.chat\"?"));
    }
    EXPECT_THAT(sweepctl.run({"apps", "clean", "example", "--yes"}).error,
                HasSubstr("see sweepctl apps"));
}

TEST(AppsCleanCommand, AnAppIsKnownByItsContainersNameOrItsBundleAlone) {
    Sweepctl sweepctl;
    sweepctl.device().file(kContainers + "com.example.old/tmp/a", 3);
    sweepctl.device().fileWith(
        "/var/containers/Bundle/Application/B/X.app/Info.plist",
        PropertyList(PropertyList::Dictionary{{"CFBundleIdentifier", "com.example.new"}}).toXml());
    EXPECT_EQ(sweepctl.run({"apps", "clean", "com.example.old", "--yes"}).output, "freed 3 B\n");
    EXPECT_EQ(sweepctl.run({"apps", "clean", "com.example.new", "--yes"}).output, "freed 0 B\n");
}

TEST(AppsCleanCommand, TheQuestionNamesTheAppOrHowManyAreMeant) {
    Sweepctl sweepctl;
    const std::string chat = install(sweepctl.device(), "A", "com.example.chat", 10);
    install(sweepctl.device(), "B", "com.example.mail", 5);
    sweepctl.setTerminal(TerminalStreams::all());
    Process several(sweepctl.options({"apps", "clean", "--all"}));
    several.waitForText("Remove 15 B in 2 entries from the caches of 2 apps? [y/N] ");
    several.type("n\n");
    EXPECT_EQ(several.wait().status, 1);
    Process one(sweepctl.options({"apps", "clean", "com.example.chat"}));
    one.waitForText("Remove 10 B in 1 entry from the caches of com.example.chat? [y/N] ");
    one.type("y\n");
    EXPECT_EQ(one.wait().status, 0);
    EXPECT_FALSE(sweepctl.device().exists(chat + "/Library/Caches/A"));
}

TEST(AppsCleanCommand, ADryRunRemovesNothingAndTellsWhatWouldGo) {
    Sweepctl sweepctl;
    const std::string chat = install(sweepctl.device(), "A", "com.example.chat", 10);
    EXPECT_EQ(sweepctl.json({"apps", "clean", "--all", "--dry-run"}),
              (json{{"wouldFree", 10},
                    {"entries", {{{"path", chat + "/Library/Caches/A"}, {"size", 10}}}},
                    {"kept", json::array()}}));
    EXPECT_TRUE(sweepctl.device().exists(chat + "/Library/Caches/A"));
    EXPECT_EQ(sweepctl.json({"history"}), json::array());
}

TEST(AppsCleanCommand, NeedsAppsOrAllButNotBoth) {
    Sweepctl sweepctl;
    EXPECT_EQ(sweepctl.run({"apps", "clean", "--yes"}).status, 2);
    EXPECT_EQ(sweepctl.run({"apps", "clean", "com.example.chat", "--all", "--yes"}).status, 2);
}

}  // namespace
}  // namespace sweepwright::test
