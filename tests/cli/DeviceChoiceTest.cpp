#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/Sweepctl.h"
#include "platform/plist/PropertyList.h"
#include "support/ChildProcess.h"

namespace sweepwright::test {
namespace {

using testing::HasSubstr;
using Words = std::vector<std::string>;

void expectUnusable(const ProcessResult& result, const std::string& said) {
    EXPECT_EQ(result.status, 3) << result.output;
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.error, HasSubstr(said));
    EXPECT_TRUE(isOneLine(result.error)) << result.error;
}

TEST(DeviceChoice, ARootThatIsAbsentIsUnusable) {
    Sweepctl sweepctl;
    const std::string root = sweepctl.homeFolder() + "/absent";
    expectUnusable(sweepctl.runBare({"--device-root", root, "scan"}),
                   root + ": No such file or directory");
    const ProcessResult answer = sweepctl.runBare({"--device-root", root, "scan", "--json"});
    EXPECT_EQ(answer.status, 3);
    EXPECT_EQ(errorIn(answer.output), root + ": No such file or directory");
}

TEST(DeviceChoice, ARootThatIsAFileIsUnusable) {
    Sweepctl sweepctl;
    sweepctl.device().file("/file", 1);
    const std::string root = sweepctl.device().host("/file");
    expectUnusable(sweepctl.runBare({"--device-root", root, "scan"}), "Not a directory");
}

TEST(DeviceChoice, ARootThatMayNotBeReadIsUnusable) {
    if (const std::string why = whyNoOrdinaryUser(); !why.empty()) GTEST_SKIP() << why;
    const Sweepctl sweepctl;
    asOrdinaryUser([&] {
        // The temporary folders belong to another user who shares them with nobody.
        expectUnusable(sweepctl.run({"scan"}), "Permission denied");
    });
}

TEST(DeviceChoice, TheRootOfThisComputerIsRefusedUnderAnyName) {
    Sweepctl sweepctl;
    sweepctl.device().link("/root", "/");
    for (const std::string& root : {std::string("/"), std::string("/usr/.."), std::string("//"),
                                    sweepctl.device().host("/root")})
        expectUnusable(sweepctl.runBare({"--device-root", root, "scan"}), "own root folder");
}

TEST(DeviceChoice, AnEmptyRootIsNeverTakenForNoneGiven) {
    Sweepctl sweepctl;
    expectUnusable(sweepctl.runBare({"--device-root", "", "scan"}), "device root is empty");
}

TEST(DeviceChoice, TheVariableNamesTheRootAndTheOptionOverrulesIt) {
    Sweepctl sweepctl;
    sweepctl.device().file("/var/mobile/tmp/a", 5);
    sweepctl.setVariable("SWEEPWRIGHT_DEVICE_ROOT", sweepctl.device().root());
    EXPECT_EQ(sweepctl.runBare({"size", "temp"}).output, "5 B\n");
    sweepctl.setVariable("SWEEPWRIGHT_DEVICE_ROOT", "/nowhere");
    EXPECT_EQ(sweepctl.run({"size", "temp"}).output, "5 B\n");
    EXPECT_EQ(sweepctl.runBare({"size", "temp"}).status, 3);
}

TEST(DeviceChoice, TheHomeComesFromTheOptionBeforeTheVariable) {
    Sweepctl sweepctl;
    sweepctl.device().file("/var/a/tmp/f", 1);
    sweepctl.device().file("/var/b/tmp/f", 2);
    sweepctl.device().file("/var/mobile/tmp/f", 3);
    EXPECT_EQ(sweepctl.run({"size", "temp"}).output, "3 B\n");
    sweepctl.setVariable("SWEEPWRIGHT_HOME", "/var/a");
    EXPECT_EQ(sweepctl.run({"size", "temp"}).output, "1 B\n");
    EXPECT_EQ(sweepctl.run({"size", "temp", "--home", "/var/b/"}).output, "2 B\n");
    sweepctl.setVariable("SWEEPWRIGHT_HOME", "");
    EXPECT_EQ(sweepctl.run({"size", "temp"}).output, "3 B\n");
}

TEST(DeviceChoice, TheTemporaryDirectoryMayStandElsewhere) {
    Sweepctl sweepctl;
    sweepctl.device().file("/private/scratch/f", 7);
    EXPECT_EQ(sweepctl.run({"size", "temp", "--tmp", "//private//scratch/"}).output, "7 B\n");
}

TEST(DeviceChoice, AHomeOrTemporaryDirectoryThatIsNoPlainPathBelowTheRootIsRefused) {
    const Sweepctl sweepctl;
    for (const char* option : {"--home", "--tmp"}) {
        for (const char* wrong : {"", "var/mobile", "/", "//", "/var/..", "/var/./mobile", "/.."}) {
            const ProcessResult result = sweepctl.run({"scan", option, wrong});
            EXPECT_EQ(result.status, 2) << option << " " << wrong;
            EXPECT_TRUE(isOneLine(result.error)) << result.error;
            EXPECT_EQ(result.output, "");
        }
    }
}

TEST(DeviceChoice, AHomeThroughPrivateIsKnownByTheNameThatProtectionUses) {
    Sweepctl sweepctl;
    sweepctl.device().folder("/private/var/mobile");
    std::filesystem::remove_all(sweepctl.device().host("/var"));
    sweepctl.device().link("/var", "private/var");
    sweepctl.device().file("/private/var/mobile/Library/Caches/com.apple.Maps/tile", 1000);
    sweepctl.device().file("/private/var/mobile/Library/Caches/com.apple.springboard/file", 10);
    const ProcessResult cleaned =
        sweepctl.run({"clean", "cache", "--yes", "--home", "/private/var/mobile"});
    EXPECT_EQ(cleaned.status, 0) << cleaned.error;
    EXPECT_TRUE(sweepctl.device().exists("/private/var/mobile/Library/Caches/com.apple.Maps/tile"));
    EXPECT_FALSE(
        sweepctl.device().exists("/private/var/mobile/Library/Caches/com.apple.springboard/file"));
}

TEST(DeviceChoice, TheHomeIsTheContainerWhoseMetadataNamesTheApp) {
    Sweepctl sweepctl;
    const std::string containers = "/var/mobile/Containers/Data/Application/";
    const auto container = [&](const std::string& name, const std::string& identifier) {
        platform::PropertyList::Dictionary metadata;
        metadata.set("MCMMetadataIdentifier", identifier);
        sweepctl.device().fileWith(
            containers + name + "/.com.apple.mobile_container_manager.metadata.plist",
            platform::PropertyList(metadata).toBinary());
    };
    container("A", "com.example.other");
    container("B", "com.sweepwright.app");
    sweepctl.device().fileWith(containers + "C/.com.apple.mobile_container_manager.metadata.plist",
                               "damaged");
    sweepctl.device().file(containers + "B/tmp/f", 9);
    EXPECT_EQ(sweepctl.run({"size", "temp"}).output, "9 B\n");
}

TEST(DeviceChoice, WithoutARootTheSampleDeviceIsMadeOnceInTheDataFolder) {
    Sweepctl sweepctl;
    sweepctl.setVariable("XDG_DATA_HOME", sweepctl.homeFolder() + "/data");
    const ProcessResult first = sweepctl.runBare({"size", "temp", "--json"});
    EXPECT_EQ(first.status, 0) << first.error;
    EXPECT_THAT(first.error, HasSubstr("made a sample device"));
    EXPECT_THAT(first.error, HasSubstr(sweepctl.homeFolder() + "/data/sweepwright/sample-device"));
    const ProcessResult second = sweepctl.runBare({"size", "temp", "--json"});
    EXPECT_EQ(second.error, "");
    EXPECT_EQ(second.output, first.output);
}

TEST(DeviceChoice, TheDataFolderIsInTheHomeFolderUnlessAnAbsoluteOneIsNamed) {
    Sweepctl sweepctl;
    sweepctl.setVariable("XDG_DATA_HOME", "relative");
    EXPECT_THAT(sweepctl.runBare({"size", "temp"}).error,
                HasSubstr(sweepctl.homeFolder() + "/.local/share/sweepwright/sample-device"));
}

TEST(DeviceChoice, AFolderThatIsNoDeviceIsUnusableAndStaysAsItIs) {
    const Sweepctl sweepctl;
    const TemporaryFolder folder;
    for (const Words& words :
         {Words{"scan"}, Words{"clean", "all", "--yes"}, Words{"language", "en"}, Words{"history"},
          Words{"whitelist", "paths", "add", "/a"}, Words{"storage"}}) {
        Words bare{"--device-root", folder.path()};
        bare.insert(bare.end(), words.begin(), words.end());
        const ProcessResult result = sweepctl.runBare(bare);
        expectUnusable(result, folder.path() + ": is no device");
        EXPECT_THAT(result.error, HasSubstr("--home"));
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(DeviceChoice, AFolderIsADeviceByItsPrivateFolderOrByANamedHome) {
    const Sweepctl sweepctl;
    TemporaryDevice copied;
    copied.folder("/private/var/mobile");
    EXPECT_EQ(sweepctl.runBare({"--device-root", copied.root(), "scan"}).status, 0);
    TemporaryDevice other;
    other.file("/app/tmp/f", 4);
    const Words words{"--device-root", other.root(), "--home", "/app", "size", "temp"};
    EXPECT_EQ(sweepctl.runBare(words).output, "4 B\n");
    other.fileWith("/var/mobile", "a file");
    EXPECT_EQ(sweepctl.runBare({"--device-root", other.root(), "scan"}).status, 3);
}

TEST(DeviceChoice, OnATerminalADimLineTellsOfTheSampleDevice) {
    Sweepctl sweepctl;
    const std::string folder =
        "the sample device in " + sweepctl.homeFolder() + "/.local/share/sweepwright/sample-device";
    EXPECT_EQ(sweepctl.runBare({"size", "temp"}).status, 0);  // makes it
    sweepctl.setTerminal({.error = true});
    for (const Words& words :
         {Words{"size", "temp", "--json", "--no-progress"}, Words{"history", "--no-progress"}}) {
        EXPECT_EQ(sweepctl.runBare(words).screen, "\x1b[2msweepctl: working on " + folder +
                                                      "; --device-root names another\x1b[22m\n");
    }
    sweepctl.setVariable("TERM", "dumb");
    EXPECT_EQ(sweepctl.runBare({"history"}).screen,
              "sweepctl: working on " + folder + "; --device-root names another\n");
    EXPECT_EQ(sweepctl.run({"history"}).screen, "") << "a device was named";
}

TEST(DeviceChoice, WithoutARootAndAHomeFolderThereIsNoDevice) {
    Sweepctl sweepctl;
    sweepctl.setVariable("HOME", "");
    expectUnusable(sweepctl.runBare({"scan"}), "no device root is given");
}

TEST(DeviceChoice, TheLogGoesToTheStateFolderAndWithVerboseToStandardErrorToo) {
    Sweepctl sweepctl;
    const ProcessResult quiet = sweepctl.run({"whitelist", "paths", "add", "/var/a"});
    EXPECT_EQ(quiet.error, "");
    const std::string log = sweepctl.homeFolder() + "/.local/state/sweepwright/sweepctl.log";
    EXPECT_TRUE(std::filesystem::is_regular_file(log));
    const ProcessResult verbose = sweepctl.run({"-v", "whitelist", "paths", "add", "/var/b/"});
    EXPECT_THAT(verbose.error, HasSubstr("✅ 已添加路径到白名单: /var/b/ (标准化: /var/b)"));
}

}  // namespace
}  // namespace sweepwright::test
