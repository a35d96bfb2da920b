#include <algorithm>
#include <filesystem>
#include <fstream>
#include <semaphore>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/log/Log.h"
#include "platform/log/internal/LogWriter.h"
#include "platform/text/ControlText.h"
#include "support/TemporaryDevice.h"

namespace sweepwright::platform {
namespace {

using testing::ElementsAre;
using testing::EndsWith;

std::vector<std::string> linesOf(const std::string& file) {
    std::ifstream in(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

/// Puts the log back to "nowhere" when a test ends.
struct LogTo {
    explicit LogTo(const LogOptions& options) { startLog(options); }
    ~LogTo() { startLog({}); }
};

TEST(Log, ACaptureSeesEveryLineWhenTheCallReturns) {
    const LogCapture capture;
    log("✅ 已添加自定义路径: {}", "/var/a");
    EXPECT_THAT(capture.lines(), ElementsAre("✅ 已添加自定义路径: /var/a"));
    EXPECT_TRUE(capture.contains("✅ 已添加自定义路径: /var/a"));
    EXPECT_FALSE(capture.contains("✅"));
}

TEST(Log, CapturesNestAndEndWithTheirLife) {
    LogCapture outer;
    {
        const LogCapture inner;
        log("one");
        EXPECT_THAT(inner.lines(), ElementsAre("one"));
    }
    log("two");
    EXPECT_THAT(outer.lines(), ElementsAre("one", "two"));
    outer.clear();
    EXPECT_TRUE(outer.lines().empty());
}

TEST(Log, ACaptureSeesLinesOfAllThreads) {
    const LogCapture capture;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int line = 0; line < 100; ++line)
                log("line {}", line);
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(capture.lines().size(), 400U);
}

TEST(Log, NothingIsFormattedWhereNobodyListens) {
    EXPECT_FALSE(logIsWanted());
    const LogCapture capture;
    EXPECT_TRUE(logIsWanted());
}

TEST(Log, TheFileHoldsEveryLineInOrderOnceFlushed) {
    const test::TemporaryFolder folder;
    const std::string file = folder.path() + "/app.log";
    const LogTo to({.file = file, .toError = false});
    EXPECT_FALSE(std::filesystem::exists(file)) << "opened before the first line";
    for (int i = 0; i < 500; ++i)
        log("line {}", i);
    flushLog();
    const auto lines = linesOf(file);
    ASSERT_EQ(lines.size(), 500U);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_THAT(lines[i], EndsWith(" line " + std::to_string(i)));
    }
}

TEST(Log, ANameCanNotForgeALineInTheFileButCapturesGetItRaw) {
    const test::TemporaryFolder folder;
    const std::string file = folder.path() + "/app.log";
    const LogTo to({.file = file, .toError = false});
    const LogCapture capture;
    log("{}", "a\n2026-01-01 forged\x1b[2J");
    flushLog();
    EXPECT_THAT(linesOf(file), ElementsAre(EndsWith("a\\n2026-01-01 forged\\x1B[2J")));
    EXPECT_THAT(capture.lines(), ElementsAre("a\n2026-01-01 forged\x1b[2J"));
}

TEST(Log, TheFileIsRotatedAndThreeOldOnesAreKept) {
    const test::TemporaryFolder folder;
    const LogTo to({.file = folder.path() + "/app.log", .toError = false});
    const std::string text(15000, 'x');
    for (int i = 0; i < 400; ++i) {  // 6 MB
        log("{}", text);
        if (i % 20 == 0) flushLog();  // so that nothing is dropped
    }
    flushLog();
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        ++files;
        EXPECT_LE(entry.file_size(), std::uintmax_t{1} << 20U);
    }
    EXPECT_EQ(files, 4U);
}

TEST(Log, StandardErrorGetsTheBareLine) {
    testing::internal::CaptureStderr();
    {
        const LogTo to({.file = "", .toError = true});
        log("🔒 白名单精确匹配: {}", "/a\rb");
        flushLog();
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "🔒 白名单精确匹配: /a\\rb\n");
}

TEST(Log, AFileThatCanNotBeOpenedIsToldOfOnceAndNothingElseFails) {
    testing::internal::CaptureStderr();
    {
        const LogTo to({.file = "/proc/nowhere/app.log", .toError = false});
        log("one");
        log("two");
        flushLog();
    }
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_THAT(told, testing::HasSubstr("/proc/nowhere"));
    EXPECT_EQ(std::ranges::count(told, '\n'), 1);
}

TEST(LogWriter, WritesInOrderAndFlushWaits) {
    std::vector<std::string> written;
    LogWriter writer([&](const LogWriter::Line& line) { written.push_back(line.text); });
    writer.add("one");
    writer.add("two");
    writer.flush();
    EXPECT_THAT(written, ElementsAre("one", "two"));
}

TEST(LogWriter, DropsTheOldestWaitingLinesAndTellsHowMany) {
    std::binary_semaphore entered{0};
    std::binary_semaphore go{0};
    bool first = true;
    std::vector<std::string> written;
    LogWriter writer([&](const LogWriter::Line& line) {
        if (std::exchange(first, false)) {
            entered.release();
            go.acquire();
        }
        written.push_back(line.text);
    });
    writer.add("first");
    entered.acquire();
    constexpr std::size_t kLines = 3000;
    for (std::size_t i = 0; i < kLines; ++i) {
        writer.add(std::to_string(i) + std::string(1000, ' '));
    }
    go.release();
    writer.flush();

    ASSERT_GT(written.size(), 3U);
    EXPECT_EQ(written[0], "first");
    const std::size_t kept = written.size() - 2;
    EXPECT_EQ(written[1], "⚠️ 日志写入过慢，已丢弃 " + std::to_string(kLines - kept) + " 行");
    EXPECT_EQ(std::stoul(written[2]), kLines - kept) << "the oldest go, the newest stay";
    EXPECT_EQ(std::stoul(written.back()), kLines - 1);
    EXPECT_LE(kept * 1000, LogWriter::kMaxWaitingBytes);
    EXPECT_GE(kept * 1200, LogWriter::kMaxWaitingBytes) << "what fits is kept";
}

TEST(LogWriter, ALongLineIsCut) {
    std::vector<std::string> written;
    LogWriter writer([&](const LogWriter::Line& line) { written.push_back(line.text); });
    writer.add(std::string(3 * LogWriter::kMaxLineBytes, 'x'));
    writer.flush();
    EXPECT_THAT(written, ElementsAre(std::string(LogWriter::kMaxLineBytes, 'x') + "…"));
}

TEST(LogWriter, EndingItWritesWhatWaits) {
    std::size_t written = 0;
    {
        LogWriter writer([&](const LogWriter::Line&) { ++written; });
        for (int i = 0; i < 100; ++i)
            writer.add("line");
    }
    EXPECT_EQ(written, 100U);
}

TEST(LogWriter, ManyThreadsMayAddAndFlush) {
    std::size_t written = 0;
    LogWriter writer([&](const LogWriter::Line&) { ++written; });
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int line = 0; line < 200; ++line)
                writer.add("line");
            writer.flush();
        });
    }
    for (auto& thread : threads)
        thread.join();
    writer.flush();
    EXPECT_EQ(written, 800U);
}

