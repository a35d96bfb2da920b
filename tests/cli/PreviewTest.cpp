// What a person sees of a dry run.
#include <algorithm>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/Sweepctl.h"
#include "platform/plist/PropertyList.h"

namespace sweepwright::test {
namespace {

using platform::PropertyList;
using testing::HasSubstr;
using testing::Not;
using Words = std::vector<std::string>;

/// What a terminal shows of a call.
std::string onTerminal(Sweepctl& sweepctl, const Words& words, unsigned short columns = 80) {
    sweepctl.setTerminal({.output = true}, columns);
    const ProcessResult result = sweepctl.run(words);
    EXPECT_EQ(result.status, 0) << result.error;
    return result.screen;
}

std::string installNamed(TemporaryDevice& device, const std::string& identifier,
                         const std::string& name) {
    const std::string data = "/var/mobile/Containers/Data/Application/" + identifier;
    device.fileWith("/var/containers/Bundle/Application/" + identifier + "/X.app/Info.plist",
                    PropertyList(PropertyList::Dictionary{{"CFBundleIdentifier", identifier},
                                                          {"CFBundleName", name}})
                        .toBinary());
    device.folder(data);
    return data;
}

TEST(DryRunOnATerminal, EntriesAreGroupedByCategoryLargestFirst) {
    Sweepctl sweepctl;
    sweepctl.device().file("/var/mobile/tmp/small", 10);
    sweepctl.device().file("/var/mobile/tmp/large", 2048);
    sweepctl.device().file("/var/mobile/tmp/.hidden", 7);
    sweepctl.device().file("/var/mobile/Documents/Downloads/film", 5000);
    EXPECT_EQ(onTerminal(sweepctl, {"clean", "all", "--dry-run"}),
              "  SIZE  PATH\n"
              "\n"
              "downloads: 4.9 KB, 1 entry\n"
              "4.9 KB  /var/mobile/Documents/Downloads/film\n"
              "\n"
              "temporary files: 2.0 KB, 2 entries\n"
              "2.0 KB  /var/mobile/tmp/large\n"
              "  10 B  /var/mobile/tmp/small\n"
              "\n"
              "1 entry stays:\n"
              "REASON  PATH\n"
              "hidden  /var/mobile/tmp/.hidden\n"
              "\n"
              "would free 6.9 KB\n");
}

TEST(DryRunOnATerminal, OfManyEntriesTheTenLargestAreShownUnlessAllAreAskedFor) {
    Sweepctl sweepctl;
    for (int i = 11; i <= 22; ++i) {
        const std::string name = "/var/mobile/tmp/" + std::to_string(i);
        sweepctl.device().file(name, static_cast<std::uint64_t>(i));
        sweepctl.device().file("/var/mobile/tmp/." + std::to_string(i), 1);
    }
    const std::string brief = onTerminal(sweepctl, {"clean", "temp", "--dry-run"});
    EXPECT_THAT(brief, HasSubstr("temporary files: 198 B, 12 entries\n22 B  "));
    EXPECT_THAT(brief, HasSubstr("13 B  /var/mobile/tmp/13\nand 2 more (--full shows all)\n\n"));
    EXPECT_THAT(brief, Not(HasSubstr("/var/mobile/tmp/12\n")));
    EXPECT_THAT(brief, HasSubstr("12 entries stay:\n"));
    EXPECT_THAT(brief, HasSubstr("and 2 more (--full shows all)\n\nwould free 198 B\n"));

    const std::string full = onTerminal(sweepctl, {"clean", "temp", "--dry-run", "--full"});
    EXPECT_THAT(full, Not(HasSubstr("more")));
    for (int i = 11; i <= 22; ++i) {
        EXPECT_THAT(full, HasSubstr("/var/mobile/tmp/" + std::to_string(i) + "\n"));
        EXPECT_THAT(full, HasSubstr("/var/mobile/tmp/." + std::to_string(i) + "\n"));
    }
}

TEST(DryRunOnATerminal, WhatStaysIsGroupedByReason) {
    Sweepctl sweepctl;
    sweepctl.device().file("/var/mobile/tmp/a.db", 1);
    for (int i = 1; i <= 11; ++i)
        sweepctl.device().file("/var/mobile/tmp/." + std::to_string(i), 1);
    sweepctl.device().link("/var/mobile/tmp/link", "/");
    const std::string screen = onTerminal(sweepctl, {"clean", "temp", "--dry-run"});
    EXPECT_THAT(screen,
                testing::ContainsRegex("hidden +/[^\n]*\nand 1 more \\(--full shows all\\)\n"
                                       "link +/[^\n]*\ndatabase +/[^\n]*\n\nwould"));
}

TEST(DryRunOnATerminal, AnAppsFolderIsShownByItsNameBesideItsPath) {
    Sweepctl sweepctl;
    const std::string data = installNamed(sweepctl.device(), "com.example.chat", "Chat");
    sweepctl.device().file(data + "/Documents/Exports/a", 10);
    sweepctl.device().file("/var/mobile/Library/Caches/com.apple.springboard/x", 20);
    EXPECT_EQ(sweepctl.run({"custom-paths", "add", data + "/Documents/Exports", "--yes"}).status,
              0);
    const std::string screen = onTerminal(sweepctl, {"clean", "cache", "--dry-run"}, 120);
    EXPECT_THAT(screen, HasSubstr("SIZE  APP   PATH\n"));
    EXPECT_THAT(screen, HasSubstr("10 B  Chat  " + data + "/Documents/Exports/a\n"));
    EXPECT_THAT(screen, HasSubstr("20 B        /var/mobile/Library/Caches/com.apple.spring"));
}

TEST(DryRunOnATerminal, ADeepCleanIsOneGroup) {
    Sweepctl sweepctl;
    sweepctl.device().file("/var/mobile/Library/Caches/com.apple.springboard/a", 100);
    EXPECT_THAT(onTerminal(sweepctl, {"deep-clean", "--dry-run"}),
                HasSubstr("\n\ncaches of the system: 100 B, 1 entry\n100 B  /var/"));
}

TEST(DryRunOnATerminal, AppsAreGroupsByNameAndOfManyTheTenLargestAreShown) {
    Sweepctl sweepctl;
    for (int i = 11; i <= 23; ++i) {
        const std::string number = std::to_string(i);
        const std::string data =
            installNamed(sweepctl.device(), "com.example.app" + number, "App " + number);
        sweepctl.device().file(data + "/tmp/a", static_cast<std::uint64_t>(i));
    }
    const Words words{"apps", "clean", "--all", "--dry-run"};
    const std::string brief = onTerminal(sweepctl, words, 120);
    EXPECT_THAT(brief, HasSubstr("SIZE  PATH\n\nApp 23: 23 B, 1 entry\n23 B  /var/mobile/"));
    EXPECT_THAT(brief, HasSubstr("App 14: 14 B, 1 entry\n"));
    EXPECT_THAT(brief, Not(HasSubstr("App 13")));
    EXPECT_THAT(brief, HasSubstr("\n\nand 3 more apps: 36 B (--full shows all)\n\nwould free "));
    EXPECT_THAT(onTerminal(sweepctl, {"apps", "clean", "--all", "--dry-run", "--full"}),
                HasSubstr("App 11: 11 B, 1 entry\n"));
    EXPECT_THAT(onTerminal(sweepctl, {"apps", "clean", "com.example.app11", "--dry-run"}),
                HasSubstr("\nApp 11: 11 B, 1 entry\n"));
}

TEST(DryRunOnATerminal, WithNothingToGoOnlyTheSumIsShown) {
    Sweepctl sweepctl;
    EXPECT_EQ(onTerminal(sweepctl, {"clean", "all", "--dry-run"}), "\nwould free 0 B\n");
}

TEST(DryRun, IntoAPipeItIsEveryLineWithOrWithoutFull) {
    Sweepctl sweepctl;
    for (int i = 11; i <= 22; ++i)
        sweepctl.device().file("/var/mobile/tmp/" + std::to_string(i), 10);
    const std::string output = sweepctl.run({"clean", "temp", "--dry-run"}).output;
    EXPECT_EQ(std::ranges::count(output, '\n'), 13);
    EXPECT_EQ(sweepctl.run({"clean", "temp", "--dry-run", "--full"}).output, output);
    EXPECT_EQ(sweepctl.json({"clean", "temp", "--dry-run", "--full"}),
              sweepctl.json({"clean", "temp", "--dry-run"}));
}

TEST(DryRun, FullGoesWithADryRunOnly) {
    Sweepctl sweepctl;
    sweepctl.device().file("/var/mobile/tmp/a", 10);
    for (const Words& words :
         {Words{"clean", "temp", "--yes", "--full"}, Words{"deep-clean", "--yes", "--full"},
          Words{"apps", "clean", "--all", "--yes", "--full"}}) {
        const ProcessResult result = sweepctl.run(words);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.error, "sweepctl: --full goes with --dry-run\n");
    }
    EXPECT_TRUE(sweepctl.device().exists("/var/mobile/tmp/a"));
}

}  // namespace
}  // namespace sweepwright::test
