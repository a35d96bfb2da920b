#include <cerrno>
#include <stdexcept>

#include "EngineTest.h"

namespace sweepwright {
namespace {

using test::EngineDevice;
using test::Operation;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class CleanersTest : public EngineTest {
  protected:
    using Cleaner = std::uint64_t (FileCleanerEngine::*)(const FileCleanerEngine::Progress&,
                                                         FileCleanerEngine::ErrorSlot&);
    /// Runs a cleaner as the entry point does; it must leave the error slot alone.
    std::uint64_t run(Cleaner cleaner) {
        FileCleanerEngine::ErrorSlot error = platform::Error{"Test", 7, "left alone"};
        const std::uint64_t freed = (d_.engine.*cleaner)({}, error);
        EXPECT_EQ(error, (platform::Error{"Test", 7, "left alone"}));
        return freed;
    }
    std::uint64_t cleanCache() { return run(&FileCleanerEngine::cleanCacheWithProgress); }
    std::uint64_t cleanCookies() { return run(&FileCleanerEngine::cleanCookiesWithProgress); }
    std::uint64_t cleanLogs() { return run(&FileCleanerEngine::cleanSystemLogsWithProgress); }

    /// Lets the removal of every entry of `folder` fail.
    void fix(const std::string& folder) {
        d_.commands.answerOnly(0);
        d_.files.failWhere(
            [folder](Operation operation, const std::string& path) {
                return (operation == Operation::RemoveFileAt ||
                        operation == Operation::RemoveDirectoryAt) &&
                       path.starts_with(folder + "/");
            },
            EPERM);
    }
    [[nodiscard]] bool isThere(const std::string& path) const { return d_.tree.exists(path); }
};

// --- Caches ---

TEST_F(CleanersTest, TheCacheCleanerEmptiesTheCachesDirectory) {
    d_.tree.file(d_.caches("a"), 1);
    d_.tree.file(d_.caches("sub/b"), 10);
    EXPECT_EQ(cleanCache(), 11U);
    EXPECT_TRUE(isThere(d_.device.cachesDirectory()));
    EXPECT_FALSE(isThere(d_.caches("sub")));
}

TEST_F(CleanersTest, AWhitelistedCachesDirectoryIsPassedOverInSilence) {
    d_.tree.file(d_.caches("a"), 1);
    d_.protect(d_.device.cachesDirectory());
    EXPECT_EQ(cleanCache(), 0U);
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(CleanersTest, OfApplicationSupportTemporaryDataIsEmptied) {
    d_.tree.file(d_.support("MyCache/a"), 1);
    d_.tree.file(d_.support("TMP/a"), 10);
    d_.tree.file(d_.support("Templates/a"), 100);
    d_.tree.file(d_.support("Other/a"), 1'000);
    d_.tree.file(d_.support("cache-file"), 1'000);
    EXPECT_EQ(cleanCache(), 111U);
    EXPECT_TRUE(isThere(d_.support("MyCache")));
    EXPECT_TRUE(isThere(d_.support("Other/a")));
    EXPECT_TRUE(isThere(d_.support("cache-file")));
}

TEST_F(CleanersTest, OfApplicationSupportWhitelistedEntriesAndMapsStay) {
    d_.tree.file(d_.support("kept-cache/a"), 1);
    d_.tree.file(d_.support("com.apple.Maps.cache/a"), 10);
    d_.protect(d_.support("kept-cache"));
    log_.clear();
    EXPECT_EQ(cleanCache(), 0U);
    EXPECT_TRUE(isThere(d_.support("kept-cache/a")));
    EXPECT_TRUE(isThere(d_.support("com.apple.Maps.cache/a")));
    EXPECT_THAT(lines(), ElementsAre("🗺️ 跳过地图应用缓存: " + d_.support("com.apple.Maps.cache") +
                                     " (保护地图图片缓存)"));
}

TEST_F(CleanersTest, TheMapsLineComesBeforeTheQuestionWhetherANameIsTemporary) {
    d_.tree.folder(d_.support("com.apple.Maps"));
    cleanCache();
    EXPECT_TRUE(
        logged("🗺️ 跳过地图应用缓存: " + d_.support("com.apple.Maps") + " (保护地图图片缓存)"));
}

TEST_F(CleanersTest, TheSharedResponsesAreRemovedOnceAndNotCounted) {
    EXPECT_EQ(cleanCache(), 0U);
    EXPECT_EQ(d_.webStorage.responsesRemoved, 1);
    EXPECT_EQ(d_.webStorage.cookiesDeleted, 0);
}

TEST_F(CleanersTest, AWebStorageThatFailsCostsItsStepOnly) {
    d_.webStorage.outcome = std::unexpected(platform::Error{"Test", 1, "closed"});
    d_.tree.file("/var/mine/a", 10);
    d_.addCustomPath("/var/mine");
    EXPECT_EQ(cleanCache(), 10U);
    d_.tree.file(d_.library("Cookies/a"), 5);
    EXPECT_EQ(cleanCookies(), 5U);
}

TEST_F(CleanersTest, TheSystemCachesAreEmptiedInTheirOrderWithTheirLines) {
    d_.tree.file(EngineDevice::shared("com.apple.mobilesafari/a"), 1);
    d_.tree.file("/var/mobile/Library/Safari/WebKitCache/a", 2);
    d_.tree.file("/var/mobile/Library/Safari/fsCachedData/a", 3);
    d_.tree.file(EngineDevice::shared("com.apple.springboard/a"), 4);
    d_.tree.file(EngineDevice::shared("com.apple.cache_delete/a"), 5);
    d_.tree.file("/var/MobileAsset/AssetsV2/a", 6);
    d_.tree.file("/var/db/uuidtext/a", 7);
    EXPECT_EQ(cleanCache(), 28U);
    auto told = lines();
    std::erase_if(told, [](const std::string& line) { return !line.starts_with("✅ 清理"); });
    EXPECT_THAT(
        told,
        ElementsAre("✅ 清理Safari缓存: "
                    "/var/mobile/Library/Caches/com.apple.mobilesafari, 大小: 1 字节",
                    "✅ 清理Safari缓存: "
                    "/var/mobile/Library/Safari/WebKitCache, 大小: 2 字节",
                    "✅ 清理Safari缓存: "
                    "/var/mobile/Library/Safari/fsCachedData, 大小: 3 字节",
                    "✅ 清理SpringBoard缓存, 大小: 4 字节", "✅ 清理cache_delete缓存, 大小: 5 字节",
                    "✅ 清理MobileAsset缓存, 大小: 6 字节", "✅ 清理uuidtext缓存, 大小: 7 字节"));
    EXPECT_EQ(d_.commands.commands().size(), 7U);
}

TEST_F(CleanersTest, SystemCachesThatAreEmptyAbsentOrWhitelistedAreNotVisited) {
    d_.tree.folder("/var/mobile/Library/Safari/WebKitCache");
    d_.tree.file("/var/db/uuidtext/a", 7);
    d_.tree.file("/var/MobileAsset/AssetsV2/.hidden", 7);
    d_.protect("/var/db/uuidtext");
    log_.clear();
    EXPECT_EQ(cleanCache(), 0U);
    EXPECT_THAT(d_.commands.commands(), IsEmpty());
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(CleanersTest, ASystemCacheOfWhichNothingWentHasNoLine) {
    d_.tree.file("/var/db/uuidtext/a", 7);
    d_.commands.answerOnly(0);
    EXPECT_EQ(cleanCache(), 0U);
    EXPECT_THAT(lines(), Not(Contains(testing::HasSubstr("✅"))));
}

TEST_F(CleanersTest, OfTheSharedCachesThreeKindsOfNamesGo) {
    d_.tree.file(EngineDevice::shared("com.apple.news/a"), 1);
    d_.tree.file(EngineDevice::shared("some-cache/a"), 10);
    d_.tree.file(EngineDevice::shared("SomeCache/a"), 100);
    d_.tree.file(EngineDevice::shared("SOMECACHE/a"), 1'000);
    d_.tree.file(EngineDevice::shared("com.other/a"), 1'000);
    EXPECT_EQ(cleanCache(), 111U);
    EXPECT_TRUE(isThere(EngineDevice::shared("SOMECACHE/a")));
    EXPECT_TRUE(isThere(EngineDevice::shared("com.other/a")));
    EXPECT_TRUE(logged("✅ 清理用户库缓存: com.apple.news, 大小: 1 字节"));
    EXPECT_TRUE(logged("✅ 清理用户库缓存: some-cache, 大小: 10 字节"));
    EXPECT_TRUE(logged("✅ 清理用户库缓存: SomeCache, 大小: 100 字节"));
    ASSERT_EQ(d_.commands.commands().size(), 1U);  // for the one that begins with "com.apple."
}

TEST_F(CleanersTest, TheAppsOwnFolderMapsAndWhitelistedOnesInTheSharedCachesStay) {
    d_.tree.file(EngineDevice::shared("com.Sweepwright.cache/a"), 1);
    d_.tree.file(EngineDevice::shared("com.apple.MapsExtra/a"), 1);
    d_.tree.file(EngineDevice::shared("MappedImageCache/a"), 1);
    d_.tree.file(EngineDevice::shared("com.apple.kept/a"), 1);
    d_.protect(EngineDevice::shared("com.apple.kept"));
    log_.clear();
    const auto before = d_.everything();
    EXPECT_EQ(cleanCache(), 0U);
    EXPECT_EQ(d_.everything(), before);
    EXPECT_THAT(lines(), testing::UnorderedElementsAre(
                             "🗺️ 跳过地图应用缓存: /var/mobile/Library/Caches/com.apple.MapsExtra "
                             "(保护地图图片缓存)",
                             "🔒 跳过白名单路径: /var/mobile/Library/Caches/MappedImageCache",
                             "🔒 跳过白名单路径: /var/mobile/Library/Caches/com.apple.kept"));
}

TEST_F(CleanersTest, ASharedCacheThatCannotBeEmptiedIsToldOf) {
    d_.tree.file(EngineDevice::shared("SomeCache/a"), 123);
    fix(EngineDevice::shared("SomeCache"));
    EXPECT_EQ(cleanCache(), 0U);
    EXPECT_TRUE(logged("⚠️ 检测到缓存但无法删除: SomeCache, 大小: 123 字节（文件可能正在使用）"));
}

TEST_F(CleanersTest, AnEmptySharedCacheHasNoLine) {
    d_.tree.folder(EngineDevice::shared("SomeCache"));
    d_.tree.file(EngineDevice::shared("cache-file"), 10);
    EXPECT_EQ(cleanCache(), 0U);
    EXPECT_THAT(lines(), IsEmpty());
}

/// Whitelists a path from the second question about it on.
class SecondThoughts final : public FileCleanerEngine {
  public:
    SecondThoughts(const EngineServices& services, std::string path)
        : FileCleanerEngine(services), path_(std::move(path)) {}
    bool isPathInWhitelist(const std::string& path) const override {
        return path == path_ && asked_++ > 0;
    }

  private:
    std::string path_;
    mutable int asked_ = 0;
};

TEST_F(CleanersTest, ASharedCacheWhitelistedBetweenTwoQuestionsStays) {
    d_.tree.file(EngineDevice::shared("SomeCache/a"), 10);
    SecondThoughts engine(d_.engineServices(), EngineDevice::shared("SomeCache"));
    FileCleanerEngine::ErrorSlot error;
    EXPECT_EQ(engine.cleanCacheWithProgress({}, error), 0U);
    EXPECT_TRUE(isThere(EngineDevice::shared("SomeCache/a")));
    EXPECT_THAT(lines(), ElementsAre("🔒 二次检查：跳过白名单路径: "
                                     "/var/mobile/Library/Caches/SomeCache"));
}

TEST_F(CleanersTest, WhereTheCachesDirectoryIsTheSharedOneItsEntriesAreCleanedOneByOne) {
    EngineDevice d("/var/mobile");
    d.tree.file(EngineDevice::shared("SomeCache/a"), 10);
    d.tree.file(EngineDevice::shared("other/a"), 100);
    FileCleanerEngine::ErrorSlot error;
    EXPECT_EQ(d.engine.cleanCacheWithProgress({}, error), 10U);
    EXPECT_TRUE(d.tree.exists(EngineDevice::shared("other/a")));
}

TEST_F(CleanersTest, CustomPathsAreEmptiedInTheirOrder) {
    d_.tree.file("/var/b/x", 10);
    d_.tree.file("/var/a/x", 1);
    d_.addCustomPath("/var/b");
    d_.addCustomPath("/var/a");
    EXPECT_EQ(cleanCache(), 11U);
    EXPECT_TRUE(isThere("/var/a"));
    EXPECT_THAT(lines(), ElementsAre("✅ 清理自定义路径: /var/b, 大小: 10 字节",
                                     "✅ 清理自定义路径: /var/a, 大小: 1 字节"));
}

TEST_F(CleanersTest, CustomPathsThatAreWhitelistedMissingOrEmptyAreNotVisited) {
    d_.tree.file("/var/kept/x", 10);
    d_.tree.file("/var/hidden/.x", 10);
    d_.tree.file("/var/zero/x", 0);
    d_.tree.file("/var/file", 10);
    d_.protect("/var/kept");
    for (const char* path : {"/var/kept", "/var/hidden", "/var/zero", "/var/file", "/var/missing"})
        d_.addCustomPath(path);
    log_.clear();
    EXPECT_EQ(cleanCache(), 0U);
    EXPECT_THAT(lines(), IsEmpty());
    EXPECT_TRUE(isThere("/var/kept/x"));
    EXPECT_TRUE(isThere("/var/zero/x"));
    EXPECT_THAT(d_.eraser.removed, IsEmpty());
}

TEST_F(CleanersTest, MapsStayAsACustomPathThoughACommandWouldEmptySuchAFolder) {
    // Its prefix makes it a system path, and none of the built-in paths protects it.
    d_.tree.file(EngineDevice::shared("com.apple.MapsExtra/sub/a"), 10);
    d_.addCustomPath(EngineDevice::shared("com.apple.MapsExtra"));
    const auto before = d_.everything();
    EXPECT_EQ(cleanCache(), 0U);
    EXPECT_EQ(d_.everything(), before);
    EXPECT_TRUE(d_.commands.commands().empty());
}

TEST_F(CleanersTest, AnExceptionInTheSystemCachesIsLoggedAndCustomPathsFollow) {
    d_.tree.file(d_.caches("a"), 1);
    d_.tree.file("/var/mobile/Library/Safari/WebKitCache/a", 10);
    d_.tree.file("/var/db/uuidtext/a", 100);
    d_.tree.file(EngineDevice::shared("SomeCache/a"), 1'000);
    d_.tree.file("/var/mine/a", 10'000);
    d_.addCustomPath("/var/mine");
    log_.clear();
    d_.files.before([](Operation operation, const std::string& path) {
        if (operation == Operation::Attributes && path == "/var/MobileAsset/AssetsV2")
            throw std::runtime_error("the disk is on fire");
    });
    EXPECT_EQ(cleanCache(), 10'011U);
    EXPECT_TRUE(logged("⚠️ 清理系统缓存时异常: the disk is on fire"));
    EXPECT_TRUE(isThere("/var/db/uuidtext/a"));
    EXPECT_TRUE(isThere(EngineDevice::shared("SomeCache/a")));
    EXPECT_FALSE(isThere("/var/mine/a"));
}

TEST_F(CleanersTest, TheStepsOfTheCacheCleanerComeInTheirOrder) {
    d_.tree.file(d_.caches("a"), 1);
    d_.tree.file(d_.support("Cache/b"), 1);
    d_.tree.file(EngineDevice::shared("SomeCache/c"), 1);
    d_.tree.file("/var/mine/d", 1);
    d_.addCustomPath("/var/mine");
    cleanCache();
    EXPECT_THAT(d_.eraser.removed, ElementsAre(d_.caches("a"), d_.support("Cache/b"),
                                               EngineDevice::shared("SomeCache/c"), "/var/mine/d"));
}

// --- Temporary files ---

TEST_F(CleanersTest, TheTemporaryDirectoryIsEmptied) {
    d_.tree.file(d_.temporary("a"), 1);
    d_.tree.file(d_.temporary("sub/b"), 10);
    EXPECT_EQ(run(&FileCleanerEngine::cleanTempFilesWithProgress), 11U);
    EXPECT_TRUE(isThere(d_.device.temporaryDirectory()));
}

// --- Cookies ---

TEST_F(CleanersTest, CookiesGoFromTheirFourPlaces) {
    d_.tree.file(d_.library("Cookies/a"), 1);
    d_.tree.file(d_.library("WebKit/a"), 2);
    d_.tree.file(d_.caches("MyWEBKITdata/a"), 10);
    d_.tree.file(d_.caches("WebSiteData/a"), 20);
    d_.tree.file(d_.caches("COOKIEjar/a"), 40);
    d_.tree.file(d_.caches("IndexedDB/a"), 5'000);
    d_.tree.file(d_.support("WebKit/a"), 100);
    d_.tree.file(d_.support("websites/a"), 200);
    d_.tree.file(d_.support("Cookies/a"), 400);
    d_.tree.file(d_.support("LOCALstorage/a"), 1'000);
    d_.tree.file(d_.support("IndexedDB/a"), 2'000);
    d_.tree.file(d_.support("other/a"), 5'000);
    EXPECT_EQ(cleanCookies(), 3'773U);
    EXPECT_EQ(d_.webStorage.cookiesDeleted, 1);
    EXPECT_EQ(d_.webStorage.responsesRemoved, 0);
    EXPECT_TRUE(isThere(d_.caches("IndexedDB/a")));
    EXPECT_TRUE(isThere(d_.support("other/a")));
}

TEST_F(CleanersTest, OfTheSafariFolderBookmarksHistoryAndSettingsStay) {
    for (const char* kept :
         {"Bookmarks.plist", "History.plist", "History.db", "WebKit.plist", "Other", "X-WAL"})
        d_.tree.file(d_.library(std::string("Safari/") + kept + "/a"), 5'000);
    for (const char* gone :
         {"CacheSettings.plist", "WebsiteData.PLIST", "MyCACHE", "WebKit", "LocalStorage",
          "Cookies", "websites", "fsCachedData", "x-wal", "x-shm"})
        d_.tree.file(d_.library(std::string("Safari/") + gone + "/a"), 1);
    d_.tree.file(d_.library("Safari/History.db-wal"), 7);  // a plain file has no contents
    EXPECT_EQ(cleanCookies(), 10U);
    EXPECT_TRUE(isThere(d_.library("Safari/Bookmarks.plist/a")));
    EXPECT_TRUE(isThere(d_.library("Safari/History.plist/a")));
    EXPECT_TRUE(isThere(d_.library("Safari/History.db/a")));
    EXPECT_TRUE(isThere(d_.library("Safari/History.db-wal")));
    EXPECT_FALSE(isThere(d_.library("Safari/CacheSettings.plist/a")));
    EXPECT_TRUE(isThere(d_.library("Safari/CacheSettings.plist")));
}

TEST_F(CleanersTest, TheSystemsSafariCachesGoWithTheirLines) {
    d_.tree.file(EngineDevice::shared("com.apple.mobilesafari/a"), 1);
    d_.tree.file("/var/mobile/Library/Safari/WebKitCache/a", 10);
    d_.tree.file("/var/mobile/Library/Safari/fsCachedData/a", 100);
    EXPECT_EQ(cleanCookies(), 111U);
    auto told = lines();
    std::erase_if(told, [](const std::string& line) { return !line.starts_with("✅ 清理"); });
    EXPECT_THAT(told, ElementsAre("✅ 清理系统Safari缓存: "
                                  "/var/mobile/Library/Caches/com.apple.mobilesafari, 大小: 1 字节",
                                  "✅ 清理系统Safari缓存: "
                                  "/var/mobile/Library/Safari/WebKitCache, 大小: 10 字节",
                                  "✅ 清理系统Safari缓存: "
                                  "/var/mobile/Library/Safari/fsCachedData, 大小: 100 字节"));
}

TEST_F(CleanersTest, ASafariCacheOfTheSystemThatCannotBeEmptiedIsToldOf) {
    d_.tree.file("/var/mobile/Library/Safari/WebKitCache/a", 10);
    d_.commands.answerOnly(0);
    EXPECT_EQ(cleanCookies(), 0U);
    EXPECT_TRUE(
        logged("⚠️ 无法清理系统Safari缓存: "
               "/var/mobile/Library/Safari/WebKitCache（文件可能正在使用）"));
}

TEST_F(CleanersTest, SafariCachesOfTheSystemThatAreWhitelistedOrEmptyAreNotVisited) {
    d_.tree.file("/var/mobile/Library/Safari/WebKitCache/a", 10);
    d_.tree.folder("/var/mobile/Library/Safari/fsCachedData");
    d_.protect("/var/mobile/Library/Safari/WebKitCache");
    log_.clear();
    EXPECT_EQ(cleanCookies(), 0U);
    EXPECT_THAT(lines(), IsEmpty());
}

// --- Logs ---

TEST_F(CleanersTest, SystemLogsAreTheLogsFolderAndTheDiagnostics) {
    d_.tree.file(d_.library("Logs/a"), 1);
    d_.tree.file("/var/db/diagnostics/Persist/a", 10);
    d_.tree.file("/var/db/diagnostics/Signpost/a", 100);
    d_.tree.file("/var/db/diagnostics/Special/a", 1'000);
    d_.tree.file("/var/db/diagnostics/Other/a", 10'000);
    EXPECT_EQ(cleanLogs(), 1'111U);
    auto told = lines();
    std::erase_if(told, [](const std::string& line) { return !line.starts_with("✅ 清理"); });
    EXPECT_THAT(told, ElementsAre("✅ 清理诊断数据: /var/db/diagnostics/Persist, 大小: 10 字节",
                                  "✅ 清理诊断数据: /var/db/diagnostics/Signpost, 大小: 100 字节",
                                  "✅ 清理诊断数据: /var/db/diagnostics/Special, 大小: 1000 字节"));
    EXPECT_TRUE(isThere("/var/db/diagnostics/Other/a"));
}

TEST_F(CleanersTest, DiagnosticsThatCannotBeEmptiedAreToldOf) {
    d_.tree.file("/var/db/diagnostics/Persist/a", 10);
    d_.commands.answerOnly(0);
    EXPECT_EQ(cleanLogs(), 0U);
    EXPECT_TRUE(
        logged("⚠️ 检测到诊断数据但无法删除: /var/db/diagnostics/Persist, 大小: 10 "
               "字节（文件可能正在使用）"));
}

TEST_F(CleanersTest, WhitelistedOrEmptyLogsAreNotVisited) {
    d_.tree.file(d_.library("Logs/a"), 1);
    d_.tree.file("/var/db/diagnostics/Persist/a", 10);
    d_.tree.folder("/var/db/diagnostics/Signpost");
    d_.protect(d_.library("Logs"));
    d_.protect("/var/db/diagnostics/Persist");
    log_.clear();
    EXPECT_EQ(cleanLogs(), 0U);
    EXPECT_THAT(lines(), IsEmpty());
    EXPECT_TRUE(isThere(d_.library("Logs/a")));
}

// --- Downloads, images, crash reports, offline data ---

TEST_F(CleanersTest, DownloadsAreTheFolderOfThatNameInTheDocuments) {
    EXPECT_EQ(run(&FileCleanerEngine::cleanDownloadsWithProgress), 0U);
    d_.tree.file(d_.documents("Downloads/a"), 10);
    d_.tree.file(d_.documents("b"), 100);
    EXPECT_EQ(run(&FileCleanerEngine::cleanDownloadsWithProgress), 10U);
    EXPECT_TRUE(isThere(d_.documents("Downloads")));
    EXPECT_TRUE(isThere(d_.documents("b")));
}

TEST_F(CleanersTest, ImageCachesAreFourNamesByTheirExactCase) {
    d_.tree.file(d_.caches("MyImageCache/a"), 1);
    d_.tree.file(d_.caches("SDWebImage/a"), 10);
    d_.tree.file(d_.caches("Kingfisher/a"), 100);
    d_.tree.file(d_.caches("Images/a"), 1'000);
    for (const char* other : {"imagecache", "sdwebimage", "kingfisher", "images"})
        d_.tree.file(d_.caches(std::string(other) + "/a"), 5'000);
    d_.tree.file(d_.caches("MappedImageCache/a"), 5'000);
    EXPECT_EQ(run(&FileCleanerEngine::cleanImageCacheWithProgress), 1'111U);
    EXPECT_TRUE(isThere(d_.caches("images/a")));
    EXPECT_TRUE(isThere(d_.caches("MappedImageCache/a")));
}

TEST_F(CleanersTest, CrashReportsAreTwoFolders) {
    d_.tree.file(d_.library("Logs/CrashReporter/a"), 1);
    d_.tree.file(d_.library("Logs/DiagnosticReports/a"), 10);
    d_.tree.file(d_.library("Logs/other"), 100);
    EXPECT_EQ(run(&FileCleanerEngine::cleanCrashReportsWithProgress), 11U);
    EXPECT_TRUE(isThere(d_.library("Logs/other")));
    EXPECT_THAT(d_.eraser.removed, ElementsAre(d_.library("Logs/CrashReporter/a"),
                                               d_.library("Logs/DiagnosticReports/a")));
}

TEST_F(CleanersTest, OfflineDataAreThreeNamesByTheirExactCase) {
    d_.tree.file(d_.support("OfflineMaps/a"), 1);
    d_.tree.file(d_.support("my-offline/a"), 10);
    d_.tree.file(d_.support("xLocalData/a"), 100);
    d_.tree.file(d_.support("OFFLINE/a"), 1'000);
    d_.tree.file(d_.support("localdata/a"), 1'000);
    d_.tree.file(d_.support("Offline.bin"), 1'000);
    EXPECT_EQ(run(&FileCleanerEngine::cleanOfflineDataWithProgress), 111U);
    EXPECT_TRUE(isThere(d_.support("OFFLINE/a")));
    EXPECT_TRUE(isThere(d_.support("Offline.bin")));
}

// --- What holds for all ---

TEST_F(CleanersTest, EntriesBehindAFolderThatIsALinkStay) {
    d_.tree.file("/var/elsewhere/Kingfisher/a", 1);
    d_.tree.file("/var/elsewhere/WebKit/a", 1);
    d_.tree.file("/var/elsewhere/Offline/a", 1);
    d_.tree.link(d_.device.cachesDirectory(), "/var/elsewhere");
    d_.tree.link(d_.device.applicationSupportDirectory(), "/var/elsewhere");
    d_.tree.link(d_.library("Safari"), "/var/elsewhere");
    d_.tree.link(d_.library("WebKit"), "/var/elsewhere/WebKit");
    EXPECT_EQ(d_.clean(CleanType::All).bytes, 0U);
    EXPECT_TRUE(isThere("/var/elsewhere/Kingfisher/a"));
    EXPECT_TRUE(isThere("/var/elsewhere/WebKit/a"));
    EXPECT_TRUE(isThere("/var/elsewhere/Offline/a"));
}

}  // namespace
}  // namespace sweepwright
