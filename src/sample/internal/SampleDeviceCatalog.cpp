// The places of the sample device; its apps are in SampleAppsCatalog.cpp.
#include "sample/internal/SampleDeviceCatalog.h"

#include <array>

namespace sweepwright::sample::catalog {

namespace {

constexpr std::uint64_t kKiB = 1024;
constexpr std::uint64_t kMiB = 1024 * kKiB;
constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;

#define CACHES "/var/mobile/Library/Caches/"

// clang-format off
constexpr auto kHeaps = std::to_array<Heap>({
    // folder, name, files, average KiB, oldest days

    // The cleaner's own container: what the nine categories look at.
    {"{home}/Library/Caches/com.sweepwright.app/fsCachedData", "{uuid}", 60, 210, 40},
    {"{home}/Library/Caches/thumbnails", "{hash}.thumb", 45, 48, 90},
    {"{home}/Library/Caches/com.hackemist.SDWebImageCache.default", "{hash}.jpg", 40, 150, 60},
    {"{home}/Library/Caches/ImageCache", "{hash}.webp", 30, 95, 60},
    {"{home}/Library/Caches/com.onevcat.Kingfisher.ImageCache.default", "{hash}", 25, 120, 45},
    {"{home}/Library/Caches/Images/covers", "cover-{n}.heic", 15, 310, 120},
    {"{home}/Library/Caches/WebKit/NetworkCache/Version 17/Blobs", "{hash}", 30, 64, 20},
    {"{home}/Library/Caches/com.apple.WebKit.WebContent", "{hash}.data", 12, 80, 20},
    {"{home}/Library/Caches/website-snapshots", "page-{n}.png", 12, 220, 30},
    {"{home}/Library/Caches/CookieJar", "jar-{n}.binarycookies", 4, 6, 15},
    {"{home}/Library/Caches/.hidden-cache", "{hash}", 8, 128, 60},
    {"{home}/Library/Application Support/ResponseCache", "{uuid}.response", 20, 90, 30},
    {"{home}/Library/Application Support/upload-tmp", "part-{n}.tmp", 10, 512, 5},
    {"{home}/Library/Application Support/Templates", "template-{n}.json", 6, 12, 300},
    {"{home}/Library/Application Support/WebsiteData/IndexedDB", "{hash}.blob", 10, 140, 60},
    {"{home}/Library/Application Support/LocalStorage", "https_site{n}_0.localstorage", 8, 40, 60},
    {"{home}/Library/Application Support/OfflineMaps/tiles", "tile-{n}.pbf", 40, 420, 150},
    {"{home}/Library/Application Support/offline-articles", "article-{n}.html", 20, 60, 90},
    {"{home}/Library/Application Support/LocalData", "segment-{n}.bin", 8, 900, 200},
    {"{home}/Library/Application Support/Accounts", "account-{n}.plist", 3, 4, 300},
    {"{home}/Library/Cookies", "Cookies-{n}.binarycookies", 3, 14, 10},
    {"{home}/Library/WebKit/WebsiteData/LocalStorage", "https_shop{n}_0.localstorage", 10, 36, 60},
    {"{home}/Library/WebKit/WebsiteData/ResourceLoadStatistics", "observations-{n}", 4, 70, 60},
    {"{home}/Library/Safari/WebKitCache", "{hash}", 14, 75, 30},
    {"{home}/Library/Safari/Favicon Cache", "{hash}.png", 20, 8, 90},
    {"{home}/Library/Safari/LocalStorage", "https_news{n}_0.localstorage", 6, 30, 60},
    {"{home}/Library/Safari/fsCachedData", "{uuid}", 10, 180, 30},
    {"{home}/Library/Safari/Touch Icons", "{hash}.png", 8, 20, 200},
    {"{home}/Library/Logs", "sync-{n}.log", 12, 180, 30},
    {"{home}/Library/Logs/CrashReporter", "Sweepwright-{n}.ips", 12, 64, 60},
    {"{home}/Library/Logs/DiagnosticReports", "Sweepwright-{n}.diag", 8, 240, 60},
    {"{home}/Documents/Downloads", "download-{n}.bin", 10, 3100, 60},
    {"{home}/Documents/Scans", "scan-{n}.pdf", 8, 900, 400},
    {"{home}/tmp", "CFNetworkDownload_{hash}.tmp", 24, 640, 3},
    {"{home}/tmp/com.sweepwright.app.exports", "export-{n}.csv", 6, 90, 10},

    // Safari, system caches, assets.
    {CACHES "com.apple.mobilesafari/fsCachedData", "{uuid}", 40, 150, 30},
    {CACHES "com.apple.mobilesafari/WebKitCache", "{hash}", 30, 90, 30},
    {"/var/mobile/Library/Safari/WebKitCache/Version 17/Blobs", "{hash}", 40, 110, 30},
    {"/var/mobile/Library/Safari/fsCachedData", "{uuid}", 25, 160, 30},
    {CACHES "com.apple.springboard/Snapshots", "{uuid}.ktx", 30, 420, 14},
    {CACHES "com.apple.cache_delete", "purge-{n}.plist", 8, 22, 14},
    {CACHES "com.apple.WebKit.Networking/NetworkCache", "{hash}", 24, 60, 30},
    {CACHES "com.apple.itunesstored", "{hash}.artwork", 20, 130, 60},
    {CACHES "com.apple.nsurlsessiond/Downloads", "CFNetworkDownload_{hash}.tmp", 8, 1800, 10},
    {CACHES "FontCache", "atlas-{n}.bin", 6, 340, 200},
    {CACHES "voicecache", "phrase-{n}.caf", 12, 45, 100},
    {CACHES "SweepwrightCache", "{hash}", 6, 60, 20},
    {CACHES "Snapshots", "{uuid}.ktx", 10, 300, 30},
    {CACHES ".metadata", "{hash}", 4, 16, 30},
    // The Maps caches, which nothing counts or cleans.
    {CACHES "com.apple.Maps/tiles", "{hash}.tile", 30, 80, 60},
    {CACHES "MappedImageCache", "{hash}.mapped", 20, 140, 60},
    {CACHES "GeoServices/Resources", "{hash}.pack", 14, 210, 60},
    {"/var/MobileAsset/AssetsV2/com_apple_MobileAsset_Font7", "{hash}.asset", 18, 2300, 200},
    {"/var/MobileAsset/AssetsV2/com_apple_MobileAsset_VoiceServices_VoiceResources", "{hash}.asset", 8, 3100, 200},
    {"/var/MobileAsset/AssetsV2/com_apple_MobileAsset_LinguisticData", "{hash}.asset", 10, 1400, 200},
    {"/var/db/uuidtext/3F", "{hash}", 20, 90, 60},
    {"/var/db/uuidtext/A7", "{hash}", 20, 90, 60},
    {"/var/db/uuidtext/dsc", "{hash}", 3, 2600, 60},
    {"/var/db/diagnostics/Persist", "000000000000{n}.tracev3", 20, 1024, 14},
    {"/var/db/diagnostics/Signpost", "000000000000{n}.tracev3", 12, 640, 7},
    {"/var/db/diagnostics/Special", "000000000000{n}.tracev3", 14, 760, 30},
    {"/var/db/diagnostics/timesync", "000000000000{n}.timesync", 4, 8, 30},

    // What people keep.
    {"/var/mobile/Media/DCIM/100APPLE", "IMG_{n}.HEIC", 70, 2400, 700},
    {"/var/mobile/Media/DCIM/101APPLE", "IMG_{n}.MOV", 6, 9000, 300},
    {"/var/mobile/Media/Downloads/Old exports", "export-{n}.zip", 12, 2600, 500},
    {"/var/mobile/Media/Recordings", "memo-{n}.m4a", 10, 700, 400},
    {"/var/mobile/Library/SMS/Attachments", "{uuid}.jpeg", 20, 380, 500},

    // App groups; the hidden one is the relocated root of a rootless system.
    {"/var/mobile/Containers/Shared/AppGroup/{uuid}/Library/Caches", "{hash}", 12, 90, 60},
    {"/var/mobile/Containers/Shared/AppGroup/.jbroot-4F1D8C0A92B7E365/var/mobile/Library/Caches/com.example.manager", "{hash}.deb", 6, 160, 60},
    {"/var/mobile/Containers/Shared/AppGroup/.jbroot-4F1D8C0A92B7E365/var/tmp", "build-{n}.tmp", 4, 48, 10},
    {"/var/mobile/Containers/Shared/AppGroup/.jbroot-4F1D8C0A92B7E365/var/mobile/Documents", "note-{n}.txt", 3, 4, 100},
    {"/var/mobile/Containers/Shared/AppGroup/.jbroot-4F1D8C0A92B7E365/com.lanternreader.app.data/mobile/Library/Caches", "{hash}", 10, 220, 60},
    {"/var/mobile/Containers/Shared/AppGroup/.jbroot-4F1D8C0A92B7E365/com.lanternreader.app.data/tmp", "{hash}", 4, 110, 10},
    {"/var/mobile/Containers/Shared/AppGroup/.jbroot-4F1D8C0A92B7E365/basebin", "helper-{n}", 4, 260, 300},
});

constexpr auto kSingles = std::to_array<Single>({
    // Databases and side files of all ages, at the top of the library: the side files that a clean
    // takes are those whose database is gone or that nobody wrote for five minutes.
    {"{home}/Library/Ledger.db", 4 * kMiB, 5},
    {"{home}/Library/Ledger.db-wal", 900 * kKiB, 5},
    {"{home}/Library/Ledger.db-shm", 32 * kKiB, 4 * kMinute},
    {"{home}/Library/Search.sqlite", 11 * kMiB, 6 * kMinute},
    {"{home}/Library/Search.sqlite-wal", 2 * kMiB, 6 * kMinute},
    {"{home}/Library/Search.sqlite-shm", 33 * kKiB, 6 * kMinute},
    {"{home}/Library/Notes.sqlite3", 7 * kMiB, 2 * kDay},
    {"{home}/Library/Notes.sqlite3-wal", 1200 * kKiB, 2 * kDay},
    {"{home}/Library/Objects.realm", 5 * kMiB, kHour},
    {"{home}/Library/Sync.db", 640 * kKiB, 30},
    {"{home}/Library/Sync.db-journal", 70 * kKiB, 30},
    {"{home}/Library/Forgotten.db-wal", 1500 * kKiB, 20},
    {"{home}/Library/Archive.SQLITE", 3 * kMiB, 90 * kDay},

    {"{home}/Library/Caches/com.sweepwright.app/Cache.db", 6 * kMiB, kMinute},
    {"{home}/Library/Caches/com.sweepwright.app/Cache.db-wal", 820 * kKiB, kMinute},
    {"{home}/Library/Caches/com.sweepwright.app/Cache.db-shm", 34 * kKiB, kMinute},
    {"{home}/Library/Caches/.keep", 12, 200 * kDay},
    {"{home}/Library/Safari/Bookmarks.plist", 48 * kKiB, 3 * kDay},
    {"{home}/Library/Safari/History.plist", 22 * kKiB, kHour},
    {"{home}/Library/Safari/History.db", 2 * kMiB, kHour},
    {"{home}/Library/Safari/History.db-wal", 410 * kKiB, kHour},
    {"{home}/Library/Safari/CacheSettings.plist", 3 * kKiB, 40 * kDay},
    {"{home}/Library/Application Support/Offline.bin", 5 * kMiB, 40 * kDay},
    {"{home}/Documents/Downloads/Summer film.mp4", 54 * kMiB, 12 * kDay},
    {"{home}/Documents/Downloads/Summer film (1).mp4", 54 * kMiB, 11 * kDay},
    {"{home}/Documents/Downloads/.partial", 4 * kMiB, kHour},
    // Names that trip what is careless with them.
    {"{home}/tmp/-rf", 18 * kKiB, kDay},
    {"{home}/tmp/it's \"here\".tmp", 26 * kKiB, kDay},
    {"{home}/tmp/临时 文件.dat", 31 * kKiB, kDay},
    {"{home}/tmp/two\nlines.tmp", 9 * kKiB, kDay},
    {"{home}/tmp/not utf-8 \xff\xfe.tmp", 10 * kKiB, kDay},

    {"/var/mobile/Library/Safari/Bookmarks.db", 1400 * kKiB, 3 * kDay},
    {"/var/mobile/Library/Safari/History.db", 9 * kMiB, kHour},
    {"/var/mobile/Library/Safari/History.db-wal", 1100 * kKiB, kHour},
    {"/var/mobile/Library/Safari/History.db-shm", 32 * kKiB, kHour},
    {CACHES "com.apple.itunesstored/Cache.db", 2 * kMiB, kHour},
    {"/var/mobile/Library/SMS/sms.db", 26 * kMiB, kMinute},
    {"/var/mobile/Library/AddressBook/AddressBook.sqlitedb", 3 * kMiB, 9 * kDay},
    {"/var/mobile/Library/CallHistoryDB/CallHistory.storedata", 1 * kMiB, kHour},
    {"/var/mobile/Library/Preferences/com.apple.springboard.plist", 41 * kKiB, kHour},
});

constexpr auto kTexts = std::to_array<Text>({
    {"/private/etc/hosts", "127.0.0.1\tlocalhost\n::1\tlocalhost\n"},
    {"/private/etc/passwd", "root:*:0:0:System Administrator:/var/root:/bin/sh\nmobile:*:501:501:Mobile User:/var/mobile:/bin/sh\n"},
    {"{home}/Documents/Read me.txt", "This device is made up. Clean it as often as you like.\n"},
});

constexpr auto kLinks = std::to_array<Link>({
    {"/etc", "private/etc"},
    {"/tmp", "private/var/tmp"},
    {"{home}/tmp/outside", "/etc"},
    {"{home}/tmp/mirror/back", ".."},
    {"{home}/tmp/ping", "pong"},
    {"{home}/tmp/pong", "ping"},
    {"{home}/Library/Application Support/cache-elsewhere", "/var/mobile/Media/DCIM"},
    {CACHES "com.apple.springboard/current", "Snapshots"},
});

constexpr auto kEmptyFolders = std::to_array<std::string_view>({
    "{home}/Library/Preferences",
    "{home}/Library/Caches/empty",
    "/var/tmp",
    "/var/root",
    "/var/mobile/Containers/Shared/AppGroup/.jbroot-4F1D8C0A92B7E365/usr/bin",
});
// clang-format on

#undef CACHES

}  // namespace

std::span<const Heap> heaps() {
    return kHeaps;
}
std::span<const Single> singles() {
    return kSingles;
}
std::span<const Text> texts() {
    return kTexts;
}
std::span<const Link> links() {
    return kLinks;
}
std::span<const std::string_view> emptyFolders() {
    return kEmptyFolders;
}

}  // namespace sweepwright::sample::catalog
