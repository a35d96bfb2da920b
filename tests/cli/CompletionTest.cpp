#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/Command.h"
#include "cli/Sweepctl.h"

namespace sweepwright::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using Words = std::vector<std::string>;

/// What a shell is offered in place of the last of the words, with or without what it stands for.
class Completion : public testing::Test {
  protected:
    Words lines(Words words) const {
        words.insert(words.begin(), "complete");
        const ProcessResult result = sweepctl.runBare(words);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.error, "");
        Words found;
        std::size_t start = 0;
        while (start < result.output.size()) {
            const std::size_t end = result.output.find('\n', start);
            found.push_back(result.output.substr(start, end - start));
            start = end + 1;
        }
        return found;
    }

    Words offered(const Words& words) const {
        Words found = lines(words);
        for (std::string& line : found)
            line.resize(std::min(line.size(), line.find('\t')));
        return found;
    }

    /// The same on the device, which the words name.
    Words offeredOnDevice(Words words) {
        words.insert(words.begin(), {"--device-root", sweepctl.device().root()});
        return offered(words);
    }

    void installApp(const std::string& identifier) {
        sweepctl.device().fileWith(
            "/var/mobile/Containers/Data/Application/" + identifier +
                "/.com.apple.mobile_container_manager.metadata.plist",
            "<plist version=\"1.0\"><dict><key>MCMMetadataIdentifier</key><string>" + identifier +
                "</string></dict></plist>");
    }

    Sweepctl sweepctl;
};

TEST_F(Completion, ThatNoCommandIsCalledLikeIt) {
    for (const cli::Command& command : cli::allCommands())
        EXPECT_FALSE((command.words + " ").starts_with("complete ")) << command.words;
}

TEST_F(Completion, OffersTheFirstWordsOfCommandsWithWhatTheyDo) {
    EXPECT_THAT(offered({""}), IsSupersetOf({"scan", "clean", "whitelist", "help"}));
    EXPECT_THAT(offered({""}), Not(Contains("complete")));
    EXPECT_THAT(lines({"sca"}),
                ElementsAre("scan\tmeasure what lies in the places that each category's clean "
                            "visits"));
    EXPECT_THAT(offered({}), Contains("scan"));
}

TEST_F(Completion, OffersTheNextWordOfACommand) {
    EXPECT_THAT(offered({"whitelist", ""}), ElementsAre("paths", "apps"));
    EXPECT_THAT(offered({"whitelist", "paths", "a"}), ElementsAre("add"));
    EXPECT_THAT(offered({"help", "whitelist", "p"}), ElementsAre("paths"));
    EXPECT_THAT(offered({"--json", "white"}), ElementsAre("whitelist"));
    EXPECT_THAT(offered({"whitelist", "nonsense", ""}), IsEmpty());
}

TEST_F(Completion, OffersTheWordsThatACommandTakes) {
    EXPECT_THAT(offered({"clean", "c"}), ElementsAre("cache", "cookies", "crash-reports"));
    EXPECT_THAT(offered({"clean", ""}), Contains("all"));
    EXPECT_THAT(offered({"size", ""}), Not(Contains("all")));
    EXPECT_THAT(offered({"size", "logs", ""}), IsEmpty());
    EXPECT_THAT(offered({"language", ""}), Contains("en"));
}

TEST_F(Completion, OffersTheOptionsOfTheCommandAndOfAll) {
    EXPECT_THAT(offered({"clean", "--"}),
                IsSupersetOf({"--yes", "--dry-run", "--device-root", "--json"}));
    EXPECT_THAT(offered({"scan", "--"}), Not(Contains("--yes")));
    EXPECT_THAT(offered({"clean", "cache", "--d"}), ElementsAre("--dry-run", "--device-root"));
    EXPECT_THAT(offered({"clean", "--", "--"}), IsEmpty());
}

TEST_F(Completion, OffersTheValuesOfAnOption) {
    EXPECT_THAT(offered({"--idiom", ""}), ElementsAre("iphone", "ipad"));
    EXPECT_THAT(offered({"--idiom=ipa"}), ElementsAre("--idiom=ipad"));
    EXPECT_THAT(offered({"history", "--limit", ""}), IsEmpty());
    EXPECT_THAT(offered({"--idiom", "ipad", "sca"}), ElementsAre("scan"));
}

