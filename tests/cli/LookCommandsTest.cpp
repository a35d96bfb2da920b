#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/Sweepctl.h"
#include "support/ChildProcess.h"

namespace sweepwright::test {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

TEST(ListCommand, CachesAreListedWithTheirSizesLargestFirst) {
    Sweepctl sweepctl;
    const std::string folder = "/var/mobile/Library/Application Support/";
    sweepctl.device().file(folder + "small-cache/a", 10);
    sweepctl.device().file(folder + "large-cache/a", 2048);
    EXPECT_EQ(sweepctl.json({"list", "cache"}),
              (json{{{"path", folder + "large-cache"}, {"size", 2048}},
                    {{"path", folder + "small-cache"}, {"size", 10}}}));
    EXPECT_EQ(sweepctl.run({"list", "cache"}).output,
              "2.0 KB  " + folder + "large-cache\n  10 B  " + folder + "small-cache\n");
}

TEST(ListCommand, OnATerminalItHasHeadingsAndFits) {
    Sweepctl sweepctl;
    sweepctl.device().file("/var/mobile/tmp/a folder with a long name/a file with a long name", 1);
    sweepctl.setTerminal({.output = true}, 40);
    EXPECT_EQ(sweepctl.run({"list", "temp"}).screen,
              "PATH\n/var/mobile/t…me/a file with a long name\n");
    sweepctl.setVariable("LANG", "C");
    EXPECT_EQ(sweepctl.run({"list", "temp"}).screen,
              "PATH\n/var/mobile/...e/a file with a long name\n");
}

TEST(ListCommand, OtherCategoriesAreListedAsPaths) {
    Sweepctl sweepctl;
    sweepctl.device().file("/var/mobile/tmp/.hidden", 1);
    EXPECT_EQ(sweepctl.json({"list", "temp"}), (json{"/var/mobile/tmp/.hidden"}));
    EXPECT_EQ(sweepctl.run({"list", "temp"}).output, "/var/mobile/tmp/.hidden\n");
    EXPECT_EQ(sweepctl.json({"list", "logs"}), json::array());
}

TEST(ListCommand, APathThatIsNotTextIsGivenAsBytesToo) {
    Sweepctl sweepctl;
    sweepctl.device().file("/var/mobile/tmp/a\xff", 1);
    EXPECT_EQ(sweepctl.json({"list", "temp"}), (json{{{"path", "/var/mobile/tmp/a\xEF\xBF\xBD"},
                                                      {"pathBytes", "L3Zhci9tb2JpbGUvdG1wL2H/"}}}));
    EXPECT_EQ(sweepctl.run({"list", "temp"}).output, "/var/mobile/tmp/a\\xFF\n");
}

TEST(ListCommand, OfflineDataHasNoList) {
    Sweepctl sweepctl;
    const ProcessResult result = sweepctl.run({"list", "offline-data"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(isOneLine(result.error)) << result.error;
}

TEST(StorageCommand, GivesTheThirteenFigures) {
    Sweepctl sweepctl;
    const json storage = sweepctl.json({"storage"});
    EXPECT_EQ(storage.size(), 13U);
    EXPECT_GT(storage.at("totalSpace"), 0U);
    EXPECT_TRUE(storage.at("userUsedSpaceFormatted").is_string());
    EXPECT_THAT(sweepctl.run({"storage"}).output, HasSubstr("available"));
}

TEST(StorageCommand, SaysOfACopiedTreeWhoseDiskTheFiguresAre) {
    Sweepctl sweepctl;
    EXPECT_THAT(sweepctl.run({"storage"}).output,
                MatchesRegex("(.*\n)*of the disk mounted at /.*, on which " +
                             sweepctl.device().root() + " is a folder\n"));
}

TEST(StorageCommand, SaysNothingMoreOfAMountedDevice) {
    if (const std::string why = whyNoMounts(); !why.empty()) GTEST_SKIP() << why;
    const Sweepctl sweepctl;
    const TemporaryFolder mount;
    withOwnMounts([&] {
        mountMemory(mount.path());
        std::filesystem::create_directories(mount.path() + "/var/mobile");
        const ProcessResult result = sweepctl.runBare({"--device-root", mount.path(), "storage"});
        EXPECT_EQ(result.status, 0) << result.error;
        EXPECT_THAT(result.output, testing::Not(HasSubstr("of the disk")));
    });
}

TEST(AnalyzeCommand, FindsLargeFiles) {
    Sweepctl sweepctl;
    sweepctl.device().file("/var/mobile/Documents/large", 5000);
    sweepctl.device().file("/var/mobile/Documents/small", 4999);
    const json found = sweepctl.json({"analyze", "large", "--min-size", "5000"});
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].at("path"), "/var/mobile/Documents/large");
    EXPECT_EQ(found[0].at("name"), "large");
    EXPECT_EQ(found[0].at("size"), 5000);
    EXPECT_THAT(found[0].at("modifiedDate").get<std::string>(),
                MatchesRegex("[0-9]+-[0-9]+-[0-9]+ [0-9]+:[0-9]+:[0-9]+"));
    EXPECT_EQ(sweepctl.json({"analyze", "large"}), json::array());
    EXPECT_EQ(sweepctl.run({"analyze", "usage", "--min-size", "1"}).status, 2);
}

TEST(AnalyzeCommand, GroupsFilesOfOneSize) {
    Sweepctl sweepctl;
    sweepctl.device().file("/var/mobile/Documents/a", 7);
    sweepctl.device().file("/var/mobile/Documents/b", 7);
    sweepctl.device().file("/var/mobile/Documents/c", 8);
    const json groups = sweepctl.json({"analyze", "duplicates"});
    ASSERT_EQ(groups.size(), 1U);
    EXPECT_EQ(groups[0].size(), 2U);
    EXPECT_EQ(groups[0][0].at("size"), 7);
}

TEST(AnalyzeCommand, AddsUpExtensionsFoldersAndBundles) {
    Sweepctl sweepctl;
    sweepctl.device().file("/var/mobile/Documents/A.JPG", 3);
    sweepctl.device().file("/var/mobile/Documents/README", 4);
    sweepctl.device().file("/var/containers/Bundle/Application/B/X.app/x", 9);
    EXPECT_EQ(sweepctl.json({"analyze", "extensions"}),
              (json{{"byExtension", {{"(no extension)", 4}, {"jpg", 3}}}, {"totalAnalyzed", 7}}));
    EXPECT_EQ(sweepctl.json({"analyze", "usage"}).at("Documents"),
              (json{{"size", 7}, {"formatted", "7 B"}}));
    EXPECT_EQ(
        sweepctl.json({"analyze", "apps"}),
        (json{{{"path", "/var/containers/Bundle/Application/B"}, {"size", 9}, {"name", "B"}}}));
}

TEST(HistoryCommand, ListsDeletesAndClearsWhatWasCleaned) {
    Sweepctl sweepctl;
    EXPECT_EQ(sweepctl.json({"history"}), json::array());
    for (const int bytes : {100, 50}) {
        sweepctl.device().file("/var/mobile/tmp/a", static_cast<std::uint64_t>(bytes));
        EXPECT_EQ(sweepctl.run({"clean", "temp", "--yes"}).status, 0);
    }
    const json records = sweepctl.json({"history"});
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].at("cleanedBytes"), 50);
    EXPECT_EQ(records[1].at("cleanedBytes"), 100);
    EXPECT_EQ(records[0].at("cleanType"), 1);
    EXPECT_EQ(records[0].at("cleanTypeName"), "临时文件");
    EXPECT_EQ(records[0].size(), 5U);
    EXPECT_EQ(sweepctl.json({"history", "--limit", "1"}), (json{records[0]}));

    const std::string newest = records[0].at("identifier");
    EXPECT_EQ(sweepctl.run({"history", "delete", newest, "unknown"}).status, 1);
    EXPECT_EQ(sweepctl.json({"history"}).size(), 2U) << "one unknown: none is deleted";
    EXPECT_EQ(sweepctl.run({"history", "delete", newest}).status, 2);
    EXPECT_EQ(sweepctl.run({"history", "clear"}).status, 2);
    EXPECT_EQ(sweepctl.json({"history"}).size(), 2U) << "deleted without a yes";
    EXPECT_EQ(sweepctl.json({"history", "delete", newest, "--yes"}), (json{records[1]}));
    EXPECT_EQ(sweepctl.json({"history", "clear", "--yes"}), json::array());

    const json stats = sweepctl.json({"stats"});
    EXPECT_EQ(stats.at("history"), (json{{"totalCleanedBytes", 0},
                                         {"totalCleanCount", 0},
                                         {"firstCleanDate", nullptr},
                                         {"lastCleanDate", nullptr}}));
    EXPECT_EQ(stats.at("running").at("totalCleanedBytes"), 150);
    EXPECT_EQ(stats.at("running").at("cleanCount"), 2);
    EXPECT_EQ(stats.at("running").at("lastCleanDate"), records[0].at("cleanDate"));
}

