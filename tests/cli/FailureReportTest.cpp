// What the commands say of what they could not read, remove or record.
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/Sweepctl.h"
#include "platform/plist/PropertyList.h"
#include "support/ChildProcess.h"

namespace sweepwright::test {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using platform::PropertyList;
using testing::AllOf;
using testing::HasSubstr;

using Words = std::vector<std::string>;

json parsed(const ProcessResult& result) {
    return json::parse(result.output, nullptr, false);
}

json entry(const std::string& path, const std::string& reason) {
    return {{"path", path}, {"reason", path + ": " + reason}};
}

/// An app with a cache of 10 bytes; the cache's path.
std::string installApp(TemporaryDevice& device) {
    const std::string data = "/var/mobile/Containers/Data/Application/A";
    device.fileWith(
        data + "/.com.apple.mobile_container_manager.metadata.plist",
        PropertyList(PropertyList::Dictionary{{"MCMMetadataIdentifier", "com.example.chat"}})
            .toBinary());
    device.file(data + "/Library/Caches/a", 10);
    return data + "/Library/Caches/a";
}

// --- Folders that may not be read ---

/// A device of which an ordinary user may read and change all but closed folders.
class ClosedFolders : public testing::Test {
  protected:
    void SetUp() override {
        if (const std::string why = whyNoOrdinaryUser(); !why.empty()) GTEST_SKIP() << why;
    }
    TemporaryDevice& device() { return sweepctl_.device(); }

    /// Runs `body` as that user.
    void withClosed(const Words& closed, const std::function<void()>& body) {
        for (const std::string& folder : {device().root(), sweepctl_.homeFolder()}) {
            fs::permissions(folder, fs::perms::all);
            for (const auto& each : fs::recursive_directory_iterator(folder))
                fs::permissions(each.path(), fs::perms::all);
        }
        for (const std::string& folder : closed)
            fs::permissions(device().host(folder), fs::perms::none);
        asOrdinaryUser(body);
    }

    const std::string tmp_ = "/var/mobile/tmp";
    const std::string closed_ = tmp_ + "/closed";
    const std::string cookies_ = "/var/mobile/Library/Cookies";
    Sweepctl sweepctl_;
};

TEST_F(ClosedFolders, AScanSaysHowManyItCouldNotReadAndTheFirst) {
    device().file(closed_ + "/a", 100);
    device().file(tmp_ + "/b", 1);
    device().file(cookies_ + "/c", 100);
    withClosed({closed_, cookies_}, [&] {
        const ProcessResult text = sweepctl_.run({"scan"});
        EXPECT_EQ(text.status, 0);
        EXPECT_EQ(text.error, "sweepctl: 2 folders could not be read, first: " + cookies_ +
                                  ": Permission denied\n");
        EXPECT_THAT(text.output, HasSubstr("temp           1 B  100%\n"));

        const ProcessResult result = sweepctl_.run({"scan", "--json"});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.error, text.error);
        EXPECT_EQ(parsed(result)["tempSize"], 1);
        EXPECT_EQ(parsed(result)["unreadable"], 2);
        EXPECT_EQ(parsed(result)["unreadableFolders"], (json{entry(cookies_, "Permission denied"),
                                                             entry(closed_, "Permission denied")}));
        EXPECT_FALSE(parsed(result).contains("failed"));
    });
}

TEST_F(ClosedFolders, VerboseNamesEach) {
    device().file(closed_ + "/a", 100);
    device().file(cookies_ + "/c", 100);
    withClosed({closed_, cookies_}, [&] {
        EXPECT_THAT(sweepctl_.run({"scan", "--verbose"}).error,
                    HasSubstr("sweepctl: 2 folders could not be read:\n"
                              "sweepctl:   " +
                              cookies_ +
                              ": Permission denied\n"
                              "sweepctl:   " +
                              closed_ + ": Permission denied\n"));
    });
}

TEST_F(ClosedFolders, EveryCommandThatMeasuresOrListsSaysSo) {
    device().file(closed_ + "/a", 100);
    device().file("/var/mobile/Documents/closed/a", 100);
    installApp(device());
    device().folder("/var/containers/Bundle/Application/closed");
    const std::string app = "/var/mobile/Containers/Data/Application/A/Library/Caches";
    const Words folders = {closed_, "/var/mobile/Documents/closed", app,
                           "/var/containers/Bundle/Application/closed"};
    withClosed(folders, [&] {
        for (const Words& words :
             {Words{"size", "temp"}, Words{"list", "temp"}, Words{"clean", "temp", "--dry-run"},
              Words{"analyze", "apps"}, Words{"analyze", "large"}, Words{"analyze", "duplicates"},
              Words{"analyze", "extensions"}, Words{"analyze", "usage"}, Words{"apps"},
              Words{"apps", "clean", "com.example.chat", "--dry-run"}}) {
            const ProcessResult result = sweepctl_.run(words);
            EXPECT_EQ(result.status, 0) << words[0] << " " << words.back();
            EXPECT_THAT(result.error, AllOf(HasSubstr("could not be read, first: /var/"),
                                            HasSubstr(": Permission denied\n")))
                << words[0] << " " << words.back();
        }
    });
}

