#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/Sweepctl.h"
#include "support/ChildProcess.h"

namespace sweepwright::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

const json kBuiltIn = {"/var/mobile/Library/Caches/com.apple.Maps",
                       "/var/mobile/Library/Caches/MappedImageCache",
                       "/var/mobile/Library/Caches/GeoServices"};

TEST(WhitelistCommands, AFreshDeviceHasTheBuiltInPathsOnly) {
    Sweepctl sweepctl;
    EXPECT_EQ(sweepctl.json({"whitelist", "paths"}),
              (json{{"builtIn", kBuiltIn}, {"user", json::array()}}));
    EXPECT_EQ(sweepctl.run({"whitelist", "paths"}).output,
              "built-in  /var/mobile/Library/Caches/com.apple.Maps\n"
              "built-in  /var/mobile/Library/Caches/MappedImageCache\n"
              "built-in  /var/mobile/Library/Caches/GeoServices\n");
    EXPECT_FALSE(sweepctl.device().exists("/var/mobile/Library/Preferences"));
}

TEST(WhitelistCommands, PathsAreAddedNormalisedAndRemovedByAnySpelling) {
    Sweepctl sweepctl;
    EXPECT_EQ(sweepctl.run({"whitelist", "paths", "add", "/var/a//", "/var/b"}).status, 2);
    EXPECT_EQ(sweepctl.run({"whitelist", "paths", "add", "/var/a/", "/var/b"}).output,
              "added  /var/a/\nadded  /var/b\n");
    EXPECT_EQ(sweepctl.run({"whitelist", "paths", "add", "/var/a", "/var/c"}).output,
              "already there  /var/a\nadded          /var/c\n");
    EXPECT_EQ(sweepctl.json({"whitelist", "paths"})["user"], (json{"/var/a", "/var/b", "/var/c"}));
    EXPECT_EQ(sweepctl.run({"whitelist", "paths", "remove", "/var/b/", "/var/x"}).output,
              "removed        /var/b/\nwas not there  /var/x\n");
    EXPECT_EQ(sweepctl.run({"whitelist", "paths", "clear", "--yes"}).output,
              "removed 2 entries from whitelist paths\n");
    EXPECT_EQ(sweepctl.json({"whitelist", "paths"})["user"], json::array());
}

TEST(WhitelistCommands, AChangeAnswersWithTheListAsItStands) {
    Sweepctl sweepctl;
    EXPECT_EQ(sweepctl.json({"whitelist", "paths", "add", "/var/a"})["user"], json{"/var/a"});
    EXPECT_EQ(sweepctl.json({"whitelist", "paths", "remove", "/var/a"})["user"], json::array());
    for (const char* app : {"a", "b"})
        sweepctl.device().folder(std::string("/var/mobile/Containers/Data/Application/") + app);
    EXPECT_EQ(sweepctl.json({"whitelist", "apps", "add", "b", "a"}), (json{"b", "a"}));
    EXPECT_EQ(sweepctl.json({"whitelist", "apps", "clear", "--yes"}), json::array());
    EXPECT_EQ(sweepctl.json({"custom-paths", "add", "/x/"}), json{"/x/"});
}

TEST(WhitelistCommands, ABuiltInPathCanNotBeRemoved) {
    Sweepctl sweepctl;
    const std::string path = "/var/mobile/Library/Caches/GeoServices/";
    const ProcessResult result = sweepctl.run({"whitelist", "paths", "remove", path});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.error, "sweepctl: " + path + ": is built in and can't be removed\n");
}

TEST(WhitelistCommands, CheckTellsOfPathsInsideAndAboveProtectedOnes) {
    Sweepctl sweepctl;
    EXPECT_EQ(sweepctl.run({"whitelist", "paths", "add", "/var/mobile/Media/DCIM"}).status, 0);
    EXPECT_EQ(sweepctl.json({"whitelist", "paths", "check", "/var/mobile/Media/DCIM/1.jpg",
                             "/var/mobile/Library", "/var/mobile/Media/DCIM2", "/"}),
              (json{{"/var/mobile/Media/DCIM/1.jpg", true},
                    {"/var/mobile/Library", true},
                    {"/var/mobile/Media/DCIM2", false},
                    {"/", false}}));
    EXPECT_EQ(sweepctl
                  .run({"whitelist", "paths", "check", "/var", "/x", "/var/mobile/Media/DCIM/",
                        "/var/mobile/Media/DCIM/1.jpg"})
                  .output,
              "holds a protected path: never removed whole  /var\n"
              "free                                         /x\n"
              "protected                                    /var/mobile/Media/DCIM/\n"
              "protected                                    /var/mobile/Media/DCIM/1.jpg\n");
}

