#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/ManualPage.h"
#include "cli/ProgramDescription.h"
#include "launch/AppOptions.h"

namespace sweepwright::cli {
namespace {

using testing::HasSubstr;
using testing::Not;

const ManualFacts kFacts{.date = "2026-02-03", .website = "https://example.com/"};

/// How the page writes dashes.
std::string withDashes(std::string text) {
    for (std::size_t at = text.find('-'); at != std::string::npos; at = text.find('-', at + 2))
        text.insert(at, "\\");
    return text;
}

TEST(ManualPage, HasEveryCommandWithItsWordsAndOptions) {
    const Commands commands = allCommands();
    const std::string page = commandManual(commands, kFacts);
    for (const Command& command : commands) {
        EXPECT_THAT(page, HasSubstr(".Ss " + command.group + "\n"));
        std::size_t start = 0;
        while (start < command.words.size()) {
            const std::size_t end = std::min(command.words.find(' ', start), command.words.size());
            EXPECT_THAT(page, HasSubstr(withDashes(command.words.substr(start, end - start))));
            start = end + 1;
        }
        for (const Option& option : command.options)
            EXPECT_THAT(page, HasSubstr("Fl " + withDashes(option.name.substr(1))));
    }
    EXPECT_THAT(page, HasSubstr(".It Cm whitelist paths \\&add Ar PATH ...\n"));
}

TEST(ManualPage, HasTheOptionsAndStatusesOfAllCommands) {
    const std::string page = commandManual(allCommands(), kFacts);
    for (const GlobalOption& option : globalOptions())
        EXPECT_THAT(page, HasSubstr("Fl " + withDashes(option.name.substr(1))));
    for (const ExitStatus& status : exitStatuses())
        EXPECT_THAT(page, HasSubstr(".It " + status.status + "\n" + status.meaning));
    EXPECT_THAT(page, HasSubstr(".It Fl v , Fl \\-verbose\n"));
}

TEST(ManualPage, OfTheAppHasItsOptions) {
    const std::string page = appManual(kFacts);
    for (const launch::AppOption& option : launch::appOptions())
        EXPECT_THAT(page, HasSubstr("Fl " + withDashes("-" + std::string(option.name))));
    EXPECT_THAT(page, HasSubstr(".Xr sweepctl 1\n"));
}

TEST(ManualPage, TellsTheReleaseAndTheWebsite) {
    const std::string page = commandManual({}, kFacts);
    EXPECT_THAT(page, HasSubstr(".Dd February 3, 2026\n"));
    EXPECT_THAT(page, HasSubstr(".Lk https://example.com/\n"));
}

TEST(ManualPage, TextIsNeverTakenForARequestOrAnEscape) {
    EXPECT_EQ(mdocText(".Sh is text"), "\\&.Sh is text");
    EXPECT_EQ(mdocText("'quoted' text"), "\\&'quoted' text");
    EXPECT_EQ(mdocText("a \\fBbackslash"), "a \\efBbackslash");
    EXPECT_EQ(mdocText("needs --yes"), "needs \\-\\-yes");
}

TEST(ManualPage, TextHasALineForEachSentenceAndNoneIsLong) {
    EXPECT_EQ(mdocText("One. Two. Three"), "One.\nTwo.\nThree");
    const std::string page = commandManual(allCommands(), kFacts) + appManual(kFacts);
    for (std::size_t start = 0; start < page.size();) {
        const std::size_t end = page.find('\n', start);
        EXPECT_LE(end - start, 200U) << page.substr(start, end - start);
        EXPECT_NE(end, start) << "an empty line, which mdoc does not allow";
        start = end + 1;
    }
    EXPECT_THAT(page, Not(HasSubstr(" \n")));
}

}  // namespace
}  // namespace sweepwright::cli
