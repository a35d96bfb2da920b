#include "platform/device/Device.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "platform/files/HostFileManager.h"
#include "platform/plist/PropertyList.h"

#ifdef __APPLE__
#include <TargetConditionals.h>
#endif

namespace sweepwright::platform {

namespace {

constexpr std::string_view kBundleIdentifier = "com.sweepwright.app";
constexpr const char* kDataContainers = "/var/mobile/Containers/Data/Application";
constexpr std::string_view kContainerMetadata =
    ".com.apple.mobile_container_manager.metadata.plist";
constexpr std::size_t kMaxMetadataBytes = std::size_t{1} << 20U;
constexpr const char* kDefaultHome = "/var/mobile";
constexpr std::string_view kPrivate = "/private";

std::optional<Device>& currentDevice() {
    static std::optional<Device> device;
    return device;
}

Error optionError(std::string_view what, std::string_view path, std::string_view why) {
    return {std::string(kDeviceOptionsErrorDomain), 1,
            std::string(what) + " \"" + std::string(path) + "\": " + std::string(why)};
}

/// Whether the container `folder` belongs to this app.
bool isOwnContainer(FileManager& files, const std::string& folder) {
    const auto bytes = files.readFile(joinPath(folder, kContainerMetadata), kMaxMetadataBytes);
    if (!bytes) return false;
    const auto list = PropertyList::parse(*bytes);
    if (!list || list->dictionary() == nullptr) return false;
    const PropertyList* identifier = list->dictionary()->find("MCMMetadataIdentifier");
    return identifier != nullptr && identifier->string() != nullptr &&
           *identifier->string() == kBundleIdentifier;
}

/// Whether the tree has what every device has; an error tells why it can't be taken for one.
Result<> requireDeviceTree(FileManager& files, const std::string& rootFolder) {
    for (const char* path : {"/var/mobile", "/private/var/mobile"}) {
        const auto found = files.attributes(path, LastLink::Follow);
        if (found && found->type == FileType::Directory) return {};
        const bool absent = found || found.error().isNotFound() || found.error().isNotDirectory();
        if (!absent) return std::unexpected(found.error());
    }
    return std::unexpected(
        Error{std::string(kPosixErrorDomain), ENODEV,
              rootFolder + ": is no device, since it has neither /var/mobile nor "
                           "/private/var/mobile; name the folder that is the device's \"/\", or "
                           "say with --home where the app lives"});
}

std::string findHome(FileManager& files) {
    const auto names = files.contentsOfDirectory(kDataContainers);
    if (names) {
        for (const std::string& name : *names) {
            std::string folder = joinPath(kDataContainers, name);
            if (isOwnContainer(files, folder)) return folder;
        }
    }
    return kDefaultHome;
}

/// `path` with single "/" only and none at its end; refuses what could name the whole device or
/// escape the comparison with protected paths.
Result<std::string> cleanPath(std::string_view what, std::string_view path) {
    if (path.empty() || path.front() != '/') {
        return std::unexpected(optionError(what, path, "must be an absolute device path"));
    }
    std::string clean;
    std::size_t start = 0;
    while (start < path.size()) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        const std::string_view component = path.substr(start, end - start);
        if (component == "." || component == "..") {
            return std::unexpected(optionError(what, path, "may hold no \".\" and \"..\""));
        }
        if (!component.empty()) clean.append("/").append(component);
        start = end + 1;
    }
    if (clean.empty()) {
        return std::unexpected(optionError(what, path, "may not be the whole device"));
    }
    return clean;
}

Result<std::string> devicePath(FileManager& files, std::string_view what, std::string_view path) {
    auto clean = cleanPath(what, path);
    if (!clean || !clean->starts_with("/private/var/")) return clean;
    const auto var = files.resolvedPath("/var");
    if (var && *var == "/private/var") clean->erase(0, kPrivate.size());
    return clean;
}

}  // namespace

bool runsOnDevice() {
#if defined(TARGET_OS_IPHONE) && TARGET_OS_IPHONE
    return true;
#else
    return false;
#endif
}

Result<Device> Device::open(const DeviceOptions& options) {
    auto root = DeviceRoot::open(options.rootFolder);
    if (!root) return std::unexpected(std::move(root.error()));
    HostFileManager files(*root);

    Device device;
    device.root_ = std::move(*root);
    if (options.home) {
        auto home = devicePath(files, "home directory", *options.home);
        if (!home) return std::unexpected(std::move(home.error()));
        device.home_ = std::move(*home);
    } else {
        auto usable = requireDeviceTree(files, options.rootFolder);
        if (!usable) return std::unexpected(std::move(usable.error()));
        device.home_ = findHome(files);
    }
    auto temporary = devicePath(files, "temporary directory",
                                options.temporaryDirectory.value_or(device.home_ + "/tmp"));
    if (!temporary) return std::unexpected(std::move(temporary.error()));
    device.temporary_ = std::move(*temporary);
    device.idiom_ = options.idiom.value_or(Idiom::Phone);
    device.osVersion_ = options.osVersion.value_or(OperatingSystemVersion{});
    device.preferredLanguages_ = options.preferredLanguages;
    return device;
}

const Device& Device::current() {
    if (!currentDevice()) {
        std::fputs("sweepwright: the device was asked for before it was set\n", stderr);
        std::abort();
    }
    return *currentDevice();
}

void Device::setCurrent(Device device) {
    static std::optional<HostFileManager> files;
    files.emplace(device.root());
    FileManager::setDefaultManager(*files);
    currentDevice() = std::move(device);
}

}  // namespace sweepwright::platform
