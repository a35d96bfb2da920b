#include <cerrno>

#include "EngineTest.h"

namespace sweepwright {
namespace {

using test::EngineDevice;
using test::Operation;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class SizeScanTest : public EngineTest {
  protected:
    std::uint64_t sizeOf(const std::string& path) { return d_.engine.sizeOfDirectoryAtPath(path); }

    /// A path `levels` directories beneath `root`.
    static std::string deep(std::string root, int levels) {
        for (int i = 0; i < levels; ++i)
            root += "/d";
        return root;
    }
};

// --- The walker ---

TEST_F(SizeScanTest, HiddenEntriesDoNotCount) {
    d_.tree.file("/var/t/.cache/large", kMega);
    d_.tree.file("/var/t/.hidden", 100);
    d_.tree.file("/var/t/visible", 10);
    EXPECT_EQ(sizeOf("/var/t"), 10U);
}

TEST_F(SizeScanTest, LinksDoNotCount) {
    d_.tree.file("/var/large/file", kMega);
    d_.tree.link("/var/t/folder", "/var/large");
    d_.tree.link("/var/t/file", "/var/large/file");
    d_.tree.file("/var/t/own", 3);
    EXPECT_EQ(sizeOf("/var/t"), 3U);
}

TEST_F(SizeScanTest, APlainFileOrAMissingPathAsRootMeasuresNothing) {
    d_.tree.file("/var/file", 100);
    EXPECT_EQ(sizeOf("/var/file"), 0U);
    EXPECT_EQ(sizeOf("/var/missing"), 0U);
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(SizeScanTest, AFolderAboveAWhitelistedOneMeasuresNothing) {
    d_.tree.file("/var/t/kept/a", 100);
    d_.tree.file("/var/t/b", 10);
    d_.tree.file("/var/t/sub/kept", 5);
    d_.tree.file("/var/t/sub/c", 1);
    d_.protect("/var/t/kept");
    d_.protect("/var/t/sub/kept");
    log_.clear();
    // The root, being above a protected path, is protected itself.
    EXPECT_EQ(sizeOf("/var/t"), 0U);
    EXPECT_THAT(lines(), ElementsAre("🔒 白名单路径跳过大小计算: /var/t"));
}

TEST_F(SizeScanTest, AWhitelistedRootMeasuresNothingWithTheRootsLine) {
    d_.tree.file("/var/t/a", 100);
    d_.protect("/var/t");
    EXPECT_EQ(sizeOf("/var/t"), 0U);
    EXPECT_THAT(lines(), ElementsAre("🔒 白名单路径跳过大小计算: /var/t"));
}

TEST_F(SizeScanTest, AWhitelistedChildIsLeftOutWithTheChildsLine) {
    // Of all folders only "/" is not protected by what lies in it.
    d_.tree.file("/kept/a", 100);
    d_.tree.file("/free/b", 10);
    d_.protect("/kept");
    EXPECT_EQ(sizeOf("/"), 10U);
    EXPECT_THAT(lines(), testing::UnorderedElementsAre("🔒 白名单子路径跳过大小计算: /kept",
                                                       "🔒 白名单子路径跳过大小计算: /var"));
}

TEST_F(SizeScanTest, ADepthOfNothingOrLessMeasuresNothingWithALineEvenOfAnEmptyFolder) {
    d_.tree.folder("/var/empty");
    EXPECT_EQ(d_.engine.sizeOfDirectoryAtPath("/var/empty", 0), 0U);
    EXPECT_EQ(d_.engine.sizeOfDirectoryAtPath("/var/empty", -1), 0U);
    EXPECT_THAT(lines(), ElementsAre("⚠️ 达到最大递归深度，跳过路径: /var/empty",
                                     "⚠️ 达到最大递归深度，跳过路径: /var/empty"));
}

TEST_F(SizeScanTest, AWhitelistedRootIsToldOfBeforeItsDepth) {
    d_.tree.folder("/var/t");
    d_.protect("/var/t");
    EXPECT_EQ(d_.engine.sizeOfDirectoryAtPath("/var/t", 0), 0U);
    EXPECT_THAT(lines(), ElementsAre("🔒 白名单路径跳过大小计算: /var/t"));
}

TEST_F(SizeScanTest, ADepthOfOneMeasuresTheRootsFilesOnly) {
    d_.tree.file("/var/t/a", 10);
    d_.tree.file("/var/t/sub/b", 100);
    EXPECT_EQ(d_.engine.sizeOfDirectoryAtPath("/var/t", 1), 10U);
    EXPECT_THAT(lines(), ElementsAre("⚠️ 达到最大递归深度，跳过路径: /var/t/sub"));
}

TEST_F(SizeScanTest, ADirectoryAHundredLevelsBelowTheRootCountsNothing) {
    d_.tree.file(deep("/var/t", 99) + "/a", 10);
    d_.tree.file(deep("/var/t", 100) + "/b", 100);
    EXPECT_EQ(sizeOf("/var/t"), 10U);
    EXPECT_THAT(lines(), ElementsAre("⚠️ 达到最大递归深度，跳过路径: " + deep("/var/t", 100)));
}

TEST_F(SizeScanTest, WhatCannotBeReadCountsNothing) {
    d_.tree.file("/var/t/a", 10);
    d_.tree.file("/var/t/b", 100);
    d_.tree.file("/var/t/closed/c", 1'000);
    d_.files.failWhere(
        [](Operation operation, const std::string& path) {
            return (operation == Operation::AttributesAt && path == "/var/t/b") ||
                   (operation == Operation::OpenBeneath && path == "/var/t/closed");
        },
        EACCES);
    EXPECT_EQ(sizeOf("/var/t"), 10U);
}

// --- System caches ---

TEST_F(SizeScanTest, SystemCachesTellWhatTheyFoundInTheirOrder) {
    d_.tree.file("/var/mobile/Library/Caches/com.apple.mobilesafari/a", 1);
    d_.tree.file("/var/mobile/Library/Safari/WebKitCache/a", 10);
    d_.tree.file("/var/mobile/Library/Safari/fsCachedData/a", 100);
    d_.tree.file("/var/mobile/Library/Caches/com.apple.springboard/a", 1'000);
    d_.tree.file("/var/mobile/Library/Caches/com.apple.cache_delete/a", 10'000);
    d_.tree.file("/var/MobileAsset/AssetsV2/a", 100'000);
    d_.tree.file("/var/db/uuidtext/a", 1'000'000);
    // Three of them lie in the shared caches and count twice.
    EXPECT_EQ(d_.engine.getSystemCacheSize(), 1'111'111U + 11'001);
    EXPECT_THAT(
        lines(),
        ElementsAre("✅ 扫描到Safari缓存: /var/mobile/Library/Caches/com.apple.mobilesafari, "
                    "大小: 1 字节",
                    "✅ 扫描到Safari缓存: /var/mobile/Library/Safari/WebKitCache, 大小: 10 字节",
                    "✅ 扫描到Safari缓存: /var/mobile/Library/Safari/fsCachedData, 大小: 100 字节",
                    "✅ 扫描到SpringBoard缓存, 大小: 1000 字节",
                    "✅ 扫描到cache_delete缓存, 大小: 10000 字节",
                    "✅ 扫描到MobileAsset缓存, 大小: 100000 字节",
                    "✅ 扫描到uuidtext缓存, 大小: 1000000 字节"));
}

TEST_F(SizeScanTest, EmptyOrAbsentSystemCachesAreNotToldOf) {
    d_.tree.folder("/var/MobileAsset/AssetsV2");
    EXPECT_EQ(d_.engine.getSystemCacheSize(), 0U);
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(SizeScanTest, TheSpringBoardCacheCountsTwice) {
    d_.tree.file("/var/mobile/Library/Caches/com.apple.springboard/a", kMega);
    EXPECT_EQ(d_.engine.getSystemCacheSize(), 2 * kMega);
}

TEST_F(SizeScanTest, WhitelistedSystemCachesAreNotMeasured) {
    d_.tree.file("/var/db/uuidtext/a", 10);
    d_.tree.file("/var/mobile/Library/Safari/WebKitCache/a", 10);
    d_.tree.file("/var/mobile/Library/Caches/com.apple.springboard/a", 10);
    d_.protect("/var/db/uuidtext");
    d_.protect("/var/mobile/Library/Safari");
    d_.protect("/var/mobile/Library/Caches/com.apple.springboard");
    log_.clear();
    EXPECT_EQ(d_.engine.getSystemCacheSize(), 0U);
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(SizeScanTest, OfTheSharedCachesThreeKindsOfNamesCountByTheirExactCase) {
    d_.tree.file(EngineDevice::shared("com.apple.news/a"), 1);
    d_.tree.file(EngineDevice::shared("my-cache/a"), 10);
    d_.tree.file(EngineDevice::shared("MyCaches/a"), 100);
    d_.tree.file(EngineDevice::shared("MYCACHE/a"), 1'000);
    d_.tree.file(EngineDevice::shared("COM.APPLE.x/a"), 1'000);
    d_.tree.file(EngineDevice::shared("org.com.apple.x/a"), 1'000);
    d_.tree.file(EngineDevice::shared("com.other/a"), 1'000);
    d_.tree.file(EngineDevice::shared("cache-file"), 1'000);
    EXPECT_EQ(d_.engine.getSystemCacheSize(), 111U);
}

TEST_F(SizeScanTest, MapsCachesAndWhitelistedOnesInTheSharedCachesDoNotCount) {
    d_.tree.file(EngineDevice::shared("com.apple.Maps/a"), 1);
    d_.tree.file(EngineDevice::shared("com.apple.MapsSupport/a"), 10);  // in no list, by its name
    d_.tree.file(EngineDevice::shared("MappedImageCache/a"), 100);
    d_.tree.file(EngineDevice::shared("com.apple.kept/a"), 1'000);
    d_.tree.file(EngineDevice::shared("com.apple.counted/a"), 10'000);
    d_.protect(EngineDevice::shared("com.apple.kept"));
    EXPECT_EQ(d_.engine.getSystemCacheSize(), 10'000U);
}

// --- Cache category ---

TEST_F(SizeScanTest, TheCacheSizeIsCachesSupportSystemAndCustomPaths) {
    d_.tree.file(d_.caches("anything"), 1);
    d_.tree.file(d_.support("SomeCache/a"), 10);
    d_.tree.file(d_.support("TMPs/a"), 100);
    d_.tree.file(d_.support("Template/a"), 1'000);
    d_.tree.file(d_.support("Database/a"), 5'000'000);
    d_.tree.file("/var/db/uuidtext/a", 10'000);
    d_.tree.file("/var/mobile/Mine/a", 100'000);
    d_.addCustomPath("/var/mobile/Mine");
    EXPECT_EQ(d_.engine.getCacheSize(), 111'111U);
}

TEST_F(SizeScanTest, WhitelistedCachesDoNotCountAndSaySoOnlyInTheWhitelistsLine) {
    d_.tree.file(d_.caches("a"), 1);
    d_.tree.file(d_.support("MyCache/a"), 10);
    d_.protect(d_.device.cachesDirectory());
    d_.protect(d_.support("MyCache"));
    log_.clear();
    EXPECT_EQ(d_.engine.getCacheSize(), 0U);
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(SizeScanTest, ThePlainFilesOfApplicationSupportAddNothing) {
    d_.tree.file(d_.support("cache.bin"), 10);
    EXPECT_EQ(d_.engine.getCacheSize(), 0U);
}

// --- The other categories ---

TEST_F(SizeScanTest, TemporaryFilesAreTheTemporaryDirectory) {
    d_.tree.file(d_.temporary("a"), 1);
    d_.tree.file(d_.temporary("sub/b"), 10);
    EXPECT_EQ(d_.engine.getTempFilesSize(), 11U);
}

TEST_F(SizeScanTest, CookiesAreTwoFoldersAndEntriesByLowerCasedName) {
    d_.tree.file(d_.library("Cookies/a"), 1);
    d_.tree.file(d_.library("WebKit/a"), 2);
    d_.tree.file(d_.caches("MyWEBKITdata/a"), 10);
    d_.tree.file(d_.caches("com.apple.WebKit.x/a"), 20);
    d_.tree.file(d_.caches("WebSiteData/a"), 40);
    d_.tree.file(d_.caches("COOKIEjar/a"), 100);
    d_.tree.file(d_.caches("LocalStorage/a"), 5'000'000);  // web data of application support only
    d_.tree.file(d_.caches("other/a"), 5'000'000);
    d_.tree.file(d_.support("WebKit/a"), 200);
    d_.tree.file(d_.support("Websites/a"), 400);
    d_.tree.file(d_.support("Cookies/a"), 1'000);
    d_.tree.file(d_.support("LOCALstorage/a"), 2'000);
    d_.tree.file(d_.support("IndexedDB/a"), 4'000);
    d_.tree.file(d_.support("other/a"), 5'000'000);
    EXPECT_EQ(d_.engine.getCookiesSize(), 7'773U);
}

TEST_F(SizeScanTest, OfTheSafariFolderBookmarksHistoryAndSettingsStayOut) {
    const auto folder = [&](const std::string& name, std::uint64_t bytes) {
        d_.tree.file(d_.library("Safari/" + name + "/a"), bytes);
    };
    // Folders, so that each has a size of its own that a wrong choice would add.
    folder("Bookmarks.plist", 5'000'000);
    folder("History.plist", 5'000'000);
    folder("History.db", 5'000'000);
    folder("WebKit.plist", 5'000'000);  // settings
    folder("Other", 5'000'000);
    folder("X-WAL", 5'000'000);  // that test is of the name as it stands
    folder("CacheSettings.plist", 1);
    folder("WebsiteData.PLIST", 2);  // not a ".plist" by its exact case
    folder("MyCACHE", 10);
    folder("WebKit", 20);
    folder("LocalStorage", 40);
    folder("Cookies", 100);
    folder("websites", 200);
    folder("fsCachedData", 400);
    folder("x-wal", 1'000);
    folder("x-shm", 2'000);
    EXPECT_EQ(d_.engine.getCookiesSize(), 3'773U);
}

TEST_F(SizeScanTest, PlainFilesOfTheSafariFolderAddNothing) {
    d_.tree.file(d_.library("Safari/History.db-wal"), 10);
    d_.tree.file(d_.library("Safari/CacheSettings.plist"), 10);
    d_.tree.file(d_.library("Safari/Data.PLIST"), 10);
    EXPECT_EQ(d_.engine.getCookiesSize(), 0U);
}

TEST_F(SizeScanTest, SystemLogsAreTheLogsFolderAndTheDiagnostics) {
    d_.tree.file(d_.library("Logs/a"), 1);
    d_.tree.file("/var/db/diagnostics/Persist/a", 10);
    d_.tree.folder("/var/db/diagnostics/Signpost");
    d_.tree.file("/var/db/diagnostics/Special/a", 100);
    d_.tree.file("/var/db/diagnostics/Other/a", 1'000);
    EXPECT_EQ(d_.engine.getSystemLogsSize(), 111U);
    EXPECT_THAT(lines(),
                ElementsAre("✅ 扫描到诊断数据: /var/db/diagnostics/Persist, 大小: 10 字节",
                            "✅ 扫描到诊断数据: /var/db/diagnostics/Special, 大小: 100 字节"));
}

TEST_F(SizeScanTest, DownloadsAreTheFolderOfThatNameInTheDocuments) {
    EXPECT_EQ(d_.engine.getDownloadsSize(), 0U);
    d_.tree.file(d_.documents("Downloads/a"), 10);
    d_.tree.file(d_.documents("b"), 100);
    EXPECT_EQ(d_.engine.getDownloadsSize(), 10U);
}

TEST_F(SizeScanTest, ImageCachesAreFourNamesByTheirExactCase) {
    d_.tree.file(d_.caches("MyImageCache/a"), 1);
    d_.tree.file(d_.caches("com.hackemist.SDWebImageCache/a"), 10);
    d_.tree.file(d_.caches("KingfisherX/a"), 100);
    d_.tree.file(d_.caches("Images/a"), 1'000);
    d_.tree.file(d_.caches("imagecache/a"), 5'000'000);
    d_.tree.file(d_.caches("sdwebimage/a"), 5'000'000);
    d_.tree.file(d_.caches("images/a"), 5'000'000);
    EXPECT_EQ(d_.engine.getImageCacheSize(), 1'111U);
}

TEST_F(SizeScanTest, DatabasesAreTheTopLevelFilesWithFourExactExtensions) {
    d_.tree.file(d_.library("a.db"), 1);
    d_.tree.file(d_.library("b.sqlite"), 10);
    d_.tree.file(d_.library("c.sqlite3"), 100);
    d_.tree.file(d_.library("d.realm"), 1'000);
    d_.tree.file(d_.library("data.SQLITE"), 5'000'000);
    d_.tree.file(d_.library("a.db-wal"), 5'000'000);
    d_.tree.file(d_.library("db"), 5'000'000);
    d_.tree.file(d_.library("Sub/e.db"), 5'000'000);
    EXPECT_EQ(d_.engine.getDatabaseFilesSize(), 1'111U);
}

TEST_F(SizeScanTest, DatabasesCountThoughWhitelistedAndNotWhereUnreadable) {
    d_.tree.file(d_.library("a.db"), 1);
    d_.tree.file(d_.library("b.db"), 10);
    d_.protect(d_.library("a.db"));
    failAbout(d_.library("b.db"), {Operation::Attributes}, EIO);
    EXPECT_EQ(d_.engine.getDatabaseFilesSize(), 1U);
}

TEST_F(SizeScanTest, CrashReportsAreTwoFolders) {
    d_.tree.file(d_.library("Logs/CrashReporter/a"), 1);
    d_.tree.file(d_.library("Logs/DiagnosticReports/a"), 10);
    d_.tree.file(d_.library("Logs/other/a"), 100);
    EXPECT_EQ(d_.engine.getCrashReportsSize(), 11U);
}

TEST_F(SizeScanTest, OfflineDataAreFoldersOfThreeNamesByTheirExactCase) {
    d_.tree.file(d_.support("OfflineMaps/a"), 1);
    d_.tree.file(d_.support("my-offline/a"), 10);
    d_.tree.file(d_.support("xLocalData/a"), 100);
    d_.tree.file(d_.support("OFFLINE/a"), 5'000'000);
    d_.tree.file(d_.support("localdata/a"), 5'000'000);
    d_.tree.file(d_.support("Offline.bin"), 5'000'000);
    EXPECT_EQ(d_.engine.getOfflineDataSize(), 111U);
}

TEST_F(SizeScanTest, CustomPathsCountWhereTheyAreThereAndNotWhitelisted) {
    d_.tree.file("/var/a/x", 1);
    d_.tree.file("/var/b/x", 10);
    d_.tree.file("/var/file", 100);
    d_.protect("/var/b");
    for (const char* path : {"/var/a", "/var/b", "/var/file", "/var/missing"})
        d_.addCustomPath(path);
    EXPECT_EQ(d_.engine.getCustomPathsSize(), 1U);
}

TEST_F(SizeScanTest, RootsThatAreMissingCountNothing) {
    EXPECT_EQ(d_.scan().totalSize, 0U);
    EXPECT_THAT(lines(), IsEmpty());
}

}  // namespace
}  // namespace sweepwright
