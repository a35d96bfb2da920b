#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include "EngineTest.h"

namespace sweepwright {
namespace {

using test::EngineDevice;
using test::Operation;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kSafari = "/var/mobile/Library/Safari";

class DeepCleanTest : public EngineTest {
  protected:
    std::uint64_t sweep() {
        FileCleanerEngine::ErrorSlot error;
        const std::uint64_t total = d_.engine.deepCleanNow(error);
        EXPECT_EQ(error, std::nullopt);
        return total;
    }
    /// What the sweep itself told, without what the contents routine and the shell did.
    [[nodiscard]] std::vector<std::string> told() const {
        auto all = lines();
        std::erase_if(all, [](const std::string& line) {
            return line.starts_with("🔧") || line.contains("posix_spawn") ||
                   line.starts_with("⚠️ 无法删除文件");
        });
        return all;
    }
    void failRemovalOf(const std::string& path) {
        failAbout(path, {Operation::RemoveFileAt, Operation::RemoveDirectoryAt}, EPERM);
    }
    /// A shell that removes entry "goes" of its folder and nothing else.
    void shellThatRemovesOneEntry() {
        d_.commands.answer([](const test::FakeCommandRunner::Command& command) {
            std::filesystem::remove_all(command.folder + "/goes");
            return 0;
        });
    }
};

TEST_F(DeepCleanTest, WithNothingThereNothingIsFreedOrTold) {
    const auto outcome = d_.deepClean();
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.bytes, 0U);
    EXPECT_EQ(outcome.error, std::nullopt);
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(DeepCleanTest, ItReturnsAtOnceAndCompletesOnTheMainQueueOnce) {
    std::vector<std::thread::id> completed;
    d_.engine.deepCleanWithCompletion(
        [&](bool, std::uint64_t, const auto&) { completed.push_back(std::this_thread::get_id()); });
    EXPECT_THAT(completed, IsEmpty());
    d_.mainQueue.runUntil([&] { return !completed.empty(); });
    d_.scan();  // whatever else the sweep posted has run now
    EXPECT_THAT(completed, ElementsAre(std::this_thread::get_id()));
}

TEST_F(DeepCleanTest, NothingIsRecordedOrAnnounced) {
    int announced = 0;
    const auto watch =
        d_.notifications.observe("CleanHistoryUpdated", [&](const auto&) { ++announced; });
    d_.tree.file("/var/db/uuidtext/a", 10);
    EXPECT_EQ(d_.deepClean().bytes, 10U);
    EXPECT_EQ(d_.statistics.totals().cleanCount, 0);
    EXPECT_THAT(d_.history.getAllCleanHistory(), IsEmpty());
    EXPECT_EQ(announced, 0);
}

TEST_F(DeepCleanTest, TheLocationsGoInTheirOrderWithTheirLines) {
    d_.tree.file(EngineDevice::shared("com.apple.springboard/a"), 1);
    d_.tree.file(EngineDevice::shared("com.apple.cache_delete/a"), 2);
    d_.tree.file(EngineDevice::shared("com.apple.mobilesafari/a"), 3);
    d_.tree.file(std::string(kSafari) + "/WebKitCache/a", 4);
    d_.tree.file(std::string(kSafari) + "/fsCachedData/a", 5);
    d_.tree.file(std::string(kSafari) + "/History.db-wal", 6);
    d_.tree.file(std::string(kSafari) + "/History.db-shm", 7);
    d_.tree.file("/var/MobileAsset/AssetsV2/a", 8);
    d_.tree.file("/var/db/uuidtext/a", 9);
    d_.tree.file(EngineDevice::shared("SomeCache/a"), 10);
    EXPECT_EQ(sweep(), 55U);
    EXPECT_THAT(
        told(),
        ElementsAre("✅ 清理SpringBoard缓存: 1 字节", "✅ 清理cache_delete缓存: 2 字节",
                    "✅ 清理Safari缓存路径: /var/mobile/Library/Caches/com.apple.mobilesafari, "
                    "大小: 3 字节",
                    "✅ 清理Safari缓存路径: /var/mobile/Library/Safari/WebKitCache, 大小: 4 字节",
                    "✅ 清理Safari缓存路径: /var/mobile/Library/Safari/fsCachedData, 大小: 5 字节",
                    "✅ 清理Safari缓存路径: /var/mobile/Library/Safari/History.db-wal, "
                    "大小: 6 字节",
                    "✅ 清理Safari缓存路径: /var/mobile/Library/Safari/History.db-shm, "
                    "大小: 7 字节",
                    "✅ 清理MobileAsset缓存: 8 字节", "✅ 清理uuidtext缓存: 9 字节",
                    "✅ 清理用户库缓存: SomeCache, 大小: 10 字节"));
    // Safari's locations go whole; of the others the contents.
    EXPECT_FALSE(d_.tree.exists(EngineDevice::shared("com.apple.mobilesafari")));
    EXPECT_FALSE(d_.tree.exists(std::string(kSafari) + "/WebKitCache"));
    EXPECT_FALSE(d_.tree.exists(std::string(kSafari) + "/History.db-wal"));
    EXPECT_TRUE(d_.tree.exists(kSafari));
    EXPECT_TRUE(d_.tree.exists(EngineDevice::shared("com.apple.springboard")));
    EXPECT_TRUE(d_.tree.exists(EngineDevice::shared("SomeCache")));
}

// --- The three that tell all outcomes, and the one that tells success only ---

struct Location {
    const char* path;
    const char* name;
};

class ToldLocation : public DeepCleanTest, public testing::WithParamInterface<Location> {};

TEST_P(ToldLocation, TellsThatItIsEmpty) {
    d_.tree.file(std::string(GetParam().path) + "/.hidden", 5);
    EXPECT_EQ(sweep(), 0U);
    EXPECT_THAT(told(),
                ElementsAre(std::string("ℹ️ ") + GetParam().name + "缓存目录为空，跳过清理"));
    EXPECT_THAT(d_.commands.commands(), IsEmpty());
}

TEST_P(ToldLocation, TellsWhatItFreed) {
    shellThatRemovesOneEntry();
    d_.tree.file(std::string(GetParam().path) + "/goes", 5);
    d_.tree.file(std::string(GetParam().path) + "/stays", 50);
    sweep();
    EXPECT_THAT(told(), Contains(std::string("✅ 清理") + GetParam().name + "缓存: 5 字节"));
}

TEST_P(ToldLocation, TellsThatNothingCouldBeFreed) {
    d_.commands.answerOnly(0);
    d_.tree.file(std::string(GetParam().path) + "/stays", 50);
    EXPECT_EQ(sweep(), 0U);
    EXPECT_THAT(told(), ElementsAre(std::string("⚠️ 无法清理") + GetParam().name +
                                    "缓存（文件可能正在使用）"));
}

INSTANTIATE_TEST_SUITE_P(
    DeepClean, ToldLocation,
    testing::Values(Location{"/var/mobile/Library/Caches/com.apple.springboard", "SpringBoard"},
                    Location{"/var/MobileAsset/AssetsV2", "MobileAsset"},
                    Location{"/var/db/uuidtext", "uuidtext"}),
    [](const auto& chosen) { return std::string(chosen.param.name); });

TEST_F(DeepCleanTest, CacheDeleteTellsNeitherThatItIsEmptyNorThatItFailed) {
    d_.tree.folder(EngineDevice::shared("com.apple.cache_delete"));
    EXPECT_EQ(sweep(), 0U);
    d_.commands.answerOnly(0);
    d_.tree.file(EngineDevice::shared("com.apple.cache_delete/a"), 10);
    EXPECT_EQ(sweep(), 0U);
    EXPECT_THAT(told(), IsEmpty());
}

// --- Safari ---

TEST_F(DeepCleanTest, ASafariLocationThatCannotBeRemovedWholeIsEmptiedInstead) {
    d_.tree.file(std::string(kSafari) + "/WebKitCache/a", 10);
    failRemovalOf(std::string(kSafari) + "/WebKitCache");
    EXPECT_EQ(sweep(), 10U);
    EXPECT_TRUE(d_.tree.exists(std::string(kSafari) + "/WebKitCache"));
    EXPECT_THAT(told(), ElementsAre("✅ 清理Safari缓存目录内容: "
                                    "/var/mobile/Library/Safari/WebKitCache, 大小: 10 字节"));
}

TEST_F(DeepCleanTest, ThatRoadIsTheContentsRoutinesWithItsShell) {
    d_.tree.file(std::string(kSafari) + "/WebKitCache/a", 10);
    d_.eraser.remover = [](const platform::Directory& parent, const std::string& name) {
        return platform::Removal{0, platform::errorFromErrno(EBUSY, parent.pathOf(name))};
    };
    EXPECT_EQ(sweep(), 10U);
    EXPECT_EQ(d_.commands.commands().size(), 1U);
    EXPECT_THAT(lines(), Contains("🔧 检测到系统路径，使用posix_spawn删除: "
                                  "/var/mobile/Library/Safari/WebKitCache"));
}

TEST_F(DeepCleanTest, ASafariLocationOfWhichNothingWentIsToldOfWithTheFirstError) {
    d_.tree.file(std::string(kSafari) + "/fsCachedData/a", 10);
    d_.tree.file(std::string(kSafari) + "/History.db-shm", 10);
    d_.commands.answerOnly(0);
    d_.eraser.remover = [](const platform::Directory& parent, const std::string& name) {
        return platform::Removal{0, platform::errorFromErrno(EBUSY, parent.pathOf(name))};
    };
    EXPECT_EQ(sweep(), 0U);
    EXPECT_THAT(
        told(),
        ElementsAre("⚠️ 无法清理Safari缓存: /var/mobile/Library/Safari/fsCachedData（错误: "
                    "/var/mobile/Library/Safari/fsCachedData: Device or resource busy）",
                    "⚠️ 无法清理Safari缓存: "
                    "/var/mobile/Library/Safari/History.db-shm（错误: "
                    "/var/mobile/Library/Safari/History.db-shm: Device or resource busy）"));
    EXPECT_TRUE(d_.tree.exists(std::string(kSafari) + "/History.db-shm"));
}

TEST_F(DeepCleanTest, EmptySafariLocationsStay) {
    d_.tree.folder(std::string(kSafari) + "/WebKitCache");
    d_.tree.file(std::string(kSafari) + "/History.db-wal", 0);
    EXPECT_EQ(sweep(), 0U);
    EXPECT_TRUE(d_.tree.exists(std::string(kSafari) + "/WebKitCache"));
    EXPECT_TRUE(d_.tree.exists(std::string(kSafari) + "/History.db-wal"));
    EXPECT_THAT(told(), IsEmpty());
}

TEST_F(DeepCleanTest, TheHistoryItselfStays) {
    d_.tree.file(std::string(kSafari) + "/History.db", 10);
    d_.tree.file(std::string(kSafari) + "/Bookmarks.db", 10);
    EXPECT_EQ(sweep(), 0U);
    EXPECT_TRUE(d_.tree.exists(std::string(kSafari) + "/History.db"));
    EXPECT_TRUE(d_.tree.exists(std::string(kSafari) + "/Bookmarks.db"));
}

TEST_F(DeepCleanTest, AWhitelistedSafariDirectoryMeasuresNothingAndSoStays) {
    d_.tree.file(std::string(kSafari) + "/WebKitCache/a", 10);
    d_.tree.file(std::string(kSafari) + "/fsCachedData/kept/a", 10);
    d_.protect(std::string(kSafari) + "/WebKitCache");
    d_.protect(std::string(kSafari) + "/fsCachedData/kept");
    EXPECT_EQ(sweep(), 0U);
    EXPECT_TRUE(d_.tree.exists(std::string(kSafari) + "/WebKitCache/a"));
    EXPECT_TRUE(d_.tree.exists(std::string(kSafari) + "/fsCachedData/kept/a"));
}

TEST_F(DeepCleanTest, OfAPlainSafariFileTheWhitelistIsNotAskedFirst) {
    d_.tree.file(std::string(kSafari) + "/History.db-wal", 10);
    d_.protect(std::string(kSafari) + "/History.db-wal");
    EXPECT_EQ(sweep(), 10U);
    EXPECT_FALSE(d_.tree.exists(std::string(kSafari) + "/History.db-wal"));
}

TEST_F(DeepCleanTest, ASafariDirectoryWhitelistedByAnotherNameOfItsFolderStays) {
    d_.tree.file(std::string(kSafari) + "/WebKitCache/kept/a", 10);
    d_.tree.link("/alias", "/var/mobile");
    d_.protect("/alias/Library/Safari/WebKitCache/kept");
    EXPECT_EQ(sweep(), 0U);
    EXPECT_TRUE(d_.tree.exists(std::string(kSafari) + "/WebKitCache/kept/a"));
    EXPECT_THAT(told(), ElementsAre("🔒 白名单目录跳过删除: "
                                    "/var/mobile/Library/Safari/WebKitCache"));
}

TEST_F(DeepCleanTest, SafariLocationsThatAreLinksStay) {
    d_.tree.file("/var/canary/a", 10);
    d_.tree.link(std::string(kSafari) + "/WebKitCache", "/var/canary");
    d_.tree.link(std::string(kSafari) + "/History.db-wal", "/var/canary/a");
    EXPECT_EQ(sweep(), 0U);
    EXPECT_TRUE(d_.tree.exists("/var/canary/a"));
    EXPECT_TRUE(d_.tree.exists(std::string(kSafari) + "/WebKitCache"));
    EXPECT_TRUE(d_.tree.exists(std::string(kSafari) + "/History.db-wal"));
}

// --- The shared caches ---

TEST_F(DeepCleanTest, OfTheSharedCachesThreeKindsOfNamesGo) {
    d_.tree.file(EngineDevice::shared("com.apple.news/a"), 1);
    d_.tree.file(EngineDevice::shared("some-cache/a"), 10);
    d_.tree.file(EngineDevice::shared("SomeCache/a"), 100);
    d_.tree.file(EngineDevice::shared("SOMECACHE/a"), 1'000);
    d_.tree.file(EngineDevice::shared("com.other/a"), 1'000);
    EXPECT_EQ(sweep(), 111U);
    EXPECT_TRUE(d_.tree.exists(EngineDevice::shared("SOMECACHE/a")));
    EXPECT_TRUE(d_.tree.exists(EngineDevice::shared("com.other/a")));
}

TEST_F(DeepCleanTest, OfASharedCacheCountsWhatItHeldAndNotWhatWent) {
    d_.tree.file(EngineDevice::shared("SomeCache/goes"), 2 * kMega);
    d_.tree.file(EngineDevice::shared("SomeCache/stays"), 8 * kMega);
    failRemovalOf(EngineDevice::shared("SomeCache/stays"));
    EXPECT_EQ(sweep(), 10 * kMega);
    EXPECT_THAT(told(), ElementsAre("✅ 清理用户库缓存: SomeCache, 大小: 10485760 字节"));
}

TEST_F(DeepCleanTest, OfASharedCacheOfWhichNothingWentNothingCounts) {
    d_.tree.file(EngineDevice::shared("SomeCache/stays"), 8 * kMega);
    failRemovalOf(EngineDevice::shared("SomeCache/stays"));
    EXPECT_EQ(sweep(), 0U);
    EXPECT_THAT(told(), IsEmpty());
}

TEST_F(DeepCleanTest, TheAppsOwnFolderAndMapsStay) {
    d_.tree.file(EngineDevice::shared("com.Sweepwright.cache/a"), 1);
    d_.tree.file(EngineDevice::shared("com.apple.MapsExtra/a"), 1);
    EXPECT_EQ(sweep(), 0U);
    EXPECT_TRUE(d_.tree.exists(EngineDevice::shared("com.Sweepwright.cache/a")));
    EXPECT_TRUE(d_.tree.exists(EngineDevice::shared("com.apple.MapsExtra/a")));
    EXPECT_THAT(lines(), ElementsAre("🗺️ 跳过地图应用缓存: "
                                     "/var/mobile/Library/Caches/com.apple.MapsExtra "
                                     "(保护地图图片缓存)"));
}

TEST_F(DeepCleanTest, AWhitelistedSharedCacheStaysByTheContentsRoutineAndCountsNothing) {
    d_.tree.file(EngineDevice::shared("SomeCache/a"), 1);
    d_.protect(EngineDevice::shared("SomeCache"));
    log_.clear();
    EXPECT_EQ(sweep(), 0U);
    EXPECT_TRUE(d_.tree.exists(EngineDevice::shared("SomeCache/a")));
    EXPECT_THAT(lines(),
                ElementsAre("🔒 白名单路径跳过大小计算: /var/mobile/Library/Caches/SomeCache",
                            "🔒 白名单目录跳过删除: /var/mobile/Library/Caches/SomeCache"));
}

TEST_F(DeepCleanTest, EveryEntryIsMeasuredBeforeItsNameIsAsked) {
    d_.tree.file(EngineDevice::shared("other/a"), 1);
    d_.protect(EngineDevice::shared("other"));
    log_.clear();
    sweep();
    EXPECT_THAT(lines(),
                ElementsAre("🔒 白名单路径跳过大小计算: /var/mobile/Library/Caches/other"));
}

TEST_F(DeepCleanTest, CustomPathsAndDiagnosticsAreNoPartOfIt) {
    d_.tree.file("/var/mine/a", 1);
    d_.tree.file("/var/db/diagnostics/Persist/a", 1);
    d_.addCustomPath("/var/mine");
    EXPECT_EQ(sweep(), 0U);
    EXPECT_TRUE(d_.tree.exists("/var/mine/a"));
    EXPECT_TRUE(d_.tree.exists("/var/db/diagnostics/Persist/a"));
}

// --- Exceptions ---

TEST_F(DeepCleanTest, AnExceptionEndsTheSweepAndIsReportedWithWhatWasFreed) {
    d_.tree.file(EngineDevice::shared("com.apple.springboard/a"), 10);
    d_.tree.file("/var/MobileAsset/AssetsV2/a", 100);
    d_.files.before([](Operation operation, const std::string& path) {
        if (operation == Operation::Attributes && path == "/var/MobileAsset/AssetsV2")
            throw std::runtime_error("the disk is on fire");
    });
    const auto outcome = d_.deepClean();
    EXPECT_FALSE(outcome.success);
    EXPECT_EQ(outcome.bytes, 10U);
    EXPECT_EQ(outcome.error, (platform::Error{"FileCleanerEngine", -1, "the disk is on fire"}));
    EXPECT_TRUE(logged("❌ 深度清理异常: the disk is on fire"));
    EXPECT_TRUE(d_.tree.exists("/var/MobileAsset/AssetsV2/a"));
}

TEST_F(DeepCleanTest, AnExceptionWithoutAReasonGetsOne) {
    d_.files.before([](Operation operation, const std::string& path) {
        if (operation == Operation::Attributes && path == "/var/db/uuidtext")
            throw std::runtime_error("");
    });
    const auto outcome = d_.deepClean();
    EXPECT_FALSE(outcome.success);
    EXPECT_EQ(outcome.error, (platform::Error{"FileCleanerEngine", -1, "深度清理失败"}));
}

TEST_F(DeepCleanTest, TheNextCleanRunsAfterAnException) {
    bool thrown = false;
    d_.files.before([&](Operation operation, const std::string& path) {
        if (operation == Operation::Attributes && path == "/var/db/uuidtext" &&
            !std::exchange(thrown, true))
            throw std::runtime_error("once");
    });
    EXPECT_FALSE(d_.deepClean().success);
    d_.tree.file("/var/db/uuidtext/a", 10);
    EXPECT_EQ(d_.deepClean().bytes, 10U);
}

}  // namespace
}  // namespace sweepwright