TEST_F(Completion, AsksForFoldersOfTheComputerWhereOneIsMeant) {
    EXPECT_THAT(lines({"--device-root", "x"}), ElementsAre("\tfolders"));
    EXPECT_THAT(lines({"scan", "--device-root=x"}), ElementsAre("\tfolders"));
    EXPECT_THAT(lines({"sample-device", ""}), ElementsAre("\tfolders"));
}

TEST_F(Completion, OffersTheAppsOfTheDeviceNamed) {
    installApp("com.example.chat");
    installApp("com.example.maps");
    EXPECT_THAT(offeredOnDevice({"apps", "clean", "com."}),
                ElementsAre("com.example.chat", "com.example.maps"));
    EXPECT_THAT(offeredOnDevice({"apps", "clean", "com.example.chat", ""}),
                ElementsAre("com.example.maps"));
    EXPECT_THAT(offeredOnDevice({"whitelist", "apps", "add", "com.example.m"}),
                ElementsAre("com.example.maps"));
    sweepctl.setVariable("SWEEPWRIGHT_DEVICE_ROOT", sweepctl.device().root());
    EXPECT_THAT(offered({"apps", "clean", ""}), Contains("com.example.chat"));
}

TEST_F(Completion, OffersToTakeOffAListWhatIsOnIt) {
    ASSERT_EQ(sweepctl.run({"whitelist", "paths", "add", "/var/mobile/Keep this"}).status, 0);
    ASSERT_EQ(sweepctl.run({"whitelist", "apps", "add", "com.example.chat"}).status, 0);
    ASSERT_EQ(sweepctl.run({"custom-paths", "add", "/var/mobile/Old"}).status, 0);
    EXPECT_THAT(offeredOnDevice({"whitelist", "paths", "remove", ""}),
                ElementsAre("/var/mobile/Keep this"));
    EXPECT_THAT(offeredOnDevice({"whitelist", "apps", "remove", ""}),
                ElementsAre("com.example.chat"));
    EXPECT_THAT(offeredOnDevice({"custom-paths", "remove", ""}), ElementsAre("/var/mobile/Old"));
}

TEST_F(Completion, OffersPathsOfTheDeviceAFolderAtATime) {
    sweepctl.device().file("/var/mobile/Media/photo", 1);
    sweepctl.device().folder("/var/mobile/.hidden");
    EXPECT_THAT(offeredOnDevice({"whitelist", "paths", "add", ""}), ElementsAre("/"));
    EXPECT_THAT(offeredOnDevice({"whitelist", "paths", "add", "/v"}), ElementsAre("/var/"));
    EXPECT_THAT(offeredOnDevice({"custom-paths", "check", "/var/mobile/"}),
                ElementsAre("/var/mobile/Media/"));
    EXPECT_THAT(offeredOnDevice({"analyze", "usage", "--folder", "/var/mobile/Media/"}),
                ElementsAre("/var/mobile/Media/photo"));
    EXPECT_THAT(offeredOnDevice({"analyze", "usage", "--folder=/var/mobile/.h"}),
                ElementsAre("--folder=/var/mobile/.hidden/"));
}

TEST_F(Completion, LeavesOutNamesThatWouldForgeALine) {
    sweepctl.device().folder("/var/mobile/one\ntwo");
    sweepctl.device().folder("/var/mobile/red\x1b[31m");
    sweepctl.device().folder("/var/mobile/tab\there");
    EXPECT_THAT(offeredOnDevice({"whitelist", "paths", "add", "/var/mobile/"}), IsEmpty());
}

TEST_F(Completion, MakesNoSampleDeviceAndIsSilentWithoutADevice) {
    EXPECT_THAT(offered({"apps", "clean", ""}), IsEmpty());
    EXPECT_THAT(offered({"--device-root", "/no/such/device", "apps", "clean", ""}), IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(sweepctl.homeFolder() + "/.local"));
}

TEST_F(Completion, FindsADeviceBelowTheHomeFolder) {
    ASSERT_EQ(sweepctl.runBare({"sample-device", sweepctl.homeFolder() + "/phone"}).status, 0);
    EXPECT_THAT(offered({"--device-root", "~/phone", "whitelist", "paths", "add", "/var/m"}),
                ElementsAre("/var/mobile/"));
}

}  // namespace
}  // namespace sweepwright::test
