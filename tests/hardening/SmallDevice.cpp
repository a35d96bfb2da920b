#include "hardening/SmallDevice.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/plist/PropertyList.h"

namespace sweepwright::test {

namespace fs = std::filesystem;

using platform::joinPath;
using platform::PropertyList;

namespace {

constexpr const char* kOwnName = "com.sweepwright.app";
constexpr const char* kShared = "/var/mobile/Library/Caches";
constexpr std::array<const char*, 3> kAppNames = {"com.example.one", "com.example.two",
                                                  "com.example.kept"};

std::string contentOf(const std::string& hostPath) {
    std::ifstream in(hostPath, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

platform::Device openDevice(const std::string& root) {
    platform::DeviceOptions options;
    options.rootFolder = root;
    options.home = SmallDevice::kHome;
    return platform::Device::open(options).value();
}

}  // namespace

std::string cleanName(int clean) {
    static constexpr std::array<const char*, kCleans> kNames = {
        "Caches",  "Temporary", "Cookies", "Logs", "Downloads", "Images",   "Databases",
        "Crashes", "Offline",   "All",     "Deep", "OneApp",    "AppBatch", "AllApps"};
    return kNames.at(static_cast<std::size_t>(clean));
}

std::string SmallDevice::home(const std::string& relative) {
    return joinPath(kHome, relative);
}

SmallDevice::SmallDevice() {
    fillHome();
    fillSystem();
    fillApps();
    kept_[outside_.path() + "/canary"] = "alive";
    storeLists();
    restore();
}

void SmallDevice::junk(const std::string& path, std::uint64_t bytes) {
    junk_[tree_.host(path)] = bytes;
}

void SmallDevice::kept(const std::string& path) {
    kept_[tree_.host(path)] = "kept: " + path;
}

void SmallDevice::keptLink(const std::string& path, const std::string& target) {
    links_[tree_.host(path)] = target;
}

void SmallDevice::keptMetadata(const std::string& container, const std::string& identifier) {
    PropertyList::Dictionary metadata;
    metadata.set("MCMMetadataIdentifier", identifier);
    kept_[tree_.host(container + "/.com.apple.mobile_container_manager.metadata.plist")] =
        PropertyList(metadata).toBinary();
}

void SmallDevice::fillHome() {
    junk(home("Library/Caches/folder/a"), 1);
    junk(home("Library/Caches/folder/deep/b"), 2);
    junk(home("Library/Caches/WebKit/c"), 4);
    junk(home("Library/Caches/Kingfisher/d"), 8);
    junk(home("Library/Caches/plain"), 16);
    kept(home("Library/Caches/.hidden"));
    kept(home("Library/Caches/data.sqlite"));
    kept(home("Library/Caches/data.sqlite-wal"));
    kept(home("Library/Caches/com.apple.Maps/tile"));
    keptLink(home("Library/Caches/leadsOut"), outside_.path());
    keptMetadata(kHome, kOwnName);
    keptLink(home("Library/Caches/leadsToTheSecret"), "../../Documents");
    junk(home("Library/Application Support/AppCache/a"), 32);
    junk(home("Library/Application Support/OfflineMaps/a"), 64);
    junk(home("Library/Application Support/LocalStorage/a"), 128);
    kept(home("Library/Application Support/Profiles/a"));
    kept(home("Library/Application Support/WhiteCache/listed/a"));
    junk(home("Library/Cookies/a"), 256);
    junk(home("Library/WebKit/a"), 512);
    junk(home("Library/Safari/LocalStorage/a"), 1'024);
    kept(home("Library/Safari/Bookmarks.plist"));
    kept(home("Library/Safari/History.db"));
    junk(home("Library/Logs/CrashReporter/a"), 2'048);
    junk(home("Library/Logs/a.log"), 4'096);
    junk(home("Library/left.sqlite-wal"), 8'192);
    kept(home("Library/main.sqlite"));
    kept(home("Library/main.sqlite-wal"));  // changed just now
    junk(home("Documents/Downloads/a"), 16'384);
    kept(home("Documents/photo"));
    kept(home("Documents/secret/diary"));
    junk(home("tmp/a/b"), 32'768);
    keptLink(home("tmp/leadsToTheSecret"), "../Documents/secret");
    kept(home("Library/Preferences/com.example.other.plist"));
}

void SmallDevice::fillSystem() {
    const std::string shared = kShared;
    junk(shared + "/com.apple.springboard/a", 1 << 16);
    junk(shared + "/com.apple.mobilesafari/a", 1 << 17);
    junk("/var/mobile/Library/Safari/WebKitCache/a", 1 << 18);
    junk("/var/MobileAsset/AssetsV2/folder/a", 1 << 19);
    junk("/var/db/uuidtext/a", 1 << 20);
    junk("/var/db/diagnostics/Persist/a", 1 << 21);
    junk(shared + "/SomeCache/a", 1 << 22);
    junk("/var/mobile/Media/Custom/a", 1 << 23);
    kept(shared + "/com.apple.Maps/tile");
    kept(shared + "/MappedImageCache/tile");
    kept(shared + "/GeoServices/tile");
    kept(shared + "/SweepwrightCache/own");
    kept(shared + "/Unrelated/file");
    kept(shared + "/com.apple.white/listed");
    kept(shared + "/LinkedCache/listed");  // protected by the name of a link to it
    keptLink("/var/alias", "mobile/Library/Caches");
    kept("/var/mobile/Media/DCIM/photo");
    kept("/var/mobile/Media/Other/listed/file");
    kept("/var/db/other");
}

void SmallDevice::fillApps() {
    for (const char* name : kAppNames) {
        const std::string container = joinPath(kApps, std::string("UUID-") + name);
        keptMetadata(container, name);
        kept(container + "/Documents/letter");
        kept(container + "/Library/Preferences/settings.plist");
        kept(container + "/Library/Caches/listed/file");
        const bool spared = std::string(name).ends_with("kept");
        for (const char* file : {"Library/Caches/a/b", "tmp/c", "Library/WebKit/d"}) {
            if (spared) {
                kept(joinPath(container, file));
            } else {
                junk(joinPath(container, file), 1 << 10);
            }
        }
    }
}

void SmallDevice::storeLists() {
    restore();
    Worker worker(tree_);
    for (const std::string& path :
         {home("Library/Application Support/WhiteCache/listed"),
          std::string(kShared) + "/com.apple.white", std::string("/var/alias/LinkedCache"),
          std::string("/var/mobile/Media/Other/listed")})
        EXPECT_TRUE(worker.pathWhitelist.addPathToWhitelist(path));
    for (const char* name : kAppNames)
        EXPECT_TRUE(worker.pathWhitelist.addPathToWhitelist(
            joinPath(kApps, std::string("UUID-") + name + "/Library/Caches/listed")));
    EXPECT_TRUE(worker.appWhitelist.addAppToWhitelist(kAppNames[2]));
    EXPECT_TRUE(worker.appWhitelist.addAppToWhitelist(kOwnName));
    EXPECT_TRUE(worker.customPaths.addCustomPath("/var/mobile/Media/Custom"));
    EXPECT_TRUE(worker.customPaths.addCustomPath("/var/mobile/Media/Other"));
    EXPECT_TRUE(worker.history.saveCleanHistoryWithType(CleanType::Cache, 7, "before"));
    defaultsAtFirst_ = contentOf(tree_.host(worker.device.userDefaultsFile()));
}

void SmallDevice::restore() {
    for (const auto& [path, bytes] : junk_) {
        struct stat status{};
        if (lstat(path.c_str(), &status) == 0) continue;
        fs::create_directories(fs::path(path).parent_path());
        const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
        EXPECT_EQ(ftruncate(file, static_cast<off_t>(bytes)), 0) << path;
        close(file);
    }
    for (const auto& [path, content] : kept_) {
        if (fs::exists(path)) continue;
        fs::create_directories(fs::path(path).parent_path());
        std::ofstream(path, std::ios::binary) << content;
    }
    for (const auto& [path, target] : links_)
        if (!fs::is_symlink(path)) fs::create_symlink(target, path);
    if (!defaultsAtFirst_.empty())
        std::ofstream(tree_.host(home("Library/Preferences/com.sweepwright.app.plist")),
                      std::ios::binary)
            << defaultsAtFirst_;
}

std::string SmallDevice::damage() const {
    std::string text;
    for (const auto& [path, content] : kept_)
        if (contentOf(path) != content) text += "lost: " + path + "\n";
    for (const auto& [path, target] : links_) {
        std::error_code none;
        if (fs::read_symlink(path, none) != target) text += "lost link: " + path + "\n";
    }
    return text;
}

std::uint64_t SmallDevice::bytesGone() const {
    std::uint64_t bytes = 0;
    for (const auto& [path, size] : junk_)
        if (access(path.c_str(), F_OK) != 0) bytes += size;
    return bytes;
}

std::uint64_t SmallDevice::bytesAtFirst() const {
    std::uint64_t bytes = 0;
    for (const auto& [path, size] : junk_)
        bytes += size;
    return bytes;
}

Worker::Worker(TemporaryDevice& tree, std::set<Operation> watched)
    : Worker(tree.root(), tree.files(), std::move(watched)) {}

Worker::Worker(const std::string& root, platform::FileManager& target, std::set<Operation> watched)
    : WatchedCalls{FaultyFileManager(target, std::move(watched))},
      DeviceServices(openDevice(root), files, files),
      resources(root) {}

void Worker::start(int which, const FileCleanerEngine::Completion& completion) {
    switch (which) {
        case kDeep:
            return engine.deepCleanWithCompletion(completion);
        case kOneApp:
            return apps.cleanCacheForApp(kAppNames[0], {}, completion);
        case kAppBatch:
            return apps.cleanCacheForApps({kAppNames[0], kAppNames[1]}, {}, completion);
        case kAllApps:
            return apps.cleanAllThirdPartyAppCaches({}, completion);
        default:
            engine.cleanWithType(static_cast<CleanType>(which), {}, completion);
    }
}

Worker::Outcome Worker::clean(int which) {
    std::optional<Outcome> outcome;
    start(which, [&](bool success, std::uint64_t bytes, const auto& error) {
        outcome = Outcome{success, bytes, error};
    });
    mainQueue.runUntil([&] { return outcome.has_value(); });
    return *outcome;
}

}  // namespace sweepwright::test
