#include "RandomDevice.h"

#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <ostream>

#include <rapidcheck.h>

namespace sweepwright {

namespace {

namespace fs = std::filesystem;
using Kind = RandomDevice::Step::Kind;
using test::EngineDevice;

/// Places that some category looks at, and some that none does.
const std::vector<std::string>& places() {
    static const std::vector<std::string> all = [] {
        std::vector<std::string> at = {
            "/var/mobile/Library/Caches/com.apple.springboard",
            "/var/mobile/Library/Caches/com.apple.cache_delete",
            "/var/mobile/Library/Caches/com.apple.mobilesafari",
            "/var/mobile/Library/Caches/com.apple.news",
            "/var/mobile/Library/Caches/com.apple.MapsExtra",
            "/var/mobile/Library/Caches/com.apple.Maps",
            "/var/mobile/Library/Caches/com.Sweepwright.cache",
            "/var/mobile/Library/Caches/SomeCache",
            "/var/mobile/Library/Caches/other",
            "/var/mobile/Library/Safari",
            "/var/mobile/Library/Safari/WebKitCache",
            "/var/mobile/Library/Safari/fsCachedData",
            "/var/MobileAsset/AssetsV2",
            "/var/db/uuidtext",
            "/var/db/diagnostics/Persist",
            "/var/db/diagnostics/Signpost",
            "/var/db/diagnostics/Special",
            "/var/mine",
            "/var/mine/sub",
            "/var/elsewhere",
        };
        for (const char* relative : {"Library",
                                     "Library/Caches",
                                     "Library/Caches/Kingfisher",
                                     "Library/Caches/WebKit",
                                     "Library/Caches/com.apple.Maps",
                                     "Library/Application Support/MyCache",
                                     "Library/Application Support/OfflineMaps",
                                     "Library/Application Support/IndexedDB",
                                     "Library/Application Support/tmp-cookies",
                                     "Library/Cookies",
                                     "Library/WebKit",
                                     "Library/Safari",
                                     "Library/Safari/MyCache",
                                     "Library/Safari/Bookmarks.plist",
                                     "Library/Logs",
                                     "Library/Logs/CrashReporter",
                                     "Library/Logs/DiagnosticReports",
                                     "Documents/Downloads",
                                     "Documents",
                                     "tmp",
                                     "tmp/sub"})
            at.push_back(std::string(EngineDevice::kHome) + "/" + relative);
        return at;
    }();
    return all;
}

std::string anyPlace() {
    return *rc::gen::elementOf(places());
}

std::string anyName() {
    return *rc::gen::element<std::string>("a", "b", "c.tmp", ".hidden", ".folder/a", "x.db",
                                          "x.db-wal", "y-shm", "z.db-journal", "History.db-wal",
                                          "sub/a", "sub/.hidden", "sub/x.sqlite", "sub/deep/a",
                                          "ImageCache/a", "Cookies/a", "it's", "empty/");
}

RandomDevice::Step anyStep() {
    RandomDevice::Step step;
    const std::string path = anyPlace() + "/" + anyName();
    switch (*rc::gen::inRange(0, 20)) {
        case 0:
            return {.kind = Kind::Link, .path = path, .target = anyPlace()};
        case 1:
            return {.kind = Kind::Link, .path = anyPlace(), .target = anyPlace()};
        case 2:
            return {.kind = Kind::Protect, .path = path};
        case 3:
            return {.kind = Kind::Protect, .path = "/alias" + anyPlace().substr(4)};
        case 4:
            return {.kind = Kind::CustomPath, .path = anyPlace()};
        case 5:
            return {.kind = Kind::CustomPath, .path = "/alias/mine"};
        default:
            step.path = path;
            step.kind = path.ends_with('/') ? Kind::Folder : Kind::File;
            step.bytes = *rc::gen::inRange<std::uint64_t>(0, 5'000);
            step.age = *rc::gen::element(0, 1, 299, 300, 3'600);
            return step;
    }
}

/// Steps that do not fit what is there already are left out, the same each time.
void apply(const RandomDevice::Step& step, EngineDevice& device) {
    const fs::path at = device.tree.host(step.path);
    std::error_code failed;
    if (step.kind == Kind::Protect) return device.protect(step.path);
    if (step.kind == Kind::CustomPath) return device.addCustomPath(step.path);
    if (fs::exists(fs::symlink_status(at, failed))) return;
    if (step.kind == Kind::Folder) {
        fs::create_directories(at, failed);
        return;
    }
    fs::create_directories(at.parent_path(), failed);
    if (failed) return;
    if (step.kind == Kind::Link) {
        fs::create_symlink(step.target, at, failed);
        return;
    }
    std::ofstream(at).close();
    fs::resize_file(at, step.bytes, failed);
    static_cast<void>(device.tree.files().setModificationDate(
        step.path, device.time - std::chrono::seconds(step.age)));
}

}  // namespace

std::unique_ptr<test::EngineDevice> RandomDevice::build() const {
    auto device = std::make_unique<EngineDevice>();
    device->time = std::chrono::system_clock::time_point(std::chrono::seconds(1'700'000'000));
    device->tree.link("/alias", "var");
    for (const Step& step : steps)
        apply(step, *device);
    return device;
}

RandomDevice RandomDevice::generate() {
    RandomDevice device;
    const int count = *rc::gen::inRange(5, 60);
    for (int i = 0; i < count; ++i)
        device.steps.push_back(anyStep());
    return device;
}

void showValue(const RandomDevice& device, std::ostream& out) {
    constexpr std::array kNames = {"file", "folder", "link", "protect", "custom path"};
    for (const auto& step : device.steps)
        out << kNames.at(static_cast<std::size_t>(step.kind)) << " " << step.path << " "
            << step.target << " " << step.bytes << " bytes, " << step.age << " s\n";
}

}  // namespace sweepwright