TEST(ControlText, EscapesWhatCouldForgeALineAndKeepsTheRest) {
    EXPECT_EQ(escapedControls("/var/缓存 ✅ é 😀"), "/var/缓存 ✅ é 😀");
    EXPECT_EQ(escapedControls("a\nb\rc\td"), "a\\nb\\rc\\td");
    EXPECT_EQ(escapedControls(std::string_view("\0\x1b\x7f", 3)), "\\x00\\x1B\\x7F");
    EXPECT_EQ(escapedControls("\xC2\x9B"
                              "31m"),
              "\\u{009B}31m");
    EXPECT_EQ(escapedControls("\xE2\x80\xA8\xE2\x80\xAE\xE2\x81\xA6"),
              "\\u{2028}\\u{202E}\\u{2066}");
}

TEST(ControlText, BytesThatAreNotUtf8AreEscapedOneByOne) {
    EXPECT_EQ(escapedControls("a\xFFz"), "a\\xFFz");
    EXPECT_EQ(escapedControls("\x9B"
                              "2J"),
              "\\x9B2J");
    EXPECT_EQ(escapedControls("\xC0\x8A"), "\\xC0\\x8A") << "an overlong newline";
    EXPECT_EQ(escapedControls("\xE2\x80"), "\\xE2\\x80") << "cut short";
    EXPECT_EQ(escapedControls("\xED\xA0\x80"), "\\xED\\xA0\\x80") << "a surrogate";
    EXPECT_EQ(escapedControls("\xF4\x90\x80\x80"), "\\xF4\\x90\\x80\\x80") << "beyond the last";
}

}  // namespace
}  // namespace sweepwright::platform
