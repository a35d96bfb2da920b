#include <future>
#include <utility>

#include "EngineTest.h"

namespace sweepwright {
namespace {

using test::EngineDevice;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class StoppingTest : public EngineTest {
  protected:
    /// Stops before the n-th removal, which is the entry in hand then.
    void stopAt(std::size_t n) {
        d_.eraser.onRemove = [this, n](const std::string&) {
            if (d_.eraser.removed.size() == n) d_.engine.stop();
        };
    }
    void temporaryFiles(int count) {
        for (int i = 0; i < count; ++i)
            d_.tree.file(d_.temporary(std::to_string(i)), 10);
    }
};

TEST_F(StoppingTest, ACleanEndsAfterTheEntryInHandAndReportsAndRecordsWhatItFreed) {
    temporaryFiles(10);
    stopAt(3);
    const auto outcome = d_.clean(CleanType::TempFiles);
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.bytes, 30U);
    EXPECT_EQ(d_.tree.entriesBeneath(d_.device.temporaryDirectory()).size(), 7U);
    EXPECT_EQ(d_.statistics.totals().totalCleanedBytes, 30U);
    EXPECT_EQ(d_.statistics.totals().cleanCount, 1);
    ASSERT_THAT(d_.history.getAllCleanHistory(), SizeIs(1));
    EXPECT_EQ(d_.history.getAllCleanHistory()[0].cleanedBytes, 30U);
}

TEST_F(StoppingTest, AFolderInHandGoesWhole) {
    d_.tree.file(d_.temporary("folder/a"), 10);
    d_.tree.file(d_.temporary("folder/b"), 10);
    stopAt(1);
    EXPECT_EQ(d_.clean(CleanType::TempFiles).bytes, 20U);
}

TEST_F(StoppingTest, NoStepOfAnyCategoryFollows) {
    d_.tree.file(d_.caches("first"), 10);
    d_.tree.file(d_.support("Cache/a"), 10);
    d_.tree.file("/var/db/uuidtext/a", 10);
    d_.tree.file(EngineDevice::shared("SomeCache/a"), 10);
    d_.tree.file("/var/mine/a", 10);
    d_.tree.file(d_.temporary("a"), 10);
    d_.tree.file(d_.library("Cookies/a"), 10);
    d_.tree.file(d_.library("Logs/a"), 10);
    d_.tree.file("/var/db/diagnostics/Persist/a", 10);
    d_.tree.file(d_.documents("Downloads/a"), 10);
    d_.tree.file(d_.library("x-wal"), 10);
    d_.tree.file(d_.support("Offline/a"), 10);
    d_.addCustomPath("/var/mine");
    stopAt(1);
    EXPECT_EQ(d_.clean(CleanType::All).bytes, 10U);
    EXPECT_THAT(d_.eraser.removed, ElementsAre(d_.caches("first")));
    EXPECT_THAT(d_.commands.commands(), IsEmpty());
    EXPECT_EQ(d_.webStorage.responsesRemoved, 0);
    EXPECT_EQ(d_.webStorage.cookiesDeleted, 0);
}

TEST_F(StoppingTest, TheDatabaseCleanerStopsToo) {
    for (int i = 0; i < 10; ++i)
        d_.tree.file(d_.library(std::to_string(i) + "-wal"), 10);
    stopAt(4);
    EXPECT_EQ(d_.clean(CleanType::DatabaseFiles).bytes, 40U);
}

TEST_F(StoppingTest, TheFileManagersPartOfAShellRemovalStopsToo) {
    for (int i = 0; i < 10; ++i)
        d_.tree.file("/var/db/diagnostics/Persist/" + std::to_string(i), 10);
    d_.tree.file("/var/db/diagnostics/Special/a", 10);
    d_.commands.answerOnly(-1);
    stopAt(2);
    EXPECT_EQ(d_.clean(CleanType::SystemLogs).bytes, 20U);
    EXPECT_TRUE(d_.tree.exists("/var/db/diagnostics/Special/a"));
}

TEST_F(StoppingTest, AStopDuringACommandEndsTheCleanAfterThatDirectory) {
    d_.tree.file("/var/db/diagnostics/Persist/a", 10);
    d_.tree.file("/var/db/diagnostics/Signpost/a", 10);
    d_.commands.answer([&](const test::FakeCommandRunner::Command& command) {
        d_.engine.stop();
        test::removeVisibleEntries(command.folder);
        return 0;
    });
    EXPECT_EQ(d_.clean(CleanType::SystemLogs).bytes, 10U);
    EXPECT_TRUE(d_.tree.exists("/var/db/diagnostics/Signpost/a"));
}

TEST_F(StoppingTest, ADeepCleanStopsAndReportsWhatItFreed) {
    d_.tree.file("/var/mobile/Library/Safari/WebKitCache/a", 10);
    d_.tree.file("/var/mobile/Library/Safari/fsCachedData/a", 100);
    d_.tree.file("/var/db/uuidtext/a", 1'000);
    d_.tree.file(EngineDevice::shared("SomeCache/a"), 10'000);
    stopAt(1);
    const auto outcome = d_.deepClean();
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.bytes, 10U);
    EXPECT_TRUE(d_.tree.exists("/var/mobile/Library/Safari/fsCachedData/a"));
    EXPECT_TRUE(d_.tree.exists("/var/db/uuidtext/a"));
    EXPECT_TRUE(d_.tree.exists(EngineDevice::shared("SomeCache/a")));
}

TEST_F(StoppingTest, ADeepCleanStopsBetweenTwoSharedCaches) {
    for (int i = 0; i < 5; ++i)
        d_.tree.file(EngineDevice::shared(std::to_string(i) + "Cache/a"), 10);
    stopAt(2);
    EXPECT_EQ(d_.deepClean().bytes, 20U);
}

TEST_F(StoppingTest, AStopBetweenCleansDoesNotAffectTheNext) {
    temporaryFiles(3);
    d_.engine.stop();
    EXPECT_EQ(d_.clean(CleanType::TempFiles).bytes, 30U);
    temporaryFiles(3);
    d_.engine.stop();
    FileCleanerEngine::ErrorSlot error;
    EXPECT_EQ(d_.engine.cleanNow(CleanType::TempFiles, {}, error), 30U);
}

TEST_F(StoppingTest, ACleanAskedForRightAfterAStopRunsThoughTheStoppedOneStillDoes) {
    temporaryFiles(5);
    d_.tree.file(d_.documents("Downloads/a"), 7);
    std::promise<void> stopped;
    std::promise<void> asked;
    d_.eraser.onRemove = [&, first = true](const std::string&) mutable {
        if (!std::exchange(first, false)) return;
        d_.engine.stop();
        stopped.set_value();
        asked.get_future().wait();  // the other clean is asked for while this one runs
    };
    std::uint64_t freed = 0;
    std::optional<std::uint64_t> other;
    d_.engine.cleanWithType(CleanType::TempFiles, {},
                            [&](bool, std::uint64_t bytes, const auto&) { freed = bytes; });
    stopped.get_future().wait();
    d_.engine.cleanWithType(CleanType::Downloads, {},
                            [&](bool, std::uint64_t bytes, const auto&) { other = bytes; });
    asked.set_value();
    d_.mainQueue.runUntil([&] { return other.has_value(); });
    EXPECT_EQ(freed, 10U);
    EXPECT_EQ(other, 7U);
}

TEST_F(StoppingTest, ACleanThatStillWaitsEndsBeforeItsFirstEntry) {
    temporaryFiles(5);
    d_.tree.file(d_.documents("Downloads/a"), 7);
    std::promise<void> asked;
    d_.eraser.onRemove = [&, first = true](const std::string&) mutable {
        if (!std::exchange(first, false)) return;
        asked.get_future().wait();
        d_.engine.stop();
    };
    std::optional<std::uint64_t> waiting;
    d_.engine.cleanWithType(CleanType::TempFiles, {}, {});
    d_.engine.cleanWithType(CleanType::Downloads, {},
                            [&](bool success, std::uint64_t bytes, const auto&) {
                                EXPECT_TRUE(success);
                                waiting = bytes;
                            });
    asked.set_value();
    d_.mainQueue.runUntil([&] { return waiting.has_value(); });
    EXPECT_EQ(waiting, 0U);
    EXPECT_TRUE(d_.tree.exists(d_.documents("Downloads/a")));
}

}  // namespace
}  // namespace sweepwright