TEST(HistoryCommand, AsksOnATerminalAndTellsWhatItDeleted) {
    Sweepctl sweepctl;
    for (int i = 0; i < 3; ++i) {
        sweepctl.device().file("/var/mobile/tmp/a", 1);
        EXPECT_EQ(sweepctl.run({"clean", "temp", "--yes"}).status, 0);
    }
    const std::string newest = sweepctl.json({"history"})[0].at("identifier");
    EXPECT_EQ(sweepctl.run({"history", "delete", newest, "--yes"}).output,
              "deleted  " + newest + "\n");
    sweepctl.setTerminal(TerminalStreams::all());
    for (const char* answer : {"\n", "y\n"}) {
        Process process(sweepctl.options({"history", "clear"}));
        process.waitForText("Delete 2 of 2 records? [y/N] ");
        process.type(answer);
        const ProcessResult result = process.wait();
        EXPECT_EQ(result.status, *answer == 'y' ? 0 : 1);
        EXPECT_THAT(result.screen,
                    HasSubstr(*answer == 'y' ? "deleted 2 records\n" : "no record was deleted"));
    }
    EXPECT_EQ(sweepctl.run({"history"}).screen, "(none)\n");
    EXPECT_EQ(sweepctl.run({"history", "clear"}).screen, "deleted 0 records\n") << "it asked";
}

