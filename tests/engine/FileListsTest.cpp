#include <algorithm>
#include <cerrno>

#include <fmt/format.h>

#include "EngineTest.h"

namespace sweepwright {
namespace {

using test::EngineDevice;
using test::Operation;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::UnorderedElementsAre;

class FileListsTest : public EngineTest {
  protected:
    void files(const std::string& folder, int count) {
        for (int i = 0; i < count; ++i)
            d_.tree.file(fmt::format("{}/{:03}", folder, i), 1);
    }
    std::vector<std::string> collect(const std::string& folder, std::size_t maxCount,
                                     int maxDepth = platform::kDefaultMaxDepth) {
        std::vector<std::string> paths;
        d_.engine.collectFilesInDirectory(folder, paths, maxCount, maxDepth);
        return paths;
    }
};

// --- The collector ---

TEST_F(FileListsTest, TheCollectorListsHiddenProtectedAndLinkedFilesAsWell) {
    d_.tree.file("/var/t/a", 1);
    d_.tree.file("/var/t/.hidden", 1);
    d_.tree.file("/var/t/.folder/b", 1);
    d_.tree.file("/var/t/kept/c", 1);
    d_.tree.file("/var/elsewhere/d", 1);
    d_.tree.link("/var/t/link", "/var/elsewhere");
    d_.tree.link("/var/t/file-link", "/var/t/a");
    d_.tree.link("/var/t/broken", "/var/nothing");
    d_.protect("/var/t/kept");
    EXPECT_THAT(
        collect("/var/t", 50),
        UnorderedElementsAre("/var/t/a", "/var/t/.hidden", "/var/t/.folder/b", "/var/t/kept/c",
                             "/var/t/link/d", "/var/t/file-link", "/var/t/broken"));
}

TEST_F(FileListsTest, TheCollectorStopsAtTheLimitOfTheWholeArray) {
    files("/var/t", 10);
    EXPECT_THAT(collect("/var/t", 4), SizeIs(4));
    std::vector<std::string> paths = {"one", "two", "three"};
    d_.engine.collectFilesInDirectory("/var/t", paths, 5);
    EXPECT_THAT(paths, SizeIs(5));
    d_.engine.collectFilesInDirectory("/var/t", paths, 5);
    EXPECT_THAT(paths, SizeIs(5));
    d_.engine.collectFilesInDirectory("/var/t", paths, 2);
    EXPECT_THAT(paths, SizeIs(5));
}

TEST_F(FileListsTest, TheCollectorEndsAtItsDepthWithoutALine) {
    d_.tree.file("/var/t/a", 1);
    d_.tree.file("/var/t/sub/b", 1);
    EXPECT_THAT(collect("/var/t", 50, 0), IsEmpty());
    EXPECT_THAT(collect("/var/t", 50, -3), IsEmpty());
    EXPECT_THAT(collect("/var/t", 50, 1), ElementsAre("/var/t/a"));
    EXPECT_THAT(collect("/var/t", 50, 2), UnorderedElementsAre("/var/t/a", "/var/t/sub/b"));
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(FileListsTest, TheCollectorGoesAHundredLevelsDown) {
    std::string at = "/var/t";
    for (int i = 0; i < 99; ++i)
        at += "/d";
    d_.tree.file(at + "/a", 1);
    d_.tree.file(at + "/d/b", 1);
    EXPECT_THAT(collect("/var/t", 50), ElementsAre(at + "/a"));
}

TEST_F(FileListsTest, TheCollectorListsAnEntryWhoseAttributesCannotBeRead) {
    d_.tree.file("/var/t/a", 1);
    failAbout("/var/t/a", {Operation::Attributes}, EIO);
    EXPECT_THAT(collect("/var/t", 50), ElementsAre("/var/t/a"));
}

TEST_F(FileListsTest, AnUnreadableFolderContributesNothing) {
    d_.tree.file("/var/t/a", 1);
    failAbout("/var/t", {Operation::OpenDirectory}, EACCES);
    EXPECT_THAT(collect("/var/t", 50), IsEmpty());
    EXPECT_THAT(collect("/var/missing", 50), IsEmpty());
}

TEST_F(FileListsTest, ALinkCycleEndsWhereItCloses) {
    d_.tree.file("/var/t/a", 1);
    d_.tree.link("/var/t/up", "/var/t");
    d_.tree.link("/var/t/sub/up", "/var/t");
    EXPECT_THAT(collect("/var/t", 50), ElementsAre("/var/t/a"));
}

TEST_F(FileListsTest, FoldersWhoseLinksMultiplyDoNotMakeAWalkWithoutEnd) {
    for (int i = 0; i < 30; ++i)
        for (const char* name : {"a", "b"})
            d_.tree.link(fmt::format("/var/t/{}/{}", i, name), fmt::format("/var/t/{}", i + 1));
    d_.tree.folder("/var/t/30");
    EXPECT_THAT(collect("/var/t/0", 50), IsEmpty());
}

// --- The cache list ---

TEST_F(FileListsTest, TheCacheListHoldsEverySourceLargestFirst) {
    d_.tree.file(d_.caches("file"), 3);
    d_.tree.file(d_.caches("folder/a"), 30);
    d_.tree.file(d_.support("MyCACHE/a"), 300);
    d_.tree.file(d_.support("tmp-file"), 1);  // no directory
    d_.tree.file(d_.support("Other/a"), 1);
    d_.tree.file("/var/mobile/Library/Safari/WebKitCache/a", 20);
    d_.tree.file("/var/mobile/Library/Safari/fsCachedData/a", 21);
    d_.tree.file("/var/MobileAsset/AssetsV2/a", 22);
    d_.tree.file("/var/db/uuidtext/a", 23);
    d_.tree.file(EngineDevice::shared("com.apple.news/a"), 24);
    d_.tree.file(EngineDevice::shared("some-cache/a"), 25);
    d_.tree.file(EngineDevice::shared("SomeCache/a"), 26);
    d_.tree.file(EngineDevice::shared("com.other/a"), 99);
    d_.tree.file(EngineDevice::shared("com.apple.MapsExtra/a"), 99);
    d_.tree.file("/var/mine/a", 1'000);
    d_.addCustomPath("/var/mine");
    EXPECT_THAT(
        d_.engine.getCacheFileList(),
        ElementsAre(CacheEntry{"/var/mine", 1'000}, CacheEntry{d_.support("MyCACHE"), 300},
                    CacheEntry{d_.caches("folder"), 30},
                    CacheEntry{EngineDevice::shared("SomeCache"), 26},
                    CacheEntry{EngineDevice::shared("some-cache"), 25},
                    CacheEntry{EngineDevice::shared("com.apple.news"), 24},
                    CacheEntry{"/var/db/uuidtext", 23}, CacheEntry{"/var/MobileAsset/AssetsV2", 22},
                    CacheEntry{"/var/mobile/Library/Safari/fsCachedData", 21},
                    CacheEntry{"/var/mobile/Library/Safari/WebKitCache", 20},
                    CacheEntry{d_.caches("file"), 3}));
}

TEST_F(FileListsTest, TheThreeFixedFoldersInTheSharedCachesAreListedTwice) {
    d_.tree.file(EngineDevice::shared("com.apple.mobilesafari/a"), 30);
    d_.tree.file(EngineDevice::shared("com.apple.springboard/a"), 20);
    d_.tree.file(EngineDevice::shared("com.apple.cache_delete/a"), 10);
    const CacheEntry safari{EngineDevice::shared("com.apple.mobilesafari"), 30};
    const CacheEntry springBoard{EngineDevice::shared("com.apple.springboard"), 20};
    const CacheEntry cacheDelete{EngineDevice::shared("com.apple.cache_delete"), 10};
    EXPECT_THAT(d_.engine.getCacheFileList(),
                ElementsAre(safari, safari, springBoard, springBoard, cacheDelete, cacheDelete));
}

TEST_F(FileListsTest, HiddenEmptyAndWhitelistedItemsAreNotInTheCacheList) {
    d_.tree.file(d_.caches(".hidden/a"), 10);
    d_.tree.file(d_.caches("empty"), 0);
    d_.tree.folder(d_.caches("empty-folder"));
    d_.tree.file(d_.caches("kept/a"), 10);
    d_.tree.file(d_.caches("kept/sub/b"), 10);
    d_.tree.file(d_.support("kept-cache/a"), 10);
    d_.tree.file("/var/db/uuidtext/a", 10);
    d_.tree.file(EngineDevice::shared("com.apple.kept/a"), 10);
    d_.tree.file("/var/mine/a", 10);
    d_.addCustomPath("/var/mine");
    d_.addCustomPath("/var/missing");
    for (const std::string& path :
         {d_.caches("kept"), d_.support("kept-cache"), std::string("/var/db/uuidtext"),
          EngineDevice::shared("com.apple.kept"), std::string("/var/mine")})
        d_.protect(path);
    EXPECT_THAT(d_.engine.getCacheFileList(), IsEmpty());
}

TEST_F(FileListsTest, TheCacheListHasNoLimit) {
    files(d_.device.cachesDirectory(), 120);
    EXPECT_THAT(d_.engine.getCacheFileList(), SizeIs(120));
}

// --- Lists of paths ---

TEST_F(FileListsTest, EightyTemporaryFilesGiveFiftyPaths) {
    files(d_.device.temporaryDirectory(), 80);
    EXPECT_THAT(d_.engine.getTempFileList(), SizeIs(50));
}

TEST_F(FileListsTest, AHiddenTemporaryFileIsListed) {
    d_.tree.file(d_.temporary(".hidden"), 1);
    EXPECT_THAT(d_.engine.getTempFileList(), ElementsAre(d_.temporary(".hidden")));
}

TEST_F(FileListsTest, CookiesAreListedFromTheirFourPlacesAndNotFromSafari) {
    d_.tree.file(d_.library("Cookies/a"), 1);
    d_.tree.file(d_.library("WebKit/b"), 1);
    d_.tree.file(d_.caches("WEBsite/c"), 1);
    d_.tree.file(d_.caches("IndexedDB/x"), 1);
    d_.tree.file(d_.support("IndexedDB/d"), 1);
    d_.tree.file(d_.library("Safari/Cookies/x"), 1);
    EXPECT_THAT(d_.engine.getCookieFileList(),
                ElementsAre(d_.library("Cookies/a"), d_.library("WebKit/b"), d_.caches("WEBsite/c"),
                            d_.support("IndexedDB/d")));
}

TEST_F(FileListsTest, FiftyCookieFilesAreExactlyTheList) {
    files(d_.library("Cookies"), 50);
    d_.tree.file(d_.library("WebKit/b"), 1);
    d_.tree.file(d_.caches("website/c"), 1);
    d_.tree.file(d_.support("IndexedDB/d"), 1);
    const auto list = d_.engine.getCookieFileList();
    EXPECT_THAT(list, SizeIs(50));
    EXPECT_TRUE(std::ranges::all_of(
        list, [&](const std::string& path) { return path.starts_with(d_.library("Cookies/")); }));
}

TEST_F(FileListsTest, DiagnosticsAreListedAsWholesBehindTheLogs) {
    d_.tree.file(d_.library("Logs/a"), 1);
    d_.tree.file("/var/db/diagnostics/Persist/x", 1);
    d_.tree.file("/var/db/diagnostics/Signpost/empty", 0);
    d_.tree.file("/var/db/diagnostics/Special/x", 1);
    d_.tree.file("/var/db/diagnostics/Special/y", 1);
    EXPECT_THAT(d_.engine.getSystemLogFileList(),
                ElementsAre(d_.library("Logs/a"), "/var/db/diagnostics/Persist",
                            "/var/db/diagnostics/Special"));
}

TEST_F(FileListsTest, DiagnosticsAreListedOnlyWhileThereIsRoom) {
    files(d_.library("Logs"), 49);
    d_.tree.file("/var/db/diagnostics/Persist/x", 1);
    d_.tree.file("/var/db/diagnostics/Special/x", 1);
    const auto list = d_.engine.getSystemLogFileList();
    ASSERT_THAT(list, SizeIs(50));
    EXPECT_EQ(list.back(), "/var/db/diagnostics/Persist");
}

TEST_F(FileListsTest, DownloadsAreListedFromTheirFolder) {
    EXPECT_THAT(d_.engine.getDownloadsFileList(), IsEmpty());
    files(d_.documents("Downloads"), 60);
    d_.tree.file(d_.documents("other"), 1);
    EXPECT_THAT(d_.engine.getDownloadsFileList(), SizeIs(50));
}

TEST_F(FileListsTest, ImageCachesAreListedByTheirExactNames) {
    d_.tree.file(d_.caches("ImageCache/a"), 1);
    d_.tree.file(d_.caches("SDWebImage/b"), 1);
    d_.tree.file(d_.caches("Kingfisher/c"), 1);
    d_.tree.file(d_.caches("Images/d"), 1);
    d_.tree.file(d_.caches("images/x"), 1);
    EXPECT_THAT(d_.engine.getImageCacheFileList(),
                UnorderedElementsAre(d_.caches("ImageCache/a"), d_.caches("SDWebImage/b"),
                                     d_.caches("Kingfisher/c"), d_.caches("Images/d")));
    files(d_.caches("Images"), 30);
    files(d_.caches("Kingfisher"), 30);
    EXPECT_THAT(d_.engine.getImageCacheFileList(), SizeIs(50));
}

TEST_F(FileListsTest, DatabasesAreListedWithoutALimitAndFromTheTopOnly) {
    for (int i = 0; i < 15; ++i)
        for (const char* extension : {"db", "sqlite", "sqlite3", "realm"})
            d_.tree.file(d_.library(fmt::format("{}.{}", i, extension)), 1);
    d_.tree.file(d_.library("x.DB"), 1);
    d_.tree.file(d_.library("x.db-wal"), 1);
    d_.tree.file(d_.library("Sub/y.db"), 1);
    const auto list = d_.engine.getDatabaseFileList();
    EXPECT_THAT(list, SizeIs(60));
    EXPECT_THAT(list, Contains(d_.library("0.realm")));
    EXPECT_THAT(list, Not(Contains(d_.library("x.DB"))));
}

TEST_F(FileListsTest, CrashReportsAreListedFromTheirTwoFolders) {
    d_.tree.file(d_.library("Logs/CrashReporter/a"), 1);
    d_.tree.file(d_.library("Logs/DiagnosticReports/b"), 1);
    d_.tree.file(d_.library("Logs/x"), 1);
    EXPECT_THAT(
        d_.engine.getCrashReportFileList(),
        ElementsAre(d_.library("Logs/CrashReporter/a"), d_.library("Logs/DiagnosticReports/b")));
    files(d_.library("Logs/CrashReporter"), 60);
    EXPECT_THAT(d_.engine.getCrashReportFileList(), SizeIs(50));
}

}  // namespace
}  // namespace sweepwright