TEST(WhitelistCommands, PathsThatCouldNotBeRecognisedLaterAreRefused) {
    Sweepctl sweepctl;
    for (const char* wrong : {"var/a", "~/a", "/", "//", "/var/../a", "/var/./a", "/var/.."}) {
        for (const std::vector<std::string>& words :
             {std::vector<std::string>{"--json", "custom-paths", "add", "/fine", wrong},
              {"--json", "whitelist", "paths", "add", "/fine", wrong}}) {
            const ProcessResult result = sweepctl.run(words);
            EXPECT_EQ(result.status, 2) << words[1] << " " << wrong;
            EXPECT_THAT(errorIn(result.output), HasSubstr(wrong));
        }
    }
    EXPECT_EQ(sweepctl.json({"custom-paths"}), json::array());
    EXPECT_EQ(sweepctl.json({"whitelist", "paths"})["user"], json::array());
}

TEST(WhitelistCommands, NamesThatMerelyHoldDotsAreFine) {
    Sweepctl sweepctl;
    EXPECT_EQ(sweepctl.json({"custom-paths", "add", "/var/.hidden", "/var/..x", "/var/a..b"}),
              (json{"/var/.hidden", "/var/..x", "/var/a..b"}));
}

TEST(WhitelistCommands, APathThroughPrivateIsRefusedWhereVarLeadsThere) {
    Sweepctl sweepctl;
    EXPECT_EQ(sweepctl.run({"custom-paths", "add", "/private/var/a"}).status, 0);
    std::filesystem::remove_all(sweepctl.device().host("/var"));
    sweepctl.device().folder("/private/var/mobile");
    sweepctl.device().link("/var", "private/var");
    for (const char* path : {"/private/var/b", "/private/var"}) {
        const ProcessResult result = sweepctl.run({"custom-paths", "add", path});
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.error, HasSubstr("write the path as /var"));
    }
}

TEST(WhitelistCommands, CustomPathsAreKeptAsTypedAndMatchByTheirBeginning) {
    Sweepctl sweepctl;
    EXPECT_EQ(sweepctl.run({"custom-paths", "add", "/var/mobile/Media/Foo/"}).status, 0);
    EXPECT_EQ(sweepctl.run({"custom-paths"}).output, "/var/mobile/Media/Foo/\n");
    EXPECT_EQ(sweepctl.json({"custom-paths", "check", "/var/mobile/Media/Foo", "/else"}),
              (json{{"/var/mobile/Media/Foo", true}, {"/else", false}}));
    EXPECT_EQ(sweepctl.json({"custom-paths", "remove", "/var/mobile/Media/Foo"}),
              json{"/var/mobile/Media/Foo/"});
}

TEST(WhitelistCommands, AListIsEmptiedAfterAQuestionOrWithYesOnly) {
    for (const std::vector<std::string>& list : {std::vector<std::string>{"whitelist", "paths"},
                                                 {"whitelist", "apps"},
                                                 {"custom-paths"}}) {
        Sweepctl sweepctl;
        const auto run = [&](std::vector<std::string> more) {
            more.insert(more.begin(), list.begin(), list.end());
            return sweepctl.run(more);
        };
        EXPECT_EQ(run({"add", "/a", "/b"}).status, 0);
        const std::string before = run({}).output;
        const ProcessResult refused = run({"clear"});
        EXPECT_EQ(refused.status, 2);
        EXPECT_THAT(refused.error, HasSubstr("--yes"));
        EXPECT_TRUE(isOneLine(refused.error)) << refused.error;
        EXPECT_EQ(run({}).output, before);

        sweepctl.setTerminal(TerminalStreams::all());
        std::vector<std::string> words = list;
        words.emplace_back("clear");
        for (const char* answer : {"n\n", "y\n"}) {
            Process process(sweepctl.options(words));
            process.waitForText("Remove 2 entries from " + list.front());
            process.type(answer);
            const ProcessResult result = process.wait();
            EXPECT_EQ(result.status, *answer == 'y' ? 0 : 1);
            EXPECT_THAT(result.screen, HasSubstr(*answer == 'y' ? "removed 2 entries from "
                                                                : "the list is as it was"));
        }
        EXPECT_THAT(run({"clear"}).screen, testing::StartsWith("removed 0 entries")) << "it asked";
        sweepctl.setTerminal(TerminalStreams::none());
        EXPECT_EQ(run({"clear"}).status, 2) << "a script needs --yes, whatever the list holds";
        EXPECT_THAT(run({}).output, testing::Not(HasSubstr("/a")));
    }
}