TEST_F(ClosedFolders, WhereADocumentHasNoRoomTheyAreAllNamedOnStandardError) {
    device().file(closed_ + "/a", 100);
    device().file(tmp_ + "/other/a", 100);
    withClosed({closed_, tmp_ + "/other"}, [&] {
        const ProcessResult result = sweepctl_.run({"list", "temp", "--json"});
        EXPECT_EQ(parsed(result), json::array());
        EXPECT_EQ(result.error,
                  "sweepctl: 2 folders could not be read:\n"
                  "sweepctl:   " +
                      closed_ +
                      ": Permission denied\n"
                      "sweepctl:   " +
                      tmp_ + "/other: Permission denied\n");
    });
}

TEST_F(ClosedFolders, ACleanThatLeavesWhatWasToGoEndsWithFour) {
    device().file(closed_ + "/a", 100);
    device().file(tmp_ + "/b", 10);
    withClosed({closed_}, [&] {
        const ProcessResult result = sweepctl_.run({"clean", "temp", "--yes", "--json"});
        EXPECT_EQ(result.status, 4);
        EXPECT_EQ(result.error, "sweepctl: 1 entry could not be removed, first: " + closed_ +
                                    ": Permission denied\n");
        EXPECT_EQ(parsed(result), (json{{"success", true},
                                        {"cleanedBytes", 10},
                                        {"error", nullptr},
                                        {"failed", 1},
                                        {"failedEntries", {entry(closed_, "Permission denied")}}}));
        const ProcessResult again = sweepctl_.run({"clean", "temp", "--yes"});
        EXPECT_EQ(again.status, 4);
        EXPECT_EQ(again.output, "freed 0 B\n");
    });
    EXPECT_TRUE(device().exists(closed_ + "/a"));
}

TEST_F(ClosedFolders, ACleanOfAPlaceThatItCanNotReadEndsWithFour) {
    device().file(cookies_ + "/a", 100);
    withClosed({cookies_}, [&] {
        const ProcessResult result = sweepctl_.run({"clean", "cookies", "--yes", "--json"});
        EXPECT_EQ(result.status, 4);
        EXPECT_EQ(parsed(result)["unreadableFolders"],
                  (json{entry(cookies_, "Permission denied")}));
        EXPECT_FALSE(parsed(result).contains("failed"));
        EXPECT_THAT(result.error, HasSubstr("sweepctl: 1 folder could not be read, first: "));
    });
}

// --- A device that may not be changed, a disk that is full ---

TEST(FailureReport, OnAReadOnlyDeviceEveryCleanSaysWhatStayed) {
    if (const std::string why = whyNoMounts(); !why.empty()) GTEST_SKIP() << why;
    Sweepctl sweepctl;
    const std::string cache = installApp(sweepctl.device());
    const std::string shared = "/var/mobile/Library/Caches/com.apple.springboard/a";
    sweepctl.device().file(shared, 100);
    sweepctl.device().file("/var/mobile/tmp/a", 10);
    sweepctl.device().file("/var/mobile/tmp/b/c", 10);
    withOwnMounts([&] {
        mountReadOnlyAt(sweepctl.device().root(), sweepctl.device().root());

        const ProcessResult temp = sweepctl.run({"clean", "temp", "--yes"});
        EXPECT_EQ(temp.status, 4);
        EXPECT_EQ(temp.output, "freed 0 B\n");
        EXPECT_EQ(temp.error,
                  "sweepctl: 2 entries could not be removed, first: /var/mobile/tmp/a: Read-only "
                  "file system\n");

        const ProcessResult app = sweepctl.run({"apps", "clean", "com.example.chat", "--yes"});
        EXPECT_EQ(app.status, 4);
        EXPECT_EQ(app.output, "freed up to 10 B; 1 entry could not be removed\n");
        EXPECT_THAT(app.error, AllOf(HasSubstr("1 entry could not be removed, first: " + cache +
                                               ": Read-only file system\n"),
                                     HasSubstr("this clean could not be recorded: "),
                                     HasSubstr(": Read-only file system\n")));

        const ProcessResult deep = sweepctl.run({"deep-clean", "--yes"});
        EXPECT_EQ(deep.status, 4);
        EXPECT_EQ(deep.output, "freed up to 0 B; 1 entry could not be removed\n");
        EXPECT_THAT(deep.error, HasSubstr(shared + ": its folder can't be written\n"));
    });
    EXPECT_TRUE(sweepctl.device().exists(cache));
}