TEST(HistoryCommand, OnATerminalWhatWasCleanedStandsBeforeItsRecord) {
    Sweepctl sweepctl;
    sweepctl.device().file("/var/mobile/tmp/a", 100);
    EXPECT_EQ(sweepctl.run({"clean", "temp", "--yes"}).status, 0);
    const std::string id = sweepctl.json({"history"})[0].at("identifier");
    EXPECT_THAT(sweepctl.run({"history"}).output, testing::EndsWith("  " + id + "  临时文件\n"));
    sweepctl.setTerminal({.output = true}, 80);
    EXPECT_THAT(
        sweepctl.run({"history"}).screen,
        MatchesRegex("DATE                 FREED  WHAT      RECORD\n.*  临时文件  " + id + "\n"));
    sweepctl.setTerminal({.output = true}, 40);
    EXPECT_THAT(
        sweepctl.run({"history"}).screen,
        MatchesRegex("DATE                 FREED  WHAT\n  RECORD\n.*  临时文件\n  " + id + "\n"));
}

TEST(StatsCommand, OnATerminalItSaysWhatItsLinesAre) {
    Sweepctl sweepctl;
    EXPECT_EQ(sweepctl.run({"stats"}).output, "history  0 B  0  -\nrunning  0 B  0  -\n");
    sweepctl.setTerminal({.output = true}, 40);
    const std::string screen = sweepctl.run({"stats"}).screen;
    EXPECT_THAT(screen, StartsWith("SOURCE   FREED  CLEANS  LAST CLEAN\n"
                                   "history    0 B       0  -\n"
                                   "running    0 B       0  -\n\n"
                                   "history: "));
    EXPECT_THAT(screen, HasSubstr("\nrunning: "));
}

TEST(TerminalTables, AListWithNothingInItSaysSo) {
    Sweepctl sweepctl;
    EXPECT_EQ(sweepctl.run({"custom-paths"}).output, "");
    sweepctl.setTerminal({.output = true});
    EXPECT_EQ(sweepctl.run({"custom-paths"}).screen, "(none)\n");
    EXPECT_EQ(sweepctl.run({"list", "temp"}).screen, "(none)\n");
}

TEST(LanguageCommand, ShowsAndSetsTheLanguageAndLooksTextsUp) {
    Sweepctl sweepctl;
    sweepctl.setVariable("LANG", "zh_TW.UTF-8");
    EXPECT_EQ(sweepctl.json({"language"}), (json{{"code", "zh-Hans"}, {"name", "中文简体"}}));
    EXPECT_EQ(sweepctl.json({"language", "en"}), (json{{"code", "en"}, {"name", "English"}}));
    EXPECT_EQ(sweepctl.json({"text", "Tab Home", "no such key"}),
              (json{{"Tab Home", "Home"}, {"no such key", "no such key"}}));
    EXPECT_EQ(sweepctl.run({"language", "fr"}).status, 2);
}

}  // namespace
}  // namespace sweepwright::test