TEST(WhitelistCommands, AnIdentifierThatIsNotInstalledIsAddedAndToldOf) {
    Sweepctl sweepctl;
    sweepctl.device().folder("/var/mobile/Containers/Data/Application/com.example.chat");
    const ProcessResult result =
        sweepctl.run({"whitelist", "apps", "add", "com.example.chat", "com.example.chatt"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "added  com.example.chat\nadded  com.example.chatt\n");
    EXPECT_EQ(result.error,
              "sweepctl: com.example.chatt: no app with this identifier is installed; did you mean "
              "\"com.example.chat\"?\n");
    EXPECT_EQ(sweepctl.json({"whitelist", "apps"}),
              (json{"com.example.chat", "com.example.chatt"}));
}

const char* const kOfMedia =
    "/var/mobile/Media: holds photos, voice memos, and every clean of the caches would empty it";

TEST(CustomPathCommands, APathWithWhatPeopleKeepIsRefusedWithoutAQuestion) {
    Sweepctl sweepctl;
    sweepctl.device().file("/var/mobile/Media/DCIM/1.HEIC", 5);
    sweepctl.device().link("/var/mobile/pictures", "Media/DCIM");
    for (const char* path :
         {"/var/mobile/Media", "/var/mobile/Media/DCIM/100APPLE/", "/var/mobile/pictures",
          "/var/mobile/Library/SMS", "/var/mobile", "/private/var/mobile/Media",
          "/var/mobile/Containers/Data/Application/X/Documents"}) {
        const ProcessResult result = sweepctl.run({"custom-paths", "add", "/var/fine", path});
        EXPECT_EQ(result.status, 2) << path;
        EXPECT_THAT(result.error, HasSubstr(std::string(path) + ": holds ")) << path;
        EXPECT_TRUE(isOneLine(result.error)) << result.error;
    }
    EXPECT_EQ(sweepctl.json({"custom-paths"}), json::array());
    EXPECT_EQ(sweepctl.run({"custom-paths", "add", "/var/mobile/Media"}).error,
              std::string("sweepctl: ") + kOfMedia + ": add --yes to do it without a question\n");
}

TEST(CustomPathCommands, APathWithWhatPeopleKeepIsAddedAfterAYes) {
    Sweepctl sweepctl;
    const ProcessResult sure = sweepctl.run({"custom-paths", "add", "/var/mobile/Media", "--yes"});
    EXPECT_EQ(sure.status, 0);
    EXPECT_EQ(sure.error, std::string("sweepctl: ") + kOfMedia + "\n");
    EXPECT_EQ(sweepctl.run({"custom-paths", "clear", "--yes"}).status, 0);

    sweepctl.setTerminal(TerminalStreams::all());
    for (const char* answer : {"n\n", "y\n"}) {
        Process process(sweepctl.options({"custom-paths", "add", "/var/mobile/Media"}));
        process.waitForText(std::string(kOfMedia) + "\nAdd it? [y/N] ");
        process.type(answer);
        const ProcessResult result = process.wait();
        EXPECT_EQ(result.status, *answer == 'y' ? 0 : 1);
        EXPECT_THAT(result.screen,
                    HasSubstr(*answer == 'y' ? "added   /var/mobile/Media" : "nothing was added"));
    }
    sweepctl.setTerminal(TerminalStreams::none());
    EXPECT_EQ(sweepctl.json({"custom-paths"}), json{"/var/mobile/Media"});
}

TEST(WhitelistCommands, ADamagedListIsAnErrorAndNeverLooksEmpty) {
    Sweepctl sweepctl;
    sweepctl.device().fileWith("/var/mobile/Library/Preferences/com.sweepwright.app.plist",
                               "damaged");
    for (const std::vector<std::string>& words : {std::vector<std::string>{"whitelist", "paths"},
                                                  {"whitelist", "paths", "check", "/a"},
                                                  {"whitelist", "paths", "add", "/a"},
                                                  {"whitelist", "apps"},
                                                  {"whitelist", "apps", "clear"},
                                                  {"custom-paths"},
                                                  {"custom-paths", "remove", "/a"},
                                                  {"custom-paths", "clear", "--yes"},
                                                  {"history"},
                                                  {"history", "delete", "a", "--yes"},
                                                  {"history", "clear", "--yes"},
                                                  {"stats"},
                                                  {"language"},
                                                  {"language", "en"},
                                                  {"language", "zh-Hans"},
                                                  {"text", "Tab Home"}}) {
        const ProcessResult result = sweepctl.run(words);
        EXPECT_EQ(result.status, 1) << words[0];
        EXPECT_EQ(result.output, "");
        EXPECT_TRUE(isOneLine(result.error)) << result.error;
    }
    const std::string folder = "/var/mobile/Library/Preferences";
    EXPECT_EQ(sweepctl.device().entriesBeneath(folder).size(), 1U) << "nothing was set aside";
    EXPECT_EQ(sweepctl.device().content(folder + "/com.sweepwright.app.plist"), "damaged");
}

TEST(WhitelistCommands, UserDefaultsThatMayNotBeWrittenNameTheTrueReason) {
    if (const std::string why = whyNoOrdinaryUser(); !why.empty()) GTEST_SKIP() << why;
    namespace fs = std::filesystem;
    Sweepctl sweepctl;
    const std::string folder = "/var/mobile/Library/Preferences";
    sweepctl.device().folder(folder);
    fs::permissions(sweepctl.device().root(), fs::perms(0755));
    fs::permissions(sweepctl.device().host(folder), fs::perms(0555));
    asOrdinaryUser([&] {
        const ProcessResult result = sweepctl.run({"whitelist", "paths", "add", "/a"});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.error,
                  "sweepctl: " + folder + "/com.sweepwright.app.plist.lock: Permission denied\n");
    });
    fs::permissions(sweepctl.device().host(folder), fs::perms(0755));
}

