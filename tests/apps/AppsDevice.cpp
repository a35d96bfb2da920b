#include "apps/AppsDevice.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

namespace sweepwright::test {

using platform::PropertyList;

namespace {

class FakeProxy final : public platform::ApplicationProxy {
  public:
    explicit FakeProxy(FakeApp app) : app_(std::move(app)) {}

    FakeApp::Text applicationIdentifier() override { return app_.identifier; }
    FakeApp::Text localizedName() override { return app_.name; }
    FakeApp::Text bundlePath() override { return app_.bundlePath; }
    FakeApp::Text dataContainerPath() override { return app_.dataPath; }
    FakeApp::Text iconDataForVariant(std::int32_t variant) override {
        if (variant != 10) return std::nullopt;
        return app_.icon;
    }
    platform::Result<std::vector<SizedIcon>> iconsOfAllSizes() override { return app_.sizedIcons; }

  private:
    FakeApp app_;
};

class RefusingCommands final : public platform::CommandRunner {
  public:
    std::int32_t run(const std::string& command, const std::string& /*folder*/) override {
        ADD_FAILURE() << "app cleans run no commands: " << command;
        return -1;
    }
};

platform::Result<std::optional<platform::ApplicationWorkspace::Applications>> proxiesOf(
    const FakeWorkspace::Apps& apps) {
    if (!apps) return std::unexpected(apps.error());
    if (!*apps) return std::nullopt;
    platform::ApplicationWorkspace::Applications proxies;
    for (const FakeApp& app : **apps)
        proxies.push_back(std::make_unique<FakeProxy>(app));
    return proxies;
}

platform::Image plainImage(std::uint8_t shade) {
    return {1, 1, {shade, 0, 0, 255}};
}

platform::Device openDevice(const TemporaryDevice& tree, platform::Idiom idiom) {
    platform::DeviceOptions options;
    options.rootFolder = tree.root();
    options.home = "/var/mobile";
    options.temporaryDirectory = "/var/mobile/tmp";
    options.idiom = idiom;
    return platform::Device::open(options).value();
}

}  // namespace

platform::CommandRunner& noCommands() {
    static RefusingCommands commands;
    return commands;
}

FakeApp FakeApp::named(const std::string& identifier) {
    FakeApp app;
    app.identifier = identifier;
    return app;
}

std::vector<FakeApp> appsInNumber(std::size_t count) {
    std::vector<FakeApp> apps;
    for (std::size_t i = 0; i < count; ++i)
        apps.push_back(FakeApp::named("com.example.app" + std::to_string(i)));
    return apps;
}

std::unexpected<platform::Error> raised(std::string reason) {
    return std::unexpected(platform::Error{"Exception", 1, std::move(reason)});
}

void FakeWorkspace::offer(std::vector<FakeApp> apps) {
    offered = Availability::Available;
    installed = std::move(apps);
}

platform::Result<std::optional<platform::ApplicationWorkspace::Applications>>
FakeWorkspace::allInstalledApplications() {
    return proxiesOf(installed);
}

platform::Result<std::optional<platform::ApplicationWorkspace::Applications>>
FakeWorkspace::allApplications() {
    return proxiesOf(all);
}

platform::Result<std::span<const platform::DirectoryEntry>> OrderedFileManager::readEntries(
    platform::Directory& directory, platform::EntryBuffer& buffer) {
    auto entries = ForwardingFileManager::readEntries(directory, buffer);
    if (!entries) return entries;
    std::ranges::sort(buffer.entries, {}, &platform::DirectoryEntry::name);
    return std::span<const platform::DirectoryEntry>(buffer.entries);
}

AppsDevice::AppsDevice(platform::Idiom idiom)
    : DeviceServices(openDevice(tree, idiom), files, tree.files()) {
    commands.answer([](const FakeCommandRunner::Command& command) {
        return noCommands().run(command.text, command.folder);
    });
}

std::string AppsDevice::containerPath(const std::string& name) {
    return "/var/mobile/Containers/Data/Application/" + name;
}

std::string AppsDevice::container(const std::string& name, const std::string& identifier) {
    PropertyList::Dictionary metadata;
    metadata.set("MCMMetadataIdentifier", identifier);
    const std::string path = containerPath(name);
    tree.fileWith(path + "/.com.apple.mobile_container_manager.metadata.plist",
                  PropertyList(metadata).toBinary());
    return path;
}

std::string AppsDevice::bundle(const std::string& container, const std::string& name,
                               const PropertyList& info) {
    std::string path = "/var/containers/Bundle/Application/" + container + "/" + name + ".app";
    tree.fileWith(path + "/Info.plist", info.toBinary());
    return path;
}

void AppsDevice::ownIcon(const std::string& png) {
    const std::string folder = resourceFolder.path() + "/icon";
    std::filesystem::create_directories(folder);
    std::ofstream(folder + "/icon1.png", std::ios::binary) << png;
}

AppServices AppsDevice::services(platform::FileManager& over, Eraser& with) {
    return {device,        over,    with,       workspace,     resources, appWhitelist,
            pathWhitelist, history, statistics, notifications, mainQueue, &lock};
}

ThirdPartyAppCacheManager::AppList AppsDevice::scanAll(ThirdPartyAppCacheManager& manager) {
    std::optional<ThirdPartyAppCacheManager::AppList> found;
    manager.scanAllAppsWithCompletion([&](const auto& apps) { found = apps; });
    mainQueue.runUntil([&] { return found.has_value(); });
    return *found;
}

ThirdPartyAppCacheManager::AppList AppsDevice::scanThirdParty(ThirdPartyAppCacheManager& manager) {
    std::optional<ThirdPartyAppCacheManager::AppList> found;
    manager.scanThirdPartyAppsWithCompletion([&](const auto& apps) { found = apps; });
    mainQueue.runUntil([&] { return found.has_value(); });
    return *found;
}

CleanOutcome AppsDevice::waitFor(
    const std::function<void(ThirdPartyAppCacheManager::Progress,
                             ThirdPartyAppCacheManager::Completion)>& start) {
    CleanOutcome outcome;
    bool done = false;
    start([&](const std::string& name,
              double fraction) { outcome.progress.emplace_back(name, fraction); },
          [&](bool success, std::uint64_t bytes, const std::optional<platform::Error>& error) {
              outcome.success = success;
              outcome.bytes = bytes;
              outcome.error = error;
              done = true;
          });
    mainQueue.runUntil([&] { return done; });
    return outcome;
}

CleanOutcome AppsDevice::clean(ThirdPartyAppCacheManager& manager, const std::string& identifier) {
    return waitFor([&](auto progress, auto completion) {
        manager.cleanCacheForApp(identifier, std::move(progress), std::move(completion));
    });
}

CleanOutcome AppsDevice::cleanBatch(ThirdPartyAppCacheManager& manager,
                                    const std::vector<std::string>& identifiers) {
    return waitFor([&](auto progress, auto completion) {
        manager.cleanCacheForApps(identifiers, std::move(progress), std::move(completion));
    });
}

CleanOutcome AppsDevice::cleanAll(ThirdPartyAppCacheManager& manager) {
    return waitFor([&](auto progress, auto completion) {
        manager.cleanAllThirdPartyAppCaches(std::move(progress), std::move(completion));
    });
}

std::string picture(std::uint8_t shade) {
    return platform::encodePng(plainImage(shade)).value();
}

std::string devicePicture(std::uint8_t shade) {
    return platform::encodeDevicePng(plainImage(shade)).value();
}

int shadeOf(const std::optional<AppIcon>& icon) {
    if (!icon) return -1;
    return icon->image().value().rgba.at(0);
}

std::vector<std::string> identifiersOf(const ThirdPartyAppCacheManager::AppList& apps) {
    std::vector<std::string> identifiers;
    for (const AppCacheInfo& app : apps)
        identifiers.push_back(app.bundleIdentifier.value_or("(none)"));
    return identifiers;
}

std::vector<std::string> linesWith(const std::vector<std::string>& lines, std::string_view prefix) {
    std::vector<std::string> found;
    std::ranges::copy_if(lines, std::back_inserter(found),
                         [&](const std::string& line) { return line.starts_with(prefix); });
    return found;
}

}  // namespace sweepwright::test
