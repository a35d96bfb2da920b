#include <cerrno>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/image/Image.h"
#include "platform/plist/PropertyList.h"
#include "sample/ForwardingFileMaker.h"
#include "sample/SampleDevice.h"
#include "sample/internal/SampleDeviceBuilder.h"
#include "sample/internal/SampleDeviceCatalog.h"
#include "support/TemporaryDevice.h"

namespace sweepwright::sample {
namespace {

namespace fs = std::filesystem;
using platform::FileType;
using platform::LastLink;
using platform::PropertyList;

const std::chrono::system_clock::time_point kNow{std::chrono::seconds(1'800'000'000)};
const std::string kHome =
    "/var/mobile/Containers/Data/Application/" + sampleUuid("data com.sweepwright.app");

using Names = std::vector<std::string>;

struct FoundFile {
    std::uint64_t bytes = 0;
    std::int64_t modified = 0;  ///< seconds since 1970
    std::string target;         ///< of a link
    bool operator==(const FoundFile&) const = default;
};

/// Every file and link beneath `root` by its path there.
std::map<std::string, FoundFile> filesIn(const std::string& root) {
    std::map<std::string, FoundFile> found;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        struct stat status{};
        EXPECT_EQ(lstat(entry.path().c_str(), &status), 0);
        if (S_ISDIR(status.st_mode)) continue;
        FoundFile& file = found[entry.path().string().substr(root.size())];
        if (S_ISLNK(status.st_mode))
            file.target = fs::read_symlink(entry.path()).string();
        else
            file = {static_cast<std::uint64_t>(status.st_size), status.st_mtime, ""};
    }
    return found;
}

/// One sample device, made once, that no test changes.
class SampleDeviceTest : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        folder_ = std::make_unique<test::TemporaryFolder>();
        const auto made = makeSampleDevice(root(), 1, kNow);
        ASSERT_TRUE(made) << made.error().description;
        summary_ = *made;
        files_ =
            std::make_unique<platform::HostFileManager>(platform::DeviceRoot::open(root()).value());
    }
    static void TearDownTestSuite() {
        files_.reset();
        folder_.reset();
    }

    static std::string root() { return folder_->path() + "/device"; }
    static platform::FileManager& files() { return *files_; }
    static const SampleDeviceSummary& summary() { return summary_; }

    /// Names of the files of any kind beneath `path`, to any depth; links not followed.
    static std::size_t countBeneath(const std::string& path) {
        std::size_t count = 0;
        for (const std::string& name : files().contentsOfDirectory(path).value_or(Names{})) {
            const std::string child = platform::joinPath(path, name);
            const auto found = files().attributes(child, LastLink::Refuse);
            count += found && found->type == FileType::Directory ? countBeneath(child) : 1;
        }
        return count;
    }

    static PropertyList::Dictionary readList(const std::string& path) {
        const auto bytes = files().readFile(path, 1U << 20U);
        EXPECT_TRUE(bytes) << path;
        const auto list = PropertyList::parse(bytes.value_or(""));
        EXPECT_TRUE(list && list->dictionary() != nullptr) << path;
        return list && list->dictionary() != nullptr ? *list->dictionary()
                                                     : PropertyList::Dictionary{};
    }

    static std::string text(const PropertyList::Dictionary& list, std::string_view key) {
        const PropertyList* value = list.find(key);
        return value != nullptr && value->string() != nullptr ? *value->string() : "(none)";
    }

    /// The Info.plist of each bundle by identifier, and where the bundle is.
    static std::map<std::string, std::pair<PropertyList::Dictionary, std::string>> bundles() {
        std::map<std::string, std::pair<PropertyList::Dictionary, std::string>> found;
        const std::string all = "/var/containers/Bundle/Application";
        for (const std::string& uuid : files().contentsOfDirectory(all).value_or(Names{})) {
            const std::string container = platform::joinPath(all, uuid);
            for (const std::string& name :
                 files().contentsOfDirectory(container).value_or(Names{})) {
                const std::string bundle = platform::joinPath(container, name);
                auto info = readList(bundle + "/Info.plist");
                std::string identifier = text(info, "CFBundleIdentifier");
                found[std::move(identifier)] = {std::move(info), bundle};
            }
        }
        return found;
    }

