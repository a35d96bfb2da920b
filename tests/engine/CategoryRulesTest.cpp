#include <initializer_list>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "engine/CategoryRules.h"
#include "engine/FileCleanerEngine.h"

namespace sweepwright::rules {
namespace {

using Names = std::initializer_list<std::string_view>;

void expect(bool (*rule)(std::string_view), Names yes, Names no) {
    for (const std::string_view name : yes)
        EXPECT_TRUE(rule(name)) << name;
    for (const std::string_view name : no)
        EXPECT_FALSE(rule(name)) << name;
}

TEST(CategoryRules, TemporaryDataIsKnownByThreeWordsInAnyCase) {
    expect(isTemporaryData, {"cache", "MyCaches", "TMP", "x.tmp", "Temp", "Template", "attempt"},
           {"", "Library", "t-m-p", "cach"});
}

TEST(CategoryRules, SharedCachesAreKnownByABeginningAndTwoWordsInTheirCase) {
    expect(isSharedCache, {"com.apple.", "com.apple.news", "a-cache-b", "MyCache"},
           {"com.apple", "COM.APPLE.x", "xcom.apple.y", "CACHE", "cAche", ""});
}

TEST(CategoryRules, WebCachesAreKnownByFourWordsInAnyCase) {
    expect(isWebCache, {"WebKit", "com.apple.WebKit.x", "WEBSITE", "myCookies"},
           {"web", "IndexedDB", "LocalStorage", ""});
}

TEST(CategoryRules, WebDataIsKnownByFiveWordsInAnyCase) {
    expect(isWebData, {"WebKit", "website", "COOKIE", "LocalStorage", "IndexedDB"},
           {"local-storage", "indexed", "Safari", ""});
}

TEST(CategoryRules, OfSafariDataBookmarksHistoryAndSettingsAreNone) {
    expect(isSafariData,
           {"MyCache", "WEBKIT", "LocalStorage", "Cookies", "WebSites", "fsCachedData", "x-wal",
            "x-shm", "CacheSettings.plist", "xcache.plist", "WebKit.PLIST", "History.db-wal",
            "Bookmarks.plist-cache"},
           {"Bookmarks.plist", "bookmarks.plist", "BOOKMARKS.PLIST", "History.plist", "history.db",
            "HISTORY.DB", "WebKit.plist", "cookies.plist", "x-WAL", "x-SHM", "Cookie", "Data.PLIST",
            "Tabs"});
}

TEST(CategoryRules, ImageCachesAreKnownByFourWordsInTheirCase) {
    expect(isImageCache, {"ImageCache", "xImageCachex", "SDWebImage", "Kingfisher", "Images"},
           {"imagecache", "Imagecache", "sdwebimage", "kingfisher", "images", "Image", ""});
}

TEST(CategoryRules, DatabasesAreKnownByFourExactExtensions) {
    expect(isDatabase, {"a.db", "a.sqlite", "a.sqlite3", "a.realm", "a.b.db"},
           {"a.DB", "a.SQLITE", "db", ".db", "a.db-wal", "a.db.", "adb", "a.sqlite4", ""});
}

TEST(CategoryRules, SideFilesAreKnownByThreeEndings) {
    expect(isDatabaseSideFile, {"a-wal", "-wal", "a.db-shm", "a.db-journal"},
           {"a-WAL", "a.sqlite-journal", "a-journal", "a-wal.txt", "awal", ""});
}

TEST(CategoryRules, OfflineDataIsKnownByThreeWordsInTheirCase) {
    expect(isOfflineData, {"Offline", "my-offline-x", "LocalData", "xLocalData"},
           {"OFFLINE", "OffLine", "localdata", "Localdata", ""});
}

TEST(CategoryRules, SystemPathsAreKnownByTheirBeginningAlone) {
    expect(
        isSystemPath,
        {"/var/db/diagnostics/", "/var/db/diagnostics/Persist",
         "/var/mobile/Library/Caches/com.apple.", "/var/mobile/Library/Caches/com.apple.x/y",
         "/var/mobile/Library/Safari/", "/var/mobile/Library/Safari/WebKitCache",
         "/var/MobileAsset/", "/var/MobileAsset/AssetsV2", "/var/db/uuidtext", "/var/db/uuidtextX",
         "/var/db/uuidtext/a"},
        {"/var/db/diagnostics", "/var/mobile/Library/Caches/com.apple",
         "/var/mobile/Library/Caches/com.other", "/var/mobile/Library/Safari", "/var/MobileAsset",
         "/var/db/uuidtex", "/VAR/db/uuidtext", "/private/var/db/uuidtext", "var/db/uuidtext", ""});
}

TEST(CategoryRules, MapsIsKnownByTwoWordsAnywhereInAPath) {
    expect(isMapsAppPath,
           {"com.apple.Maps", "/a/com.apple.Maps", "/a/com.apple.Maps/b", "/a/com.apple.MapsX",
            "/a/xMappedImageCachex/b"},
           {"/a/com.apple.maps", "/a/mappedimagecache", "/a/Maps", "/a/GeoServices", ""});
}

TEST(CategoryRules, ADatabaseOrItsSideFileIsKnownByItsLastComponent) {
    expect(isSQLiteDatabaseFile,
           {"/a/x.db", "/a/X.DB", "/a/x.SQLite", "/a/x.sqlite3", "/a/x.Realm", "/a/x-wal",
            "/a/x-shm", "/a/x.db-wal", "/a/x.db-shm", "/a/x.db-journal", "/a/x.sqlite-wal",
            "/a/x.sqlite-shm", "/a/x.sqlite-journal", "/a/x.sqlite3-wal", "/a/x.sqlite3-shm",
            "/a/x.sqlite3-journal", "/a/-wal"},
           {"/a/x-WAL", "/a/x.db-JOURNAL", "/a/x-journal", "/a/x.realm-journal", "/a/db", "/a/.db",
            "/a.db/x", "/a-wal/x", "/a/x.db2", "/a/x.dbx", ""});
}

TEST(CategoryRules, TheEngineAnswersByTheseRules) {
    EXPECT_TRUE(FileCleanerEngine::isSystemPath("/var/db/uuidtextX"));
    EXPECT_FALSE(FileCleanerEngine::isSystemPath("/var/db/diagnostics"));
    EXPECT_TRUE(FileCleanerEngine::isMapsAppPath("/a/com.apple.Maps"));
    EXPECT_FALSE(FileCleanerEngine::isMapsAppPath("/a/b"));
    EXPECT_TRUE(FileCleanerEngine::isSQLiteDatabaseFile("/a/x.db"));
    EXPECT_FALSE(FileCleanerEngine::isSQLiteDatabaseFile("/a/x"));
}

}  // namespace
}  // namespace sweepwright::rules
