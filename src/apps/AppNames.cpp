#include "apps/AppNames.h"

#include <algorithm>
#include <array>

#include "apps/ContainerIndex.h"
#include "apps/HiddenRoots.h"
#include "engine/CategoryRules.h"

namespace sweepwright {

namespace {

constexpr std::array<std::string_view, 4> kContainerFolders = {
    kDataContainers, "/var/mobile/Containers/Data/PluginKitPlugin", kAppGroups,
    rules::kInstalledBundles};

/// The container that `path` is or lies in; empty when there is none.
std::string containerOf(std::string_view path) {
    // "/var" leads to "/private/var".
    if (path.starts_with("/private/var/")) path.remove_prefix(std::string_view("/private").size());
    for (const std::string_view folder : kContainerFolders) {
        if (!path.starts_with(folder) || path.size() <= folder.size() + 1) continue;
        if (path[folder.size()] != '/') continue;
        return std::string(path.substr(0, path.find('/', folder.size() + 1)));
    }
    return {};
}

}  // namespace

AppNames::AppNames(const platform::Device& device, platform::FileManager& files) : files_(files) {
    // Most of what is shown is the cleaner's own, and its name needs no look at all the others.
    owners_.emplace(device.homeDirectory(), rules::kProductName);
}

AppNames& AppNames::sharedNames() {
    static AppNames names(platform::Device::current(), platform::FileManager::defaultManager());
    return names;
}

std::string AppNames::nameOf(const std::string& identifier) {
    for (const BundleInfo& bundle : bundles().find(identifier))
        if (const auto name = bundle.shownName()) return *name;
    return identifier;
}

std::optional<std::string> AppNames::ownerOf(std::string_view path) {
    const std::string container = containerOf(path);
    if (container.empty()) return std::nullopt;
    const auto known = owners_.find(container);
    if (known != owners_.end()) return known->second;
    auto name = container.starts_with(rules::kInstalledBundles) ? nameOfBundleIn(container)
                                                                : nameOfDataIn(container);
    return owners_.emplace(container, std::move(name)).first->second;
}

std::optional<std::string> AppNames::nameOfBundleIn(const std::string& container) {
    const auto names = files_.contentsOfDirectory(container);
    if (!names) return std::nullopt;
    const auto app =
        std::ranges::find_if(*names, [](const auto& name) { return name.ends_with(".app"); });
    if (app == names->end()) return std::nullopt;
    const auto bundle = readBundleInfo(files_, platform::joinPath(container, *app));
    const auto name = bundle ? bundle->shownName() : std::nullopt;
    return name.value_or(app->substr(0, app->size() - std::string_view(".app").size()));
}

/// A container that does not say whose it is goes by its folder's name, which is a UUID unless an
/// app has that identifier.
std::optional<std::string> AppNames::nameOfDataIn(const std::string& container) {
    const std::string identifier = containerIdentifier(files_, container);
    std::string name = nameOf(identifier);
    if (name == platform::lastPathComponent(container)) return std::nullopt;
    return name;
}

const BundleIndex& AppNames::bundles() {
    if (!bundles_) bundles_.emplace(files_);
    return *bundles_;
}

}  // namespace sweepwright
