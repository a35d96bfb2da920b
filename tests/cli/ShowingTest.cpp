#include <chrono>
#include <cmath>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <future>
#include <map>
#include <mutex>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/Interruption.h"
#include "cli/Json.h"
#include "cli/Progress.h"
#include "cli/Suggestion.h"
#include "cli/Text.h"
#include "platform/text/TextWidth.h"

namespace sweepwright::cli {
namespace {

using testing::HasSubstr;

TEST(Text, EachBadByteBecomesOneReplacementCharacter) {
    EXPECT_EQ(replacingBadBytes("a\xFF\xFE"
                                "b"),
              "a\uFFFD\uFFFDb");
    EXPECT_EQ(replacingBadBytes("\xE6\xB8"), "\uFFFD\uFFFD");
    EXPECT_EQ(replacingBadBytes("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(replacingBadBytes("清🧹"), "清🧹");
}

TEST(Text, Base64IsPadded) {
    EXPECT_EQ(base64(""), "");
    EXPECT_EQ(base64("f"), "Zg==");
    EXPECT_EQ(base64("fo"), "Zm8=");
    EXPECT_EQ(base64("foo"), "Zm9v");
    EXPECT_EQ(base64("\xFF\xFE\xFD\xFC"), "//79/A==");
}

TEST(Text, WhatIsCutAtItsEndKeepsWholeGlyphsWithinTheWidth) {
    EXPECT_EQ(cutAtEnd("abcdef", 6, "…"), "abcdef");
    EXPECT_EQ(cutAtEnd("abcdef", 4, "…"), "abc…");
    EXPECT_EQ(cutAtEnd("缓存文件", 8, "…"), "缓存文件");
    EXPECT_EQ(cutAtEnd("缓存文件", 6, "…"), "缓存…");
    EXPECT_EQ(cutAtEnd("abcdefgh", 6, "..."), "abc...");
    EXPECT_EQ(cutAtEnd("ae\u0301bcd", 3, "…"), "ae\u0301…");
}

TEST(Text, WhatIsCutInTheMiddleKeepsMoreOfItsEnd) {
    EXPECT_EQ(cutInMiddle("/var/mobile/tmp/a", 17, "…"), "/var/mobile/tmp/a");
    EXPECT_EQ(cutInMiddle("/var/mobile/tmp/a", 10, "…"), "/va…/tmp/a");
    EXPECT_EQ(cutInMiddle("/var/mobile/tmp/a", 12, "..."), "/va.../tmp/a");
    EXPECT_EQ(cutInMiddle("/缓存/缓存/文件", 10, "…"), "/缓…/文件");
    EXPECT_EQ(cutInMiddle("ae\u0301bcdefghe\u0301", 6, "…"), "a…fghe\u0301");
}

TEST(Text, NoRoomIsTooSmallToBeCutFor) {
    for (const std::string_view ellipsis : {"…", "..."}) {
        for (std::size_t columns = 0; columns < 12; ++columns) {
            for (const char* text : {"/var/mobile/tmp/a", "缓存文件缓存文件"}) {
                EXPECT_LE(platform::displayWidth(cutAtEnd(text, columns, ellipsis)), columns);
                EXPECT_LE(platform::displayWidth(cutInMiddle(text, columns, ellipsis)), columns);
            }
        }
    }
}

TEST(Text, AParagraphIsBrokenBetweenWordsOrWithinOneThatIsTooLong) {
    EXPECT_EQ(wrapped("one two three", 7), "one two\nthree");
    EXPECT_EQ(wrapped("one two three", 80), "one two three");
    EXPECT_EQ(wrapped("one two", 6, 2), "one\n  two");
    EXPECT_EQ(wrapped("a /var/mobile", 8), "a\n/var/mob\nile");
    EXPECT_EQ(wrapped("缓存文件缓存", 5), "缓存\n文件\n缓存");
    EXPECT_EQ(wrapped("", 10), "");
}

TEST(JsonPaths, AnObjectWithSeveralPathsGivesTheBytesOfEach) {
    Json object = Json::object();
    setPath(object, "dataPath", "/a\xFF");
    setPath(object, "bundlePath", "/b");
    EXPECT_EQ(object.dump(),
              "{\"dataPath\":\"/a\uFFFD\",\"dataPathBytes\":\"L2H/\","
              "\"bundlePath\":\"/b\"}");
}

TEST(Suggestion, OnlyWhatIsNearIsSuggested) {
    EXPECT_EQ(nearest("scna", {"size", "scan"}), "scan");
    EXPECT_EQ(nearest("histroy", {"history"}), "history");
    EXPECT_EQ(nearest("xy", {"list", "size"}), std::nullopt);
    EXPECT_EQ(nearest("", {"a"}), std::nullopt);
}

TEST(ProgressLine, ItShowsABarTheShareAndTheName) {
    EXPECT_EQ(Progress::lineFor("caches", 0.5, 40, true), "██████░░░░░░░  50%  caches");
    EXPECT_EQ(Progress::lineFor("caches", 0.5, 40, false), "######-------  50%  caches");
}

TEST(ProgressLine, WithoutUnicodeOnlyTheNameMayHoldMoreThanAscii) {
    EXPECT_EQ(Progress::lineFor("a name that is cut", 0.5, 30, false),
              "####-----  50%  a name tha...");
}

TEST(ProgressLine, ItLeavesTheLastColumnFreeAtEveryWidth) {
    for (std::size_t columns = 0; columns < 120; ++columns) {
        for (const double fraction : {0.0, 0.33, 1.0}) {
            const std::string line =
                Progress::lineFor("缓存文件 with a long name that is cut", fraction, columns, true);
            EXPECT_LE(platform::displayWidth(line), columns == 0 ? 0 : columns - 1) << columns;
        }
    }
}

TEST(ProgressLine, AFractionOutOfRangeOrNoNumberIsShownWithinIt) {
    EXPECT_THAT(Progress::lineFor("a", 7.0, 80, true), HasSubstr("100%"));
    EXPECT_THAT(Progress::lineFor("a", -1.0, 80, true), HasSubstr("  0%"));
    EXPECT_THAT(Progress::lineFor("a", std::nan(""), 80, true), HasSubstr("  0%"));
}

TEST(ProgressLine, ANameCanNotActOnTheTerminal) {
    EXPECT_THAT(Progress::lineFor("a\x1b[2J\nb", 0, 80, true), HasSubstr("a\\x1B[2J\\nb"));
}

/// What a progress line wrote, to wait for.
class Screen {
  public:
    Progress::Screen streams() {
        return {.write =
                    [this](std::string_view text) {
                        const std::scoped_lock lock(mutex_);
                        text_ += text;
                        ++draws_;
                        changed_.notify_all();
                    },
                .columns = [] { return std::size_t{80}; },
                .unicode = true};
    }
    void waitFor(const std::string& text) {
        std::unique_lock lock(mutex_);
        EXPECT_TRUE(changed_.wait_for(lock, std::chrono::seconds(60),
                                      [&] { return text_.find(text) != std::string::npos; }));
    }
    int draws() {
        const std::scoped_lock lock(mutex_);
        return draws_;
    }
    std::string text() {
        const std::scoped_lock lock(mutex_);
        return text_;
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::string text_;
    int draws_ = 0;
};

TEST(Progress, AFloodIsDrawnAtMostSixtyTimesASecondAndTheLastUpdateAlways) {
    Screen screen;
    Progress progress(screen.streams());
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 100000; ++i)
        progress.update("item " + std::to_string(i) + ".", 0.5);
    screen.waitFor("item 99999.");
    const auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_LE(screen.draws(), 2 + elapsed / Progress::kFrame);
}

TEST(Progress, ClearingTakesTheLineAwayOnce) {
    Screen screen;
    Progress progress(screen.streams());
    progress.clear();
    EXPECT_EQ(screen.text(), "");
    progress.update("item", 0);
    screen.waitFor("item");
    progress.clear();
    progress.clear();
    EXPECT_EQ(screen.draws(), 2);
    EXPECT_THAT(screen.text(), testing::EndsWith("\r\x1b[K"));
}

/// Hears signals though whoever started the tests had them ignored, as `nohup` and a script's "&"
/// do.
class InterruptionDeathTest : public testing::Test {
  protected:
    InterruptionDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
    ~InterruptionDeathTest() override {
        for (const auto& [number, handler] : before_)
            std::signal(number, handler);
    }

  private:
    std::map<int, sighandler_t> before_{{SIGINT, std::signal(SIGINT, SIG_DFL)},
                                        {SIGTERM, std::signal(SIGTERM, SIG_DFL)}};
};

using InterruptionTest = InterruptionDeathTest;

TEST_F(InterruptionTest, WorkThatCanBeStoppedIsAskedOnceAndTheSignalIsRemembered) {
    Interruption interruption([] {});
    std::promise<void> asked;
    const Interruption::Stoppable stoppable(interruption, [&] { asked.set_value(); });
    EXPECT_EQ(interruption.signal(), std::nullopt);
    std::raise(SIGTERM);
    asked.get_future().wait();
    EXPECT_EQ(interruption.signal(), SIGTERM);
}

TEST_F(InterruptionTest, ASignalThatArrivesWhileWorkStartsStopsItOnceItHasStarted) {
    Interruption interruption([] {});
    bool started = false;
    std::promise<bool> asked;
    const Interruption::Stoppable stoppable(
        interruption, [&] { asked.set_value(started); },
        [&] {
            std::raise(SIGTERM);
            started = true;
        });
    EXPECT_TRUE(asked.get_future().get());
}

TEST_F(InterruptionDeathTest, WithoutSuchWorkTheProgramTidiesUpAndEndsWithTheSignalsStatus) {
    const auto interrupted = [](int signal) {
        Interruption interruption([] { std::fputs("tidied", stderr); });
        std::raise(signal);
        std::promise<void>().get_future().wait();
    };
    EXPECT_EXIT(interrupted(SIGINT), testing::ExitedWithCode(130), "tidied");
    EXPECT_EXIT(interrupted(SIGTERM), testing::ExitedWithCode(143), "tidied");
}

TEST_F(InterruptionDeathTest, ASecondSignalEndsTheProgramAtOnce) {
    const auto twice = [] {
        Interruption interruption([] {});
        std::promise<void> asked;
        const Interruption::Stoppable stoppable(interruption, [&] { asked.set_value(); });
        std::raise(SIGINT);
        asked.get_future().wait();
        std::raise(SIGINT);
        std::promise<void>().get_future().wait();
    };
    EXPECT_EXIT(twice(), testing::ExitedWithCode(130), "");
}

}  // namespace
}  // namespace sweepwright::cli