  private:
    static inline std::unique_ptr<test::TemporaryFolder> folder_;
    static inline std::unique_ptr<platform::HostFileManager> files_;
    static inline SampleDeviceSummary summary_;
};

TEST_F(SampleDeviceTest, SummaryTellsWhatIsThere) {
    SampleDeviceSummary counted;
    for (const auto& [path, file] : filesIn(root())) {
        if (!file.target.empty()) continue;
        ++counted.files;
        counted.bytes += file.bytes;
    }
    EXPECT_EQ(counted.files, summary().files);
    EXPECT_EQ(counted.bytes, summary().bytes);
}

TEST_F(SampleDeviceTest, IsLargeToLookAtAndSmallOnTheDisk) {
    EXPECT_GE(summary().files, 2500U);
    EXPECT_LE(summary().files, 3500U);
    EXPECT_GE(summary().bytes, std::uint64_t{1800} << 20U);
    EXPECT_LE(summary().bytes, std::uint64_t{2600} << 20U);

    std::uint64_t onDisk = 0;
    for (const auto& entry : fs::recursive_directory_iterator(root())) {
        struct stat status{};
        EXPECT_EQ(lstat(entry.path().c_str(), &status), 0);
        onDisk += static_cast<std::uint64_t>(status.st_blocks) * 512;
    }
    EXPECT_LE(onDisk, std::uint64_t{16} << 20U);
}

TEST_F(SampleDeviceTest, IsTheSameEachTime) {
    const test::TemporaryFolder other;
    ASSERT_TRUE(makeSampleDevice(other.path() + "/again", 1, kNow));
    EXPECT_EQ(filesIn(root()), filesIn(other.path() + "/again"));
}

TEST_F(SampleDeviceTest, AgesAreCountedBackFromNow) {
    const test::TemporaryFolder other;
    const std::chrono::hours later(1000);
    ASSERT_TRUE(makeSampleDevice(other.path(), 1, kNow + later));
    const auto then = filesIn(other.path());
    for (const auto& [path, file] : filesIn(root())) {
        if (!file.target.empty()) continue;
        ASSERT_EQ(then.at(path).modified - file.modified, 1000 * 3600) << path;
        ASSERT_LT(file.modified, 1'800'000'000) << path;
    }
}

TEST_F(SampleDeviceTest, VarIsALinkAsOnADevice) {
    EXPECT_EQ(fs::read_symlink(root() + "/var"), "private/var");
    EXPECT_TRUE(files().isDirectory("/var/mobile/Library"));
}

TEST_F(SampleDeviceTest, TheCleanersOwnContainerIsNamedByItsMetadata) {
    const auto metadata = readList(kHome + "/.com.apple.mobile_container_manager.metadata.plist");
    EXPECT_EQ(text(metadata, "MCMMetadataIdentifier"), "com.sweepwright.app");
}

struct Place {
    const char* category;
    std::string path;
};

TEST_F(SampleDeviceTest, EveryPlaceOfEveryCategoryHoldsFiles) {
    const std::string caches = kHome + "/Library/Caches/";
    const std::string support = kHome + "/Library/Application Support/";
    const std::string shared = "/var/mobile/Library/Caches/";
    const std::vector<Place> places = {
        {"caches", caches + "com.sweepwright.app"},
        {"caches", support + "ResponseCache"},
        {"caches", support + "upload-tmp"},
        {"caches", shared + "com.apple.mobilesafari"},
        {"caches", "/var/mobile/Library/Safari/WebKitCache"},
        {"caches", "/var/mobile/Library/Safari/fsCachedData"},
        {"caches", shared + "com.apple.springboard"},
        {"caches", shared + "com.apple.cache_delete"},
        {"caches", "/var/MobileAsset/AssetsV2"},
        {"caches", "/var/db/uuidtext"},
        {"caches", shared + "com.apple.itunesstored"},
        {"caches", shared + "FontCache"},
        {"caches", shared + "voicecache"},
        {"caches, own", shared + "SweepwrightCache"},
        {"caches, unnamed", shared + "Snapshots"},
        {"protected", shared + "com.apple.Maps"},
        {"protected", shared + "MappedImageCache"},
        {"protected", shared + "GeoServices"},
        {"temp", kHome + "/tmp"},
        {"cookies", kHome + "/Library/Cookies"},
        {"cookies", kHome + "/Library/WebKit"},
        {"cookies", caches + "WebKit"},
        {"cookies", caches + "com.apple.WebKit.WebContent"},
        {"cookies", caches + "website-snapshots"},
        {"cookies", caches + "CookieJar"},
        {"cookies", support + "WebsiteData"},
        {"cookies", support + "LocalStorage"},
        {"cookies", kHome + "/Library/Safari/WebKitCache"},
        {"cookies", kHome + "/Library/Safari/Favicon Cache"},
        {"cookies", kHome + "/Library/Safari/fsCachedData"},
        {"logs", kHome + "/Library/Logs"},
        {"logs", "/var/db/diagnostics/Persist"},
        {"logs", "/var/db/diagnostics/Signpost"},
        {"logs", "/var/db/diagnostics/Special"},
        {"downloads", kHome + "/Documents/Downloads"},
        {"images", caches + "ImageCache"},
        {"images", caches + "com.hackemist.SDWebImageCache.default"},
        {"images", caches + "com.onevcat.Kingfisher.ImageCache.default"},
        {"images", caches + "Images"},
        {"crash reports", kHome + "/Library/Logs/CrashReporter"},
        {"crash reports", kHome + "/Library/Logs/DiagnosticReports"},
        {"offline", support + "OfflineMaps"},
        {"offline", support + "offline-articles"},
        {"offline", support + "LocalData"},
        {"custom", "/var/mobile/Media/Downloads/Old exports"},
    };
    for (const Place& place : places)
        EXPECT_GT(countBeneath(place.path), 0U) << place.category << ": " << place.path;
}

TEST_F(SampleDeviceTest, DatabasesHaveSideFilesOfAllAges) {
    const auto ageOf = [](const std::string& name) {
        const auto found = files().attributes(kHome + "/Library/" + name, LastLink::Refuse);
        EXPECT_TRUE(found) << name;
        return found ? kNow - found->modificationDate : std::chrono::seconds(-1);
    };
    EXPECT_LT(ageOf("Ledger.db-wal"), std::chrono::seconds(60));
    EXPECT_LT(ageOf("Ledger.db-shm"), std::chrono::seconds(300));
    EXPECT_GE(ageOf("Search.sqlite-wal"), std::chrono::seconds(300));
    EXPECT_GE(ageOf("Notes.sqlite3-wal"), std::chrono::hours(24));
    EXPECT_LT(ageOf("Forgotten.db-wal"), std::chrono::seconds(300));
    EXPECT_FALSE(files().fileExists(kHome + "/Library/Forgotten.db"));
    EXPECT_TRUE(files().fileExists(kHome + "/Library/Ledger.db"));
    EXPECT_TRUE(files().fileExists(kHome + "/Library/Sync.db-journal"));
    EXPECT_TRUE(files().fileExists(kHome + "/Library/Objects.realm"));
}

TEST_F(SampleDeviceTest, LinksLeadInCirclesAndElsewhereButNotOutOfTheDevice) {
    EXPECT_EQ(files().resolvedPath(kHome + "/tmp/outside").value_or(""), "/private/etc");
    EXPECT_EQ(files().resolvedPath(kHome + "/tmp/ping").error().code, ELOOP);
    const auto around = files().resolvedPath(kHome + "/tmp/mirror/back");
    ASSERT_TRUE(around);
    EXPECT_EQ(*around, "/private" + kHome + "/tmp");
}

TEST_F(SampleDeviceTest, AppsAreNamedInManyWays) {
    const auto all = bundles();
    EXPECT_GE(all.size(), 40U);
    std::size_t ofTheDevice = 0;
    for (const auto& [identifier, bundle] : all)
        if (identifier.starts_with("com.apple.")) ++ofTheDevice;
    EXPECT_GE(ofTheDevice, 8U);
    EXPECT_EQ(text(all.at("cn.qingyun.video").first, "CFBundleDisplayName"), "青云视频");
    EXPECT_EQ(text(all.at("jp.hondana.manga").first, "CFBundleDisplayName"), "マンガ棚");
    EXPECT_EQ(text(all.at("ae.souqna.market").first, "CFBundleDisplayName"), "سوقنا اليوم");
    EXPECT_EQ(text(all.at("com.confetti.party").first, "CFBundleDisplayName"), "🎉 Confetti 🎈");
    EXPECT_EQ(text(all.at("com.bobsdeals.coupons").first, "CFBundleDisplayName"),
              "Bob's \"Best\" Deals & <More>");
    EXPECT_EQ(text(all.at("com.hearthside.ledger").first, "CFBundleDisplayName"), "(none)");
    EXPECT_EQ(text(all.at("com.hearthside.ledger").first, "CFBundleName"), "Ledger");
    EXPECT_EQ(text(all.at("net.nameless.tool").first, "CFBundleName"), "(none)");
}

TEST_F(SampleDeviceTest, BundlesAreBinaryAndXml) {
    std::set<std::string> beginnings;
    for (const auto& [identifier, bundle] : bundles()) {
        const auto bytes = files().readFile(bundle.second + "/Info.plist", 1U << 20U);
        ASSERT_TRUE(bytes) << bundle.second;
        beginnings.insert(bytes->substr(0, 5));
    }
    EXPECT_EQ(beginnings, (std::set<std::string>{"bplis", "<?xml"}));
}

TEST_F(SampleDeviceTest, ContainersComeWithAndWithoutMetadataAndBundles) {
    const std::string all = "/var/mobile/Containers/Data/Application";
    const auto installed = bundles();
    std::set<std::string> identifiers;
    std::size_t unexplained = 0;
    const auto containers = files().contentsOfDirectory(all);
    ASSERT_TRUE(containers);
    for (const std::string& uuid : *containers) {
        const std::string metadata =
            all + "/" + uuid + "/.com.apple.mobile_container_manager.metadata.plist";
        if (!files().fileExists(metadata)) {
            ++unexplained;
            continue;
        }
        identifiers.insert(text(readList(metadata), "MCMMetadataIdentifier"));
    }
    EXPECT_EQ(unexplained, 1U);
    EXPECT_TRUE(identifiers.contains("com.goneapp.leftover"));
    EXPECT_FALSE(installed.contains("com.goneapp.leftover"));
    EXPECT_TRUE(installed.contains("com.neverstarted.app"));
    EXPECT_FALSE(identifiers.contains("com.neverstarted.app"));
    EXPECT_TRUE(files().isDirectory(all + "/com.plainname.app/Library/Caches"));
}

TEST_F(SampleDeviceTest, TheHiddenRootHoldsCachesOfItsOwnAndOfOneApp) {
    const std::string root = "/var/mobile/Containers/Shared/AppGroup/.jbroot-4F1D8C0A92B7E365";
    EXPECT_GT(countBeneath(root + "/var/mobile/Library/Caches"), 0U);
    EXPECT_GT(countBeneath(root + "/var/tmp"), 0U);
    EXPECT_GT(countBeneath(root + "/com.lanternreader.app.data/mobile/Library/Caches"), 0U);
    EXPECT_GT(countBeneath(root + "/basebin"), 0U);
}

TEST_F(SampleDeviceTest, IconsAreStoredInEveryWayThatBundlesKnow) {
    const auto all = bundles();
    const auto picture = [&](const std::string& identifier, const std::string& name) {
        const auto bytes = files().readFile(all.at(identifier).second + "/" + name, 1U << 20U);
        EXPECT_TRUE(bytes) << identifier << " " << name;
        return platform::decode(bytes.value_or(""));
    };
    const auto device = picture("cn.qingyun.video", "AppIcon60x60@3x.png");
    ASSERT_TRUE(device) << device.error().description;
    EXPECT_EQ(device->width, 180U);
    EXPECT_TRUE(picture("cn.qingyun.video", "AppIcon60x60@2x.png"));
    EXPECT_TRUE(picture("com.lanternreader.app", "Icon-60@2x.png"));
    EXPECT_TRUE(picture("fr.brulee.cafe", "Brulee.png"));
    EXPECT_TRUE(picture("io.marginalia.notes", "Marginalia.PNG"));
    EXPECT_TRUE(picture("com.tidewatch.surf", "Icon-60@2x.png"));
    EXPECT_FALSE(picture("com.bobsdeals.coupons", "AppIcon60x60@2x.png"));
}

TEST_F(SampleDeviceTest, ScaleMultipliesFilesAndKeepsThoseOfTheSmallDevice) {
    const test::TemporaryFolder other;
    const auto made = makeSampleDevice(other.path(), 3, kNow);
    ASSERT_TRUE(made) << made.error().description;
    EXPECT_GT(made->files, summary().files * 5 / 2);
    EXPECT_LT(made->files, summary().files * 3);
    const auto large = filesIn(other.path());
    for (const auto& [path, file] : filesIn(root())) {
        const auto found = large.find(path);
        ASSERT_NE(found, large.end()) << path;
        if (path.find("/Documents/document-") == std::string::npos) continue;
        EXPECT_EQ(found->second, file) << path;
    }
}

TEST(SampleDevice, AFolderWithAnythingInItIsRefusedInOneLine) {
    const test::TemporaryFolder folder;
    std::ofstream(folder.path() + "/.mine") << "mine";
    const auto made = makeSampleDevice(folder.path(), 1, kNow);
    ASSERT_FALSE(made);
    EXPECT_EQ(made.error().code, ENOTEMPTY);
    EXPECT_EQ(made.error().description,
              "can't make a sample device: " + folder.path() + ": Directory not empty");
    EXPECT_EQ(filesIn(folder.path()).size(), 1U);
}

TEST(SampleDevice, ScaleZeroIsRefused) {
    const test::TemporaryFolder folder;
    EXPECT_EQ(makeSampleDevice(folder.path() + "/new", 0, kNow).error().code, EINVAL);
    EXPECT_FALSE(fs::exists(folder.path() + "/new"));
}

/// Fails every call that makes something from the n-th on.
class FullDisk final : public test::ForwardingFileMaker {
  public:
    FullDisk(platform::FileMaker& target, int calls) : ForwardingFileMaker(target), left_(calls) {}

    platform::Result<> createSparseFile(const std::string& path, std::uint64_t size) override {
        if (left_-- <= 0) return std::unexpected(platform::errorFromErrno(ENOSPC, path));
        return ForwardingFileMaker::createSparseFile(path, size);
    }

  private:
    int left_;
};

TEST(SampleDevice, BuildingStopsAtTheFirstErrorAndNamesIt) {
    test::TemporaryDevice device;
    FullDisk disk(device.files(), 100);
    const auto made = SampleDeviceBuilder(disk, 1, kNow).build();
    ASSERT_FALSE(made);
    EXPECT_EQ(made.error().code, ENOSPC);
    std::size_t regular = 0;
    for (const auto& [path, file] : filesIn(device.root()))
        if (file.target.empty()) ++regular;
    EXPECT_EQ(regular, 100U);
}

}  // namespace
}  // namespace sweepwright::sample