TEST(FailureReport, WhenTheDiskIsTooFullForItsRecordACleanSaysSo) {
    if (const std::string why = whyNoMounts(); !why.empty()) GTEST_SKIP() << why;
    Sweepctl sweepctl;
    sweepctl.device().file("/var/mobile/tmp/a", 10);
    const std::string preferences = "/var/mobile/Library/Preferences";
    sweepctl.device().folder(preferences);
    withOwnMounts([&] {
        mountMemory(sweepctl.device().host(preferences), "size=4k");
        std::ofstream(sweepctl.device().host(preferences) + "/full") << std::string(4096, 'x');
        const ProcessResult result = sweepctl.run({"clean", "temp", "--yes", "--json"});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(parsed(result)["cleanedBytes"], 10);
        EXPECT_THAT(parsed(result)["recordError"]["description"].get<std::string>(),
                    HasSubstr("No space left on device"));
        EXPECT_THAT(result.error, AllOf(HasSubstr("sweepctl: this clean could not be recorded: "),
                                        HasSubstr("No space left on device\n")));
        EXPECT_TRUE(isOneLine(result.error)) << result.error;
    });
}

TEST(FailureReport, ARecordThatCanNotBeStoredIsSaidOnce) {
    Sweepctl sweepctl;
    sweepctl.device().file("/var/mobile/tmp/a", 10);
    installApp(sweepctl.device());
    const std::string lock = "/var/mobile/Library/Preferences/com.sweepwright.app.plist.lock";
    sweepctl.device().folder(lock);
    for (const Words& words :
         {Words{"clean", "temp", "--yes"}, Words{"apps", "clean", "--all", "--yes"}}) {
        const ProcessResult result = sweepctl.run(words);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.output, "freed 10 B\n");
        EXPECT_TRUE(isOneLine(result.error)) << result.error;
        EXPECT_THAT(result.error, HasSubstr("sweepctl: this clean could not be recorded: " + lock));
    }
}

// --- What a scan counts and what a clean frees ---

TEST(ScanFigures, ADryRunShowsTheScansFigureWhereItIsAnother) {
    Sweepctl sweepctl;
    sweepctl.device().file("/var/mobile/Library/x.sqlite", 64);
    sweepctl.device().file("/var/custom/a", 1000);
    EXPECT_EQ(sweepctl.run({"custom-paths", "add", "/var/custom"}).status, 0);
    EXPECT_EQ(sweepctl.run({"clean", "databases", "--dry-run"}).output,
              "would free 0 B\n"
              "a scan counts 64 B there\n");
    EXPECT_THAT(sweepctl.run({"clean", "cache", "--dry-run"}).output,
                HasSubstr("would free 1000 B\n"
                          "a scan counts 2.0 KB there\n"));
    EXPECT_THAT(sweepctl.run({"clean", "all", "--dry-run"}).output,
                HasSubstr("would free 1000 B\n"
                          "a scan counts 2.0 KB there\n"));
}

TEST(ScanFigures, AScanShowsOnRequestWhatCleansWouldFree) {
    Sweepctl sweepctl;
    sweepctl.device().file("/var/mobile/Library/x.sqlite", 64);
    sweepctl.device().file("/var/mobile/tmp/a", 36);
    const ProcessResult result = sweepctl.run({"scan", "--would-free"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, AllOf(HasSubstr("temp            36 B   36%  36 B\n"),
                                     HasSubstr("databases       64 B   64%   0 B\n"),
                                     HasSubstr("total          100 B  100%  36 B\n")));
    const json document = sweepctl.json({"scan", "--would-free"});
    EXPECT_EQ(document["totalSize"], 100);
    EXPECT_EQ(document["wouldFree"].size(), 10U);
    EXPECT_EQ(document["wouldFree"]["databases"], 0);
    EXPECT_EQ(document["wouldFree"]["total"], 36);
    EXPECT_TRUE(sweepctl.device().exists("/var/mobile/tmp/a"));
}

TEST(ScanFigures, OnATerminalAScanSaysThatCleansMayFreeAnotherAmount) {
    Sweepctl sweepctl;
    sweepctl.setTerminal(TerminalStreams::all());
    EXPECT_THAT(sweepctl.run({"scan"}).screen, HasSubstr("What cleans would free can differ"));
}

TEST(ScanFigures, WithoutReadableListsNobodyCanSayWhatACleanWouldFree) {
    Sweepctl sweepctl;
    sweepctl.device().fileWith("/var/mobile/Library/Preferences/com.sweepwright.app.plist",
                               "damaged");
    EXPECT_EQ(sweepctl.run({"scan", "--would-free"}).status, 1);
}

}  // namespace
}  // namespace sweepwright::test
