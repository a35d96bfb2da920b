#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/Sweepctl.h"

namespace sweepwright::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;
using Words = std::vector<std::string>;

/// A call that must be refused for its words, as text and as JSON, without touching the device.
void expectWrongWords(const Words& words, const std::string& said) {
    Sweepctl sweepctl;
    const ProcessResult text = sweepctl.run(words);
    EXPECT_EQ(text.status, 2) << said;
    EXPECT_EQ(text.output, "");
    EXPECT_THAT(text.error, StartsWith("sweepctl: "));
    EXPECT_THAT(text.error, HasSubstr(said));
    EXPECT_TRUE(isOneLine(text.error)) << text.error;

    Words withJson{"--json"};
    withJson.insert(withJson.end(), words.begin(), words.end());
    const ProcessResult document = sweepctl.run(withJson);
    EXPECT_EQ(document.status, 2);
    EXPECT_THAT(errorIn(document.output), HasSubstr(said));
    EXPECT_TRUE(isOneLine(document.error)) << document.error;
    EXPECT_FALSE(sweepctl.device().exists("/var/mobile/Library"));
}

TEST(Words, NoCommandIsRefused) {
    expectWrongWords({}, "no command is given");
}

TEST(Words, AnUnknownCommandIsRefusedWithTheNearestKnownOne) {
    expectWrongWords({"scna"}, "did you mean \"scan\"?");
    expectWrongWords({"whitelist", "path"}, "did you mean \"paths\"?");
    expectWrongWords({"whitelist", "paths", "ad"}, "did you mean \"add\"?");
}

TEST(Words, AWordNearNoCommandGetsNoSuggestion) {
    expectWrongWords({"frobnicate"}, "no command \"frobnicate\"; see sweepctl --help");
}

TEST(Words, ACommandThatOnlyGroupsOthersNamesThem) {
    expectWrongWords({"whitelist"}, "whitelist needs one of: paths, apps");
}

TEST(Words, AnUnknownOptionIsRefused) {
    expectWrongWords({"scan", "--bogus"}, "scan has no option --bogus");
    expectWrongWords({"--bogus", "scan"}, "has no option --bogus");
}

TEST(Words, AWordThatACommandHasNoUseForIsRefused) {
    expectWrongWords({"scan", "everything"}, "scan has no use for \"everything\"");
}

TEST(Words, AMissingWordIsNamed) {
    expectWrongWords({"size"}, "size needs WHAT, one of cache, temp, ");
    expectWrongWords({"whitelist", "paths", "add"}, "whitelist paths add needs PATH");
}

TEST(Words, AWordThatIsNoChoiceIsRefusedWithTheChoices) {
    expectWrongWords({"size", "cach"},
                     "must be one of cache, temp, cookies, logs, downloads, "
                     "images, databases, crash-reports, offline-data, system, "
                     "custom, not \"cach\"");
}

TEST(Words, AnEmptyWordIsRefused) {
    expectWrongWords({"whitelist", "apps", "add", ""}, "may not be empty");
}

TEST(Words, AnOptionWithoutItsValueIsRefused) {
    expectWrongWords({"scan", "--home"}, "--home");
}

TEST(Words, ASwitchTakesNoValue) {
    // "--yes=false" must never pass for a yes, so no switch takes a value.
    expectWrongWords({"scan", "--no-progress=false"}, "no-progress");
}

TEST(Words, JsonTakesAYesOrANo) {
    const Sweepctl sweepctl;
    for (const char* yes : {"--json=1", "--json=true", "--json=yes", "--json=on"}) {
        EXPECT_EQ(sweepctl.run({"size", "temp", yes}).output,
                  sweepctl.run({"size", "temp", "--json"}).output);
        EXPECT_THAT(errorIn(sweepctl.run({"scna", yes}).output), HasSubstr("did you mean"));
    }
    for (const char* no : {"--json=0", "--json=false", "--json=no", "--json=off"}) {
        EXPECT_EQ(sweepctl.run({"size", "temp", no}).output, "0 B\n");
        EXPECT_EQ(sweepctl.run({"scna", no}).output, "");
    }
    const ProcessResult neither = sweepctl.run({"size", "temp", "--json=xml"});
    EXPECT_EQ(neither.status, 2);
    EXPECT_THAT(neither.error, HasSubstr("--json is yes or no, not \"xml\""));
}

