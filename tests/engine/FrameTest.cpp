#include <array>
#include <atomic>
#include <cerrno>
#include <future>
#include <thread>
#include <utility>

#include "EngineTest.h"
#include "platform/text/DateText.h"
#include "support/ChildProcess.h"

namespace sweepwright {
namespace {

using platform::Error;
using test::EngineDevice;
using test::Operation;
using testing::ElementsAre;
using testing::IsEmpty;

using FrameTest = EngineTest;

/// An engine whose cleaners only tell that they were called and answer what the test set.
class ScriptedEngine : public FileCleanerEngine {
  public:
    using FileCleanerEngine::FileCleanerEngine;

    std::vector<int> calls;
    std::array<std::uint64_t, 9> freed{};
    std::map<int, Error> errors;
    std::atomic<int> running{0};
    int mostAtOnce = 0;

    std::uint64_t cleanCacheWithProgress(const Progress& p, ErrorSlot& e) override {
        return run(0, p, e);
    }
    std::uint64_t cleanTempFilesWithProgress(const Progress& p, ErrorSlot& e) override {
        return run(1, p, e);
    }
    std::uint64_t cleanCookiesWithProgress(const Progress& p, ErrorSlot& e) override {
        return run(2, p, e);
    }
    std::uint64_t cleanSystemLogsWithProgress(const Progress& p, ErrorSlot& e) override {
        return run(3, p, e);
    }
    std::uint64_t cleanDownloadsWithProgress(const Progress& p, ErrorSlot& e) override {
        return run(4, p, e);
    }
    std::uint64_t cleanImageCacheWithProgress(const Progress& p, ErrorSlot& e) override {
        return run(5, p, e);
    }
    std::uint64_t cleanDatabaseFilesWithProgress(const Progress& p, ErrorSlot& e) override {
        return run(6, p, e);
    }
    std::uint64_t cleanCrashReportsWithProgress(const Progress& p, ErrorSlot& e) override {
        return run(7, p, e);
    }
    std::uint64_t cleanOfflineDataWithProgress(const Progress& p, ErrorSlot& e) override {
        return run(8, p, e);
    }