TEST(WhitelistCommands, ATerminalAndAPipeSeeControlCharactersEscapedAndADocumentHoldsThem) {
    Sweepctl sweepctl;
    const std::string path = "/a\x1b[2J\nb\u202E";
    EXPECT_EQ(sweepctl.json({"custom-paths", "add", path}), json{path});
    const std::string shown = "/a\\x1B[2J\\nb\\u{202E}\n";
    EXPECT_EQ(sweepctl.run({"custom-paths"}).output, shown);
    sweepctl.setTerminal({.output = true});
    EXPECT_EQ(sweepctl.run({"custom-paths"}).screen, "PATH\n" + shown);
}

TEST(WhitelistCommands, APathThatIsNotUtf8IsGivenByItsBytesToo) {
    Sweepctl sweepctl;
    const std::string path = "/var/mobile/a\xFFz";
    const json shown = {{"path", "/var/mobile/a\uFFFDz"}, {"pathBytes", "L3Zhci9tb2JpbGUvYf96"}};
    EXPECT_EQ(sweepctl.json({"custom-paths", "add", path, "/var/b"}), (json{shown, "/var/b"}));
    EXPECT_EQ(sweepctl.run({"custom-paths"}).output, "/var/mobile/a\\xFFz\n/var/b\n");
    EXPECT_EQ(sweepctl.json(
                  {"whitelist", "paths", "check", "/var/mobile/Library/Caches/GeoServices/\xFF"}),
              (json{{"/var/mobile/Library/Caches/GeoServices/\uFFFD", true},
                    {"pathBytes",
                     {{"L3Zhci9tb2JpbGUvTGlicmFyeS9DYWNoZXMvR2VvU2VydmljZXMv/w==", true}}}}));
}

}  // namespace
}  // namespace sweepwright::test