TEST(Words, AnIdiomIsOneOfTwo) {
    expectWrongWords({"--idiom", "watch", "scan"}, "--idiom must be iphone or ipad");
}

TEST(Words, ANumberMustBeOneAndWithinItsBounds) {
    for (const char* wrong : {"0", "1001", "-1", "two", "1e3", "", "99999999999999999999999"})
        expectWrongWords({"sample-device", "x", "--scale", wrong}, "whole number from 1 to 1000");
}

TEST(Words, ControlCharactersInWordsAreEscapedInTheErrorLine) {
    expectWrongWords({"scan", "a\nb\x1b[31m"}, "");
    const ProcessResult result = Sweepctl().run({"scan", "a\nb\x1b[31m"});
    EXPECT_THAT(result.error, HasSubstr("a\\nb\\x1B[31m"));
}

TEST(Words, GlobalOptionsMayStandAfterTheCommandAndItsWords) {
    Sweepctl sweepctl;
    const std::string root = sweepctl.device().root();
    for (const Words& words : {Words{"--device-root", root, "--json", "size", "temp"},
                               Words{"size", "--device-root", root, "temp", "--json"},
                               Words{"size", "temp", "--json", "--device-root=" + root}}) {
        const ProcessResult result = sweepctl.runBare(words);
        EXPECT_EQ(result.status, 0) << result.error;
        EXPECT_EQ(nlohmann::json::parse(result.output, nullptr, false),
                  (nlohmann::json{{"size", 0}}));
    }
}