  private:
    std::uint64_t run(int category, const Progress& progress, ErrorSlot& error) {
        mostAtOnce = std::max(mostAtOnce, ++running);
        calls.push_back(category);
        if (progress) progress(std::to_string(category), 0.5);
        if (errors.contains(category)) error = errors.at(category);
        --running;
        return freed.at(static_cast<std::size_t>(category));
    }
};

/// Fills every category with a size of its own: 1 byte in category 0, 10 in 1, 100 in 2, …
void fillEveryCategory(EngineDevice& d) {
    d.tree.file(d.caches("plain"), 1);
    d.tree.file(d.temporary("t"), 10);
    d.tree.file(d.library("Cookies/c"), 100);
    d.tree.file(d.library("Logs/l"), 1'000);
    d.tree.file(d.documents("Downloads/d"), 10'000);
    d.tree.file(d.caches("Kingfisher/i"), 100'000);  // counts in category 0, too
    d.tree.file(d.library("x.sqlite"), 1'000'000);
    d.tree.file(d.library("Logs/CrashReporter/r"), 10'000'000);  // counts in category 3, too
    d.tree.file(d.support("OfflineMaps/o"), 100'000'000);
}

// --- Names ---

TEST_F(FrameTest, TheTenCategoriesHaveTheirChineseNamesAndOthersHaveNone) {
    const std::array<const char*, 10> names = {
        "缓存文件", "临时文件",   "Cookie & 网页数据", "系统日志", "下载文件",
        "图片缓存", "数据库文件", "崩溃报告",          "离线数据", "一键清理全部"};
    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_EQ(FileCleanerEngine::cleanTypeNameForType(static_cast<CleanType>(i)), names.at(i));
    for (const int other : {10, 11, 42, -1})
        EXPECT_EQ(FileCleanerEngine::cleanTypeNameForType(static_cast<CleanType>(other)),
                  std::nullopt);
}

TEST_F(FrameTest, ThereIsOneSharedEngine) {
    // In a process of its own: the current device is set once.
    test::inChildProcess([&] {
        platform::DeviceOptions options;
        options.rootFolder = d_.tree.root();
        options.home = test::EngineDevice::kHome;
        platform::Device::setCurrent(platform::Device::open(options).value());
        FileCleanerEngine& engine = FileCleanerEngine::sharedEngine();
        EXPECT_EQ(&engine, &FileCleanerEngine::sharedEngine());
        EXPECT_EQ(&StorageAnalyzer::sharedAnalyzer(), &StorageAnalyzer::sharedAnalyzer());
        EXPECT_EQ(&DeviceEraser::sharedEraser(), &DeviceEraser::sharedEraser());
        EXPECT_EQ(engine.scan().totalSize, 0U);
    });
}

// --- Scan ---

TEST_F(FrameTest, AScanHasTenEntriesInTheirOrder) {
    ScanResult result;
    result.cacheSize = 1;
    result.tempSize = 2;
    result.cookieSize = 3;
    result.logSize = 4;
    result.downloadsSize = 5;
    result.imageCacheSize = 6;
    result.databaseSize = 7;
    result.crashReportsSize = 8;
    result.offlineDataSize = 9;
    result.totalSize = 45;
    using Entry = std::pair<std::string, std::uint64_t>;
    EXPECT_THAT(
        result.entries(),
        ElementsAre(Entry{"cacheSize", 1}, Entry{"tempSize", 2}, Entry{"cookieSize", 3},
                    Entry{"logSize", 4}, Entry{"downloadsSize", 5}, Entry{"imageCacheSize", 6},
                    Entry{"databaseSize", 7}, Entry{"crashReportsSize", 8},
                    Entry{"offlineDataSize", 9}, Entry{"totalSize", 45}));
}

TEST_F(FrameTest, AScanMeasuresEachCategoryAndAddsThemUp) {
    fillEveryCategory(d_);
    const ScanResult found = d_.scan();
    EXPECT_EQ(found.cacheSize, 100'001U);
    EXPECT_EQ(found.tempSize, 10U);
    EXPECT_EQ(found.cookieSize, 100U);
    EXPECT_EQ(found.logSize, 10'001'000U);
    EXPECT_EQ(found.downloadsSize, 10'000U);
    EXPECT_EQ(found.imageCacheSize, 100'000U);
    EXPECT_EQ(found.databaseSize, 1'000'000U);
    EXPECT_EQ(found.crashReportsSize, 10'000'000U);
    EXPECT_EQ(found.offlineDataSize, 100'000'000U);
    EXPECT_EQ(found.totalSize, 100'001U + 10 + 100 + 10'001'000 + 10'000 + 100'000 + 1'000'000 +
                                   10'000'000 + 100'000'000);
    EXPECT_EQ(d_.engine.getTotalCleanableSize(), found.totalSize);
}

TEST_F(FrameTest, AScanTakesItsTenStepsInAFixedOrder) {
    std::vector<std::string> steps;
    d_.engine.scan([&](std::string_view key, int done) {
        steps.push_back(std::to_string(done) + " " + std::string(key));
    });
    EXPECT_THAT(steps, ElementsAre("0 cacheSize", "1 tempSize", "2 cookieSize", "3 logSize",
                                   "4 downloadsSize", "5 imageCacheSize", "6 databaseSize",
                                   "7 crashReportsSize", "8 offlineDataSize", "9 cacheSize"));
}

TEST_F(FrameTest, AScanCountsCustomPathsTwiceAndTheCleanableTotalOnce) {
    d_.tree.file("/var/mobile/Mine/five", 5 * kMega);
    d_.addCustomPath("/var/mobile/Mine");
    const ScanResult found = d_.scan();
    EXPECT_EQ(found.cacheSize, 10 * kMega);
    EXPECT_EQ(found.totalSize, 10 * kMega);
    EXPECT_EQ(d_.engine.getTotalCleanableSize(), 5 * kMega);
}

TEST_F(FrameTest, AScanReturnsAtOnceAndCompletesOnTheMainQueue) {
    std::optional<std::thread::id> completedOn;
    d_.engine.scanWithCompletion(
        [&](const ScanResult&) { completedOn = std::this_thread::get_id(); });
    EXPECT_EQ(completedOn, std::nullopt);
    d_.mainQueue.runUntil([&] { return completedOn.has_value(); });
    EXPECT_EQ(completedOn, std::this_thread::get_id());
}

TEST_F(FrameTest, EntryPointsTakeEmptyCallbacks) {
    d_.tree.file(d_.temporary("t"), 10);
    d_.engine.scanWithCompletion({});
    d_.engine.cleanWithType(CleanType::TempFiles, {}, {});
    d_.engine.deepCleanWithCompletion({});
    EXPECT_EQ(d_.scan().tempSize, 0U);  // the queue went on, and the clean was before
}

// --- Dispatch ---

TEST_F(FrameTest, EachTypeCallsItsOwnCleaner) {
    for (int type = 0; type <= 8; ++type) {
        ScriptedEngine engine(d_.engineServices());
        engine.freed.fill(1);
        engine.freed.at(static_cast<std::size_t>(type)) = 77;
        const auto outcome = d_.clean(engine, static_cast<CleanType>(type));
        EXPECT_THAT(engine.calls, ElementsAre(type));
        EXPECT_TRUE(outcome.success);
        EXPECT_EQ(outcome.bytes, 77U);
        EXPECT_EQ(outcome.error, std::nullopt);
    }
}

TEST_F(FrameTest, AllRunsTheNineInOrderAndAddsUp) {
    ScriptedEngine engine(d_.engineServices());
    engine.freed = {1, 2, 4, 8, 16, 32, 64, 128, 256};
    const auto outcome = d_.clean(engine, CleanType::All);
    EXPECT_THAT(engine.calls, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8));
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.bytes, 511U);
}

TEST_F(FrameTest, AllGoesOnPastErrorsAndReportsTheLastOne) {
    ScriptedEngine engine(d_.engineServices());
    engine.freed.fill(5);
    engine.errors[2] = {"Test", 2, "second"};
    engine.errors[6] = {"Test", 6, "sixth"};
    int announced = 0;
    const auto watch =
        d_.notifications.observe("CleanHistoryUpdated", [&](const auto&) { ++announced; });
    const auto outcome = d_.clean(engine, CleanType::All);
    EXPECT_THAT(engine.calls, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8));
    EXPECT_FALSE(outcome.success);
    EXPECT_EQ(outcome.bytes, 45U);
    EXPECT_EQ(outcome.error, (Error{"Test", 6, "sixth"}));
    EXPECT_EQ(d_.statistics.totals().cleanCount, 0);
    EXPECT_EQ(d_.statistics.totals().totalCleanedBytes, 0U);
    EXPECT_THAT(d_.history.getAllCleanHistory(), IsEmpty());
    EXPECT_EQ(announced, 0);
}

TEST_F(FrameTest, OneFailedCategoryRecordsNothingThoughItFreedBytes) {
    ScriptedEngine engine(d_.engineServices());
    engine.freed.fill(5);
    engine.errors[3] = {"Test", 3, "third"};
    const auto outcome = d_.clean(engine, CleanType::SystemLogs);
    EXPECT_FALSE(outcome.success);
    EXPECT_EQ(outcome.bytes, 5U);
    EXPECT_EQ(outcome.error, (Error{"Test", 3, "third"}));
    EXPECT_EQ(d_.statistics.totals().cleanCount, 0);
    EXPECT_THAT(d_.history.getAllCleanHistory(), IsEmpty());
}

TEST_F(FrameTest, UnknownTypesSucceedWithNothingDoneOrRecorded) {
    fillEveryCategory(d_);
    int announced = 0;
    const auto watch =
        d_.notifications.observe("CleanHistoryUpdated", [&](const auto&) { ++announced; });
    const auto before = d_.everything();
    for (const int type : {10, 42, -1}) {
        const auto outcome = d_.clean(static_cast<CleanType>(type));
        EXPECT_TRUE(outcome.success);
        EXPECT_EQ(outcome.bytes, 0U);
        EXPECT_EQ(outcome.error, std::nullopt);
    }
    EXPECT_EQ(d_.everything(), before);
    EXPECT_EQ(d_.statistics.totals().cleanCount, 0);
    EXPECT_THAT(d_.history.getAllCleanHistory(), IsEmpty());
    EXPECT_EQ(announced, 0);
}

// --- What a clean leaves behind ---

TEST_F(FrameTest, ACleanThatFreesNothingSucceedsAndRecordsNothing) {
    int announced = 0;
    const auto watch =
        d_.notifications.observe("CleanHistoryUpdated", [&](const auto&) { ++announced; });
    const auto outcome = d_.clean(CleanType::TempFiles);
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.bytes, 0U);
    EXPECT_EQ(d_.statistics.totals().cleanCount, 0);
    EXPECT_EQ(d_.statistics.totals().lastCleanDate, std::nullopt);
    EXPECT_THAT(d_.history.getAllCleanHistory(), IsEmpty());
    EXPECT_EQ(announced, 0);
}

TEST_F(FrameTest, TwoCleansAddUpInTheStatistics) {
    d_.time = platform::dateFromText("2025-02-03 04:05:06").value();
    d_.tree.file(d_.temporary("hundred"), 100);
    EXPECT_EQ(d_.clean(CleanType::TempFiles).bytes, 100U);
    d_.time = platform::dateFromText("2025-02-03 17:08:09").value();
    d_.tree.file(d_.temporary("fifty"), 50);
    EXPECT_EQ(d_.clean(CleanType::TempFiles).bytes, 50U);
    EXPECT_EQ(d_.defaults.unsignedInteger("totalCleanedBytes"), 150U);
    EXPECT_EQ(d_.defaults.integer("cleanCount"), 2);
    EXPECT_EQ(d_.defaults.string("lastCleanDate"), "2025-02-03 17:08:09");
}

TEST_F(FrameTest, SavedStatisticsAreAddedToWhatIsStored) {
    ASSERT_TRUE(d_.defaults.set("totalCleanedBytes", std::uint64_t{7}).has_value());
    ASSERT_TRUE(d_.defaults.set("cleanCount", std::int64_t{3}).has_value());
    d_.engine.saveCleanStatistics(5);
    EXPECT_EQ(d_.defaults.unsignedInteger("totalCleanedBytes"), 12U);
    EXPECT_EQ(d_.defaults.integer("cleanCount"), 4);
    EXPECT_EQ(d_.defaults.string("lastCleanDate"), platform::dateText(d_.time));
}

TEST_F(FrameTest, ACleanEntersTheHistoryWithTypeBytesAndName) {
    d_.tree.file(d_.temporary("t"), 100);
    d_.clean(CleanType::TempFiles);
    d_.tree.file(d_.temporary("t"), 30);
    d_.clean(CleanType::All);
    const auto items = d_.history.getAllCleanHistory();
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[1].cleanType, CleanType::TempFiles);
    EXPECT_EQ(items[1].cleanedBytes, 100U);
    EXPECT_EQ(items[1].cleanTypeName, "临时文件");
    EXPECT_EQ(items[0].cleanType, CleanType::All);
    EXPECT_EQ(items[0].cleanedBytes, 30U);
    EXPECT_EQ(items[0].cleanTypeName, "一键清理全部");
}

TEST_F(FrameTest, ACleanAnnouncesItsEntryFromItsOwnThreadWhenAllIsRecorded) {
    std::thread::id announcedOn;
    std::size_t recorded = 0;
    std::int64_t counted = 0;
    const auto watch = d_.notifications.observe("CleanHistoryUpdated", [&](const auto& info) {
        announcedOn = std::this_thread::get_id();
        recorded = d_.history.getAllCleanHistory().size();
        counted = d_.statistics.totals().cleanCount;
        EXPECT_TRUE(info.empty());
    });
    d_.tree.file(d_.temporary("t"), 100);
    d_.clean(CleanType::TempFiles);
    EXPECT_NE(announcedOn, std::thread::id());
    EXPECT_NE(announcedOn, std::this_thread::get_id());
    EXPECT_EQ(recorded, 1U);
    EXPECT_EQ(counted, 1);
}

// --- Threads ---

TEST_F(FrameTest, ProgressAndCompletionArriveOnTheMainQueueInThatOrder) {
    d_.tree.file(d_.temporary("only"), 100);
    std::vector<std::string> heard;
    std::set<std::thread::id> threads;
    bool done = false;
    d_.engine.cleanWithType(
        CleanType::TempFiles,
        [&](const std::string& item, double fraction) {
            heard.push_back(item + " " + std::to_string(fraction));
            threads.insert(std::this_thread::get_id());
        },
        [&](bool, std::uint64_t, const auto&) {
            heard.emplace_back("done");
            threads.insert(std::this_thread::get_id());
            done = true;
        });
    EXPECT_THAT(heard, IsEmpty());
    d_.mainQueue.runUntil([&] { return done; });
    EXPECT_THAT(heard, ElementsAre("only 1.000000", "done"));
    EXPECT_THAT(threads, ElementsAre(std::this_thread::get_id()));
}

TEST_F(FrameTest, ProgressIsHandedToTheCleanersUnchanged) {
    ScriptedEngine engine(d_.engineServices());
    std::vector<std::string> heard;
    d_.clean(engine, CleanType::All, [&](const std::string& item, double fraction) {
        heard.push_back(item);
        EXPECT_EQ(fraction, 0.5);
    });
    EXPECT_THAT(heard, ElementsAre("0", "1", "2", "3", "4", "5", "6", "7", "8"));
}

TEST_F(FrameTest, AScanAfterACleanSeesTheCleanedState) {
    d_.tree.file(d_.temporary("t"), 100);
    std::optional<ScanResult> found;
    d_.engine.cleanWithType(CleanType::TempFiles, {}, {});
    d_.engine.scanWithCompletion([&](const ScanResult& result) { found = result; });
    d_.mainQueue.runUntil([&] { return found.has_value(); });
    EXPECT_EQ(found->tempSize, 0U);
}

TEST_F(FrameTest, CleansRunOneAfterTheOtherInTheOrderAskedFor) {
    ScriptedEngine engine(d_.engineServices());
    int done = 0;
    for (int type = 0; type < 8; ++type)
        engine.cleanWithType(static_cast<CleanType>(type), {},
                             [&](bool, std::uint64_t, const auto&) { ++done; });
    d_.mainQueue.runUntil([&] { return done == 8; });
    EXPECT_THAT(engine.calls, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7));
    EXPECT_EQ(engine.mostAtOnce, 1);
}

// --- Path queries ---

TEST_F(FrameTest, APathIsAccessibleWhenItIsADirectoryThatCanBeListed) {
    d_.tree.folder("/var/empty");
    d_.tree.folder("/var/closed");
    d_.tree.file("/var/file", 1);
    failAbout("/var/closed", {Operation::OpenDirectory}, EACCES);
    EXPECT_TRUE(d_.engine.isPathAccessible("/var/empty"));
    EXPECT_FALSE(d_.engine.isPathAccessible("/var/closed"));
    EXPECT_FALSE(d_.engine.isPathAccessible("/var/file"));
    EXPECT_FALSE(d_.engine.isPathAccessible("/var/missing"));
}

TEST_F(FrameTest, APathIsWritableWhenItIsThereAndThePlatformSaysSo) {
    d_.tree.file("/var/file", 1);
    d_.tree.file("/var/readonly", 1);
    failAbout("/var/readonly", {Operation::IsWritable}, EACCES);
    EXPECT_TRUE(d_.engine.isPathWritable("/var/file"));
    EXPECT_FALSE(d_.engine.isPathWritable("/var/readonly"));
    EXPECT_FALSE(d_.engine.isPathWritable("/var/missing"));
}

TEST_F(FrameTest, TheSizeOfAPathIsThatOfTheFileOrOfTheDirectory) {
    d_.tree.file("/var/d/a", 10);
    d_.tree.file("/var/d/.hidden", 100);
    d_.tree.file("/var/d/sub/b", 1'000);
    EXPECT_EQ(d_.engine.getFileSizeAtPath("/var/d/a"), 10U);
    EXPECT_EQ(d_.engine.getFileSizeAtPath("/var/d/.hidden"), 100U);
    EXPECT_EQ(d_.engine.getFileSizeAtPath("/var/d"), 1'010U);
    EXPECT_EQ(d_.engine.getFileSizeAtPath("/var/missing"), 0U);
}

TEST_F(FrameTest, TheSizeOfAWhitelistedDirectoryOrOfAnUnreadableFileIsNothing) {
    d_.tree.file("/var/d/a", 10);
    d_.tree.file("/var/f", 10);
    d_.protect("/var/d");
    failAbout("/var/f", {Operation::Attributes}, EIO);
    EXPECT_EQ(d_.engine.getFileSizeAtPath("/var/d"), 0U);
    EXPECT_EQ(d_.engine.getFileSizeAtPath("/var/f"), 0U);
}

TEST_F(FrameTest, TheWhitelistQuestionIsForwarded) {
    d_.protect("/var/kept");
    EXPECT_TRUE(d_.engine.isPathInWhitelist("/var/kept/inside"));
    EXPECT_FALSE(d_.engine.isPathInWhitelist("/var/other"));
}

TEST_F(FrameTest, TheStorageInfoIsTheAnalyzers) {
    const auto info = d_.engine.getStorageInfo();
    const auto expected = d_.storage.getDeviceStorageInfo();
    ASSERT_TRUE(info.has_value());
    EXPECT_EQ(info->totalSpace, expected->totalSpace);
    EXPECT_EQ(info->totalSpaceFormatted, expected->totalSpaceFormatted);
}

// --- Protection lists ---

class UnreadableLists : public FrameTest, public testing::WithParamInterface<const char*> {};

TEST_P(UnreadableLists, LetEveryCleanCompleteWithTheErrorAndChangeNothing) {
    fillEveryCategory(d_);
    d_.tree.file(d_.shared("com.apple.springboard/s"), 10);
    const std::string key = GetParam();
    ASSERT_TRUE(d_.defaults.set(key, std::string("not a list")).has_value());
    const auto before = d_.everything();
    for (int type = 0; type <= 9; ++type) {
        const auto outcome = d_.clean(static_cast<CleanType>(type));
        EXPECT_FALSE(outcome.success);
        EXPECT_EQ(outcome.bytes, 0U);
        ASSERT_TRUE(outcome.error.has_value());
        EXPECT_THAT(outcome.error->description, testing::HasSubstr(key));
    }
    EXPECT_FALSE(d_.deepClean().success);
    EXPECT_EQ(d_.everything(), before);
    EXPECT_EQ(d_.statistics.totals().cleanCount, 0);
    EXPECT_THAT(d_.history.getAllCleanHistory(), IsEmpty());
    EXPECT_EQ(d_.webStorage.responsesRemoved + d_.webStorage.cookiesDeleted, 0);
}

INSTANTIATE_TEST_SUITE_P(Frame, UnreadableLists,
                         testing::Values("PathWhitelistPaths", "CustomCleanPaths"));

TEST_F(FrameTest, DamagedUserDefaultsLetEveryCleanCompleteWithTheErrorAndChangeNothing) {
    fillEveryCategory(d_);
    d_.tree.fileWith(d_.device.userDefaultsFile(), "bplist00 and then nothing that makes sense");
    const auto before = d_.everything();
    EXPECT_FALSE(d_.clean(CleanType::All).success);
    EXPECT_FALSE(d_.deepClean().success);
    EXPECT_EQ(d_.everything(), before);
}

TEST_F(FrameTest, ACleanKnowsWhatAnotherProcessHasProtectedSince) {
    d_.tree.file(d_.temporary("kept/a"), 10);
    d_.tree.file(d_.temporary("gone"), 10);
    platform::UserDefaults others(d_.tree.files(), d_.device.userDefaultsFile());
    PathWhitelistManager theirs(others);
    ASSERT_TRUE(theirs.addPathToWhitelist(d_.temporary("other/x")).has_value());
    ASSERT_TRUE(theirs.addPathToWhitelist(d_.temporary("kept")).has_value());
    ASSERT_TRUE(theirs.removePathFromWhitelist(d_.temporary("other/x")).has_value());
    // The temporary directory holds a protected path now and so stays as a whole.
    EXPECT_EQ(d_.scan().tempSize, 0U);
    EXPECT_EQ(d_.clean(CleanType::TempFiles).bytes, 0U);
    EXPECT_TRUE(d_.tree.exists(d_.temporary("kept/a")));
    EXPECT_TRUE(d_.tree.exists(d_.temporary("gone")));
}

}  // namespace
}  // namespace sweepwright
