#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Process.h"
#include "support/TemporaryDevice.h"

namespace sweepwright::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

using Variables = std::vector<std::pair<std::string, std::string>>;

/// The program that is shipped, called where it has no display unless `more` names one.
ProcessResult called(const std::vector<std::string>& words, const Variables& more = {}) {
    const TemporaryFolder home;
    ProcessOptions options;
    options.arguments = {SWEEPWRIGHT_APP};
    options.arguments.insert(options.arguments.end(), words.begin(), words.end());
    // What Qt and the fonts keep until the end is no leak of ours.
    options.environment = {{"HOME", home.path()}, {"ASAN_OPTIONS", "detect_leaks=0"}};
    options.environment.insert(options.environment.end(), more.begin(), more.end());
    return Process::run(options);
}

TEST(WithoutADisplay, TheHelpAndTheVersionAreGiven) {
    for (const char* word : {"--help", "-h"}) {
        const ProcessResult help = called({word});
        EXPECT_EQ(help.status, 0) << help.error;
        EXPECT_EQ(help.error, "");
        EXPECT_THAT(help.output,
                    AllOf(HasSubstr("sweepwright [options]"), HasSubstr("--device-root <folder>")));
    }
    const ProcessResult version = called({"--version"});
    EXPECT_EQ(version.status, 0) << version.error;
    EXPECT_EQ(version.error, "");
    EXPECT_THAT(version.output, MatchesRegex("sweepwright [0-9.]+\n"));
}

TEST(WithoutADisplay, TheAppSaysSoInOneLine) {
    const Variables nobodys{{"DISPLAY", ":60999"}};
    for (const ProcessResult& result : {called({}), called({}, nobodys)}) {
        EXPECT_EQ(result.status, 1) << result.error;
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.error, StartsWith("sweepwright: can't open a window: "));
        EXPECT_EQ(result.error.find('\n'), result.error.size() - 1) << result.error;
    }
    EXPECT_THAT(called({}).error, HasSubstr("neither DISPLAY nor WAYLAND_DISPLAY is set"));
    EXPECT_THAT(called({}, nobodys).error, HasSubstr(":60999"));
}

TEST(WithoutADisplay, QtsOwnOptionsMayStandBesideAQuestion) {
    const ProcessResult version = called({"-platform", "offscreen", "--version"});
    EXPECT_EQ(version.status, 0) << version.error;
    EXPECT_THAT(version.output, StartsWith("sweepwright "));
}

}  // namespace
}  // namespace sweepwright::test
