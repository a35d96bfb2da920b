// Names of the device that mean harm, in every command that shows them, on a terminal and in a
// pipe.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/Sweepctl.h"
#include "platform/plist/PropertyList.h"
#include "platform/text/Utf8.h"

namespace sweepwright::test {
namespace {

using platform::PropertyList;
using Array = PropertyList::Array;
using Dictionary = PropertyList::Dictionary;
using Words = std::vector<std::string>;

/// Moves the cursor, sets a title, turns the writing direction and begins a line of its own.
const std::string kWicked =
    "a\x1b[2J\x1b]0;t\x07\r\nforged\x7f\x9b\xC2\x9B"
    "1A\xE2\x80\xAE\xD8\x9C\xE2\x80\xA8z";
/// The same as a text that a property list holds.
const std::string kWickedText =
    "a\x1b[2J\x1b]0;t\x07\r\nforged\x7f\xC2\x9B"
    "1A\xE2\x80\xAE\xD8\x9C\xE2\x80\xA8z";

const std::string kContainer = "/var/mobile/Containers/Data/Application/" + kWicked;

void fillFolders(TemporaryDevice& device) {
    const std::string library = "/var/mobile/Library/";
    for (const std::string& folder :
         {std::string("/var/mobile/tmp/"), library + "Caches/", library + "Cookies/",
          library + "Logs/", library + "Logs/CrashReporter/", library + "Caches/ImageCache/",
          std::string("/var/mobile/Documents/Downloads/"), std::string("/var/mobile/Documents/"),
          library + "WebKit/", library + "Caches/com.apple.Safari/"}) {
        device.file(folder + kWicked, 2000);
        device.age(folder + kWicked, 100'000);
    }
    device.file(library + "Application Support/" + kWicked + "cache/" + kWicked, 3000);
    device.file(library + "Application Support/" + kWicked + ".db-wal", 3000);
    device.file(library + kWicked + ".db", 3000);
    device.file(library + kWicked + ".db-wal", 3000);
    device.age(library + kWicked + ".db-wal", 100'000);
    device.file("/var/mobile/Documents/two-" + kWicked + "." + kWicked, 2000);
}

/// A device on which everything that has a name has a wicked one.
void fillWickedly(TemporaryDevice& device) {
    fillFolders(device);
    device.fileWith(kContainer + "/.com.apple.mobile_container_manager.metadata.plist",
                    PropertyList(Dictionary{{"MCMMetadataIdentifier", kWickedText}}).toBinary());
    device.file(kContainer + "/Library/Caches/" + kWicked, 10);
    device.fileWith(
        "/var/containers/Bundle/Application/" + kWicked + "/X.app/Info.plist",
        PropertyList(Dictionary{{"CFBundleIdentifier", kWickedText}, {"CFBundleName", kWickedText}})
            .toBinary());
    const Dictionary record{{"identifier", kWickedText},
                            {"cleanTypeName", kWickedText},
                            {"cleanDate", kWickedText},
                            {"cleanedBytes", 5}};
    device.fileWith("/var/mobile/Library/Preferences/com.sweepwright.app.plist",
                    PropertyList(Dictionary{{"CleanHistoryRecords", Array{record}},
                                            {"lastCleanDate", kWickedText},
                                            {"AppLanguage", kWickedText}})
                        .toBinary());
}

/// What the program itself does with the cursor: its progress line.
std::string withoutProgress(std::string screen) {
    for (const std::string own : {"\r\x1b[K", "\x1b[K", "\r"}) {
        for (std::size_t at = screen.find(own); at != std::string::npos; at = screen.find(own, at))
            screen.erase(at, own.size());
    }
    return screen;
}

/// Runs a call. Answers whether it showed a wicked name, escaped.
bool showsSafely(const Sweepctl& sweepctl, const Words& words) {
    const ProcessResult result = sweepctl.run(words);
    const std::string screen = withoutProgress(result.screen) + result.output + result.error;
    std::string call;
    for (const std::string& word : words)
        call += word + " ";
    for (const char byte : screen) {
        const bool control = static_cast<unsigned char>(byte) < ' ' || byte == '\x7f';
        EXPECT_TRUE(!control || byte == '\n') << call << "\n" << screen;
        if (control && byte != '\n') return false;
    }
    for (const char* sequence :
         {"\nforged", "\xC2\x9B", "\xE2\x80\xAE", "\xD8\x9C", "\xE2\x80\xA8"})
        EXPECT_FALSE(screen.contains(sequence)) << call << "\n" << screen;
    EXPECT_TRUE(platform::isUtf8(screen)) << call << "\n" << screen;
    return screen.contains("\\x1B[2");  // an extension is shown in lower case
}

/// Calls that tell of the device's names, or of a word of the call.
std::vector<Words> callsThatShowNames() {
    std::vector<Words> calls{{"apps"},
                             {"apps", "clean", kWickedText, "--dry-run"},
                             {"deep-clean", "--dry-run"},
                             {"apps", "clean", "--all", "--dry-run", "--full"},
                             {"analyze", "apps"},
                             {"analyze", "large", "--min-size", "1"},
                             {"analyze", "large", "--folder", "/" + kWicked},
                             {"analyze", "usage", "--folder", "/var/mobile/tmp"},
                             {"analyze", "duplicates"},
                             {"analyze", "extensions"},
                             {"history"},
                             {"stats"},
                             {"custom-paths", "add", "/" + kWicked},
                             {"custom-paths"},
                             {"whitelist", "paths", "add", "/" + kWicked},
                             {"whitelist", "paths"},
                             {"whitelist", "paths", "check", "/" + kWicked},
                             {"whitelist", "apps", "add", kWicked},
                             {"whitelist", "apps"},
                             {"custom-paths", "remove", "/" + kWicked},
                             {"whitelist", "apps", "remove", kWicked},
                             {"whitelist", "paths", "remove", "/" + kWicked},
                             {"history", "delete", "no " + kWicked},
                             {"history", "delete", kWickedText, kWicked},
                             {"size", kWicked},
                             {"list", kWicked},
                             {kWicked},
                             {"scan", "--" + kWicked},
                             {"text", kWicked},
                             {"--device-root", "/" + kWicked, "scan"},
                             {"--home", kWicked, "scan"}};
    for (const char* category : {"cache", "temp", "logs", "cookies", "downloads", "images",
                                 "databases", "crash-reports"}) {
        calls.push_back({"list", category});
        calls.push_back({"clean", category, "--dry-run"});
    }
    calls.push_back({"clean", "all", "--dry-run"});
    return calls;
}

/// Runs every call on one device with these streams on a terminal.
void expectShownSafely(const TerminalStreams& terminal) {
    Sweepctl sweepctl;
    fillWickedly(sweepctl.device());
    sweepctl.setTerminal(terminal, 1000);  // names are shown whole
    std::string silent;
    for (const Words& words : callsThatShowNames()) {
        if (showsSafely(sweepctl, words)) continue;
        for (const std::string& word : words)
            silent += word + " ";
        silent += "\n";
    }
    EXPECT_EQ(silent, "") << "these calls showed no name, so they prove nothing";
}

TEST(TerminalNames, NoCommandLetsANameActOnTheTerminal) {
    expectShownSafely(TerminalStreams::all());
}

TEST(TerminalNames, NoCommandLetsANameForgeALineInAPipe) {
    expectShownSafely(TerminalStreams::none());
}

TEST(TerminalNames, TheLogOfACleanDoesNotLetANameActOnTheTerminal) {
    for (const Words& words : {Words{"clean", "all", "--yes", "--verbose"},
                               Words{"apps", "clean", kWickedText, "--yes", "--verbose"},
                               Words{"apps", "clean", "--all", "--yes", "--verbose"},
                               Words{"deep-clean", "--yes", "--verbose"}}) {
        Sweepctl sweepctl;
        fillWickedly(sweepctl.device());
        sweepctl.setTerminal(TerminalStreams::all(), 1000);
        const bool named = showsSafely(sweepctl, words);
        EXPECT_TRUE(named || words[0] == "deep-clean") << words[0];  // that log names no entry
    }
}

TEST(TerminalNames, AFolderThatEndsACommandsQuotingCanNotMakeTheShellWriteOnTheTerminal) {
    const std::string root = "/var/mobile/Library/Caches/com.apple.";
    for (const std::string& name : {std::string("x'; echo forged; : '"),
                                    std::string("x'; echo forged >&2; : '"), std::string("x'(")}) {
        Sweepctl sweepctl;
        sweepctl.device().file(root + name + "/a", 100);
        sweepctl.setTerminal(TerminalStreams::all());
        for (const char* category : {"cache", "temp"}) {
            const std::string screen = sweepctl.run({"clean", category, "--yes"}).screen;
            EXPECT_FALSE(screen.contains("\nforged")) << screen;
            EXPECT_FALSE(screen.contains("sh: ")) << screen;
        }
        const std::string screen = sweepctl.run({"deep-clean", "--yes"}).screen;
        EXPECT_FALSE(screen.contains("forged\n")) << screen;
        EXPECT_FALSE(screen.contains("sh: ")) << screen;
    }
}

}  // namespace
}  // namespace sweepwright::test