TEST(Words, GlobalOptionsMayStandAmongTheWordsOfANestedCommand) {
    Sweepctl sweepctl;
    const ProcessResult result =
        sweepctl.run({"whitelist", "--json", "paths", "add", "/a", "--idiom", "ipad", "/b"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(nlohmann::json::parse(result.output, nullptr, false)["user"],
              (nlohmann::json{"/a", "/b"}));
}

TEST(Words, TheLastOfARepeatedGlobalOptionCounts) {
    Sweepctl sweepctl;
    EXPECT_EQ(sweepctl
                  .runBare({"--device-root", "/nowhere", "scan", "--device-root",
                            sweepctl.device().root()})
                  .status,
              0);
}

TEST(Words, WhatFollowsTwoDashesIsNeverAnOption) {
    Sweepctl sweepctl;
    const ProcessResult added = sweepctl.run({"whitelist", "apps", "add", "--", "--json", "-v"});
    EXPECT_EQ(added.status, 0) << added.error;
    EXPECT_EQ(sweepctl.json({"whitelist", "apps"}), (nlohmann::json{"--json", "-v"}));
}

TEST(Words, ANameOfACommandMayBeAWordOfAnother) {
    Sweepctl sweepctl;
    EXPECT_EQ(sweepctl.run({"whitelist", "apps", "add", "scan", "paths", "clear"}).status, 0);
    EXPECT_EQ(sweepctl.json({"whitelist", "apps"}), (nlohmann::json{"scan", "paths", "clear"}));
}

TEST(Words, HelpNamesEveryCommandAndTouchesNoDevice) {
    Sweepctl sweepctl;
    const ProcessResult help = sweepctl.runBare({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.error, "");
    for (const char* part : {"scan ", "size WHAT", "whitelist paths add PATH...", "custom-paths",
                             "sample-device DIR [--scale N]", "--device-root DIR", "Exit status"})
        EXPECT_THAT(help.output, HasSubstr(part));
    EXPECT_EQ(sweepctl.runBare({"-h"}).output, help.output);
}

TEST(Words, HelpIsACommandToo) {
    const Sweepctl sweepctl;
    EXPECT_EQ(sweepctl.runBare({"help"}).output, sweepctl.runBare({"--help"}).output);
    EXPECT_EQ(sweepctl.runBare({"help", "clean"}).output,
              sweepctl.runBare({"clean", "--help"}).output);
    EXPECT_EQ(sweepctl.runBare({"help", "whitelist", "paths", "add"}).output,
              sweepctl.runBare({"whitelist", "paths", "add", "--help"}).output);
    EXPECT_EQ(sweepctl.json({"help", "whitelist"}), sweepctl.json({"whitelist", "--help"}));
    expectWrongWords({"help", "claen"}, "there is no command \"claen\"; did you mean \"clean\"?");
}

TEST(Words, HelpListsTheOptionsOfAllCommandsInTheirOrder) {
    const std::string help = Sweepctl().runBare({"--help"}).output;
    EXPECT_THAT(help, HasSubstr(R"(
Options, before or after the command:
  --device-root DIR   the folder that is the device's "/": where it is mounted
                      or was copied to ($SWEEPWRIGHT_DEVICE_ROOT); on a device
                      "/", elsewhere the device that is connected, or a sample
                      device, made on first use
  --home PATH         the app's home directory on the device ($SWEEPWRIGHT_HOME)
  --tmp PATH          the temporary directory on the device (HOME/tmp)
  --idiom KIND        iphone or ipad (iphone)
  --json              one JSON document, and nothing else, on standard output
  --no-progress       no progress line
  -v, --verbose       the diagnostic log on standard error, too, and each folder
                      and entry that could not be read or removed
  -h, --help          this help, or a command's: sweepctl COMMAND --help
  --version           the version

Examples:
)"));
    EXPECT_THAT(help, HasSubstr(R"(
Exit status:
  0  done
  1  the operation reported an error
  2  the words of the call are wrong
  3  the device root can't be used, or is no device
  4  done, but something that was to go could not be read or removed
  130, 143  stopped by an interrupt or a request to end

Nothing is removed without a question or --yes, nothing outside the device root
is ever touched, and what the whitelists protect stays.
)"));
}

TEST(Words, HelpFitsATerminalOfEightyColumns) {
    const std::string help = Sweepctl().runBare({"--help"}).output;
    std::size_t start = 0;
    while (start < help.size()) {
        const std::size_t end = help.find('\n', start);
        EXPECT_LE(end - start, 80U) << help.substr(start, end - start);
        start = end + 1;
    }
}

TEST(Words, HelpOfACommandIsGivenEvenWhenItsWordsAreMissing) {
    const Sweepctl sweepctl;
    const ProcessResult help = sweepctl.runBare({"whitelist", "paths", "add", "--help"});
    EXPECT_EQ(help.status, 0) << help.error;
    EXPECT_THAT(help.output, StartsWith("sweepctl whitelist paths add - "));
    EXPECT_THAT(sweepctl.runBare({"whitelist", "--help"}).output,
                HasSubstr("whitelist apps remove ID..."));
}

TEST(Words, TheVersionIsOneLineOrADocument) {
    const Sweepctl sweepctl;
    const ProcessResult text = sweepctl.runBare({"--version"});
    EXPECT_EQ(text.status, 0);
    EXPECT_THAT(text.output, StartsWith("sweepctl "));
    EXPECT_TRUE(isOneLine(text.output));
    const nlohmann::json document = sweepctl.json({"--version"});
    EXPECT_TRUE(document["version"].is_string());
    EXPECT_TRUE(document["commit"].is_string() || document["commit"].is_null());
    EXPECT_EQ(document["commit"].is_null(), document["date"].is_null());
}

TEST(Words, AnOutputThatTakesNothingIsAnError) {
    const Sweepctl sweepctl;
    ProcessOptions options = sweepctl.options({"scan"});
    options.outputFile = "/dev/full";
    const ProcessResult result = Process::run(options);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.error, HasSubstr("standard output: No space left on device"));
}

}  // namespace
}  // namespace sweepwright::test
