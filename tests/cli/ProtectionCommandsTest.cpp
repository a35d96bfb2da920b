#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/Sweepctl.h"

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
    EXPECT_EQ(sweepctl.run({"whitelist", "paths", "clear"}).output, "removed 2\n");
    EXPECT_EQ(sweepctl.json({"whitelist", "paths"})["user"], json::array());
}

TEST(WhitelistCommands, AChangeAnswersWithTheListAsItStands) {
    Sweepctl sweepctl;
    EXPECT_EQ(sweepctl.json({"whitelist", "paths", "add", "/var/a"})["user"], json{"/var/a"});
    EXPECT_EQ(sweepctl.json({"whitelist", "paths", "remove", "/var/a"})["user"], json::array());
    EXPECT_EQ(sweepctl.json({"whitelist", "apps", "add", "b", "a"}), (json{"b", "a"}));
    EXPECT_EQ(sweepctl.json({"whitelist", "apps", "clear"}), json::array());
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
    EXPECT_EQ(sweepctl.run({"whitelist", "paths", "check", "/var", "/x"}).output,
              "protected  /var\nfree       /x\n");
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
                                                  {"custom-paths", "remove", "/a"}}) {
        const ProcessResult result = sweepctl.run(words);
        EXPECT_EQ(result.status, 1) << words[0];
        EXPECT_EQ(result.output, "");
        EXPECT_TRUE(isOneLine(result.error)) << result.error;
    }
    EXPECT_EQ(
        sweepctl.device().content("/var/mobile/Library/Preferences/com.sweepwright.app.plist"),
        "damaged");
}

TEST(WhitelistCommands, ATerminalSeesControlCharactersEscapedAndAPipeTheirBytes) {
    Sweepctl sweepctl;
    EXPECT_EQ(sweepctl.run({"custom-paths", "add", "/a\x1b[2J\nb\u202E"}).status, 0);
    EXPECT_EQ(sweepctl.run({"custom-paths"}).output, "/a\x1b[2J\nb\u202E\n");
    sweepctl.setTerminal({.output = true});
    EXPECT_EQ(sweepctl.run({"custom-paths"}).screen, "PATH\n/a\\x1B[2J\\nb\\u{202E}\n");
}

TEST(WhitelistCommands, APathThatIsNotUtf8IsGivenByItsBytesToo) {
    Sweepctl sweepctl;
    const std::string path = "/var/mobile/a\xFFz";
    const json shown = {{"path", "/var/mobile/a\uFFFDz"}, {"pathBytes", "L3Zhci9tb2JpbGUvYf96"}};
    EXPECT_EQ(sweepctl.json({"custom-paths", "add", path, "/var/b"}), (json{shown, "/var/b"}));
    EXPECT_EQ(sweepctl.run({"custom-paths"}).output, path + "\n/var/b\n");
    EXPECT_EQ(sweepctl.json(
                  {"whitelist", "paths", "check", "/var/mobile/Library/Caches/GeoServices/\xFF"}),
              (json{{"/var/mobile/Library/Caches/GeoServices/\uFFFD", true},
                    {"pathBytes",
                     {{"L3Zhci9tb2JpbGUvTGlicmFyeS9DYWNoZXMvR2VvU2VydmljZXMv/w==", true}}}}));
}

}  // namespace
}  // namespace sweepwright::test
