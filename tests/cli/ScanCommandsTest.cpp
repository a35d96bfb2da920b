#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/Sweepctl.h"

namespace sweepwright::test {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;
using testing::HasSubstr;

/// A device with a different number of bytes in every category.
void fill(TemporaryDevice& device) {
    const std::string home = "/var/mobile";
    device.file(home + "/Library/Application Support/MyTempData/a", 1024);
    device.file(home + "/tmp/a", 2);
    device.file(home + "/Library/Cookies/a", 4);
    device.file(home + "/Library/Logs/a", 8);
    device.file(home + "/Documents/Downloads/a", 16);
    device.file(home + "/Library/x.sqlite", 64);
    device.file(home + "/Library/Application Support/Offline/a", 256);
}

TEST(Scan, TheDocumentHoldsTheTenFiguresInOrder) {
    Sweepctl sweepctl;
    fill(sweepctl.device());
    const ProcessResult result = sweepctl.run({"scan", "--json"});
    EXPECT_EQ(result.status, 0) << result.error;
    const ordered_json expected = {{"cacheSize", 1024},      {"tempSize", 2},
                                   {"cookieSize", 4},        {"logSize", 8},
                                   {"downloadsSize", 16},    {"imageCacheSize", 0},
                                   {"databaseSize", 64},     {"crashReportsSize", 0},
                                   {"offlineDataSize", 256}, {"totalSize", 1374}};
    EXPECT_EQ(result.output, expected.dump(2) + "\n");
}

TEST(Scan, ThePipeGetsAnAlignedTableAndNoProgress) {
    Sweepctl sweepctl;
    fill(sweepctl.device());
    const ProcessResult result = sweepctl.run({"scan"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.output,
              "cache          1.0 KB   75%\n"
              "temp              2 B    0%\n"
              "cookies           4 B    0%\n"
              "logs              8 B    1%\n"
              "downloads        16 B    1%\n"
              "images            0 B    0%\n"
              "databases        64 B    5%\n"
              "crash-reports     0 B    0%\n"
              "offline-data    256 B   19%\n"
              "total          1.3 KB  100%\n");
}

TEST(Scan, AnEmptyDeviceHasNothingToCleanAndNothingIsWritten) {
    Sweepctl sweepctl;
    const ProcessResult result = sweepctl.run({"scan"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr("total          0 B  0%\n"));
    EXPECT_FALSE(sweepctl.device().exists("/var/mobile/Library"));
}

TEST(Scan, ATerminalSeesTheCategoriesWhileTheyAreMeasuredAndBarsInTheEnd) {
    Sweepctl sweepctl;
    fill(sweepctl.device());
    sweepctl.setTerminal(TerminalStreams::all());
    const std::string screen = sweepctl.run({"scan"}).screen;
    EXPECT_THAT(screen, HasSubstr("░"));
    EXPECT_THAT(screen, HasSubstr("cache          1.0 KB    75%  ██████████████████\n"));
    // The progress line is taken away before the table begins.
    EXPECT_THAT(screen.substr(0, screen.find("CATEGORY         SIZE  SHARE\n")),
                testing::EndsWith("\r\x1b[K"));
}

/// What a terminal shows of a scan in an environment.
std::string scanned(const std::string& variable, const std::string& value) {
    Sweepctl sweepctl;
    fill(sweepctl.device());
    sweepctl.setTerminal({.output = true}, 40);
    sweepctl.setVariable("LANG", "C");
    sweepctl.setVariable(variable, value);
    return sweepctl.run({"scan"}).screen;
}

TEST(Scan, ItFitsANarrowTerminalWithBarsThatItsLocaleCanShow) {
    EXPECT_EQ(scanned("LANG", "C"),
              "CATEGORY         SIZE  SHARE\n"
              "cache          1.0 KB    75%  #######\n"
              "temp              2 B     0%\n"
              "cookies           4 B     0%\n"
              "logs              8 B     1%\n"
              "downloads        16 B     1%\n"
              "images            0 B     0%\n"
              "databases        64 B     5%\n"
              "crash-reports     0 B     0%\n"
              "offline-data    256 B    19%  ##\n"
              "total          1.3 KB   100%\n");
    for (const auto& [variable, value] :
         {std::pair("LANG", "de_DE.utf8"), {"LC_CTYPE", "C.UTF-8"}, {"LC_ALL", "en_US.utf-8"}})
        EXPECT_THAT(scanned(variable, value), HasSubstr("75%  ███████\n")) << variable;
}

TEST(Scan, ProgressShowsOnlyWhereItIsWantedAndCanBeDrawn) {
    Sweepctl sweepctl;
    sweepctl.setTerminal({.error = true});
    EXPECT_THAT(sweepctl.run({"scan"}).screen, HasSubstr("\x1b[K"));
    EXPECT_EQ(sweepctl.run({"scan", "--no-progress"}).screen, "");
    sweepctl.setVariable("TERM", "dumb");
    EXPECT_EQ(sweepctl.run({"scan"}).screen, "");
}

TEST(Scan, ProgressDoesNotDisturbADocument) {
    Sweepctl sweepctl;
    sweepctl.setTerminal({.error = true});
    const ProcessResult result = sweepctl.run({"scan", "--json"});
    EXPECT_THAT(result.screen, HasSubstr("\x1b[K"));
    EXPECT_FALSE(json::parse(result.output, nullptr, false).is_discarded()) << result.output;
}

TEST(Scan, ADamagedProtectionListIsWarnedOf) {
    Sweepctl sweepctl;
    sweepctl.device().fileWith("/var/mobile/Library/Preferences/com.sweepwright.app.plist",
                               "damaged");
    const ProcessResult result = sweepctl.run({"scan"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.error, HasSubstr("a clean would refuse"));
    EXPECT_TRUE(isOneLine(result.error)) << result.error;
}

TEST(Size, EveryWordHasItsGetter) {
    Sweepctl sweepctl;
    fill(sweepctl.device());
    sweepctl.device().file("/var/mobile/Library/Caches/com.apple.springboard/a", 1000);
    sweepctl.device().file("/var/custom/a", 5000);
    EXPECT_EQ(sweepctl.run({"custom-paths", "add", "/var/custom"}).status, 0);
    const std::vector<std::pair<std::string, std::uint64_t>> expected = {
        // The support caches, the system's (one of them counts twice) and the custom paths.
        {"cache", 1024 + 2000 + 5000},
        {"temp", 2},
        {"cookies", 4},
        {"logs", 8},
        {"downloads", 16},
        {"images", 0},
        {"databases", 64},
        {"crash-reports", 0},
        {"offline-data", 256},
        {"system", 2000},
        {"custom", 5000},
    };
    for (const auto& [word, size] : expected)
        EXPECT_EQ(sweepctl.json({"size", word}), (json{{"size", size}})) << word;
    EXPECT_EQ(sweepctl.run({"size", "system"}).output, "2.0 KB\n");
}

}  // namespace
}  // namespace sweepwright::test
