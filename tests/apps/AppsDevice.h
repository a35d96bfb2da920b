#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/files/ForwardingFileManager.h"
#include "platform/plist/PropertyList.h"
#include "support/TemporaryDevice.h"
#include "support/engine/DeviceServices.h"

namespace sweepwright::test {

inline constexpr auto kApp = "com.example.a";
/// A folder of hidden apps' data among the shared groups.
inline constexpr auto kRoot = "/var/mobile/Containers/Shared/AppGroup/.jbroot-1";

/// What the workspace service tells of an app.
struct FakeApp {
    using Text = platform::Result<std::optional<std::string>>;
    using SizedIcons = std::vector<platform::ApplicationProxy::SizedIcon>;

    Text identifier = std::nullopt;
    Text name = std::nullopt;
    Text bundlePath = std::nullopt;
    Text dataPath = std::nullopt;
    Text icon = std::nullopt;  ///< of variant 10
    platform::Result<SizedIcons> sizedIcons = SizedIcons{};

    static FakeApp named(const std::string& identifier);
};

/// Apps "com.example.app0" and so on, of which the service tells no more.
std::vector<FakeApp> appsInNumber(std::size_t count);

/// An exception of the service.
std::unexpected<platform::Error> raised(std::string reason);

/// A workspace service with the apps put into it.
class FakeWorkspace final : public platform::ApplicationWorkspace {
  public:
    using Apps = platform::Result<std::optional<std::vector<FakeApp>>>;

    Availability offered = Availability::ClassMissing;
    Apps installed = std::nullopt;
    Apps all = std::nullopt;

    /// Makes the service available with these apps.
    void offer(std::vector<FakeApp> apps);

    Availability availability() override { return offered; }
    platform::Result<std::optional<Applications>> allInstalledApplications() override;
    platform::Result<std::optional<Applications>> allApplications() override;
};

/// Lists directories by name, so that "the first in listing order" is known. Up to a few hundred
/// entries a directory.
class OrderedFileManager final : public platform::ForwardingFileManager {
  public:
    explicit OrderedFileManager(platform::FileManager& target) : ForwardingFileManager(target) {}
    platform::Result<std::span<const platform::DirectoryEntry>> readEntries(
        platform::Directory& directory, platform::EntryBuffer& buffer) override;
};

/// A runner that fails the test: app cleans run no commands.
platform::CommandRunner& noCommands();

/// How a clean ended and what it told on its way.
struct CleanOutcome {
    bool success = false;
    std::uint64_t bytes = 0;
    std::optional<platform::Error> error;
    std::vector<std::pair<std::string, double>> progress;
};

/// A device's tree, read in order.
struct OrderedTree {
    TemporaryDevice tree;
    OrderedFileManager files{tree.files()};
};

/// A device with apps, in a temporary folder, and all that an app manager works with.
class AppsDevice : public OrderedTree, public DeviceServices {
  public:
    explicit AppsDevice(platform::Idiom idiom = platform::Idiom::Phone);

    /// A data container with metadata that names `identifier`; its path.
    std::string container(const std::string& name, const std::string& identifier);
    /// A ".app" directory "<container>/<name>.app" with this Info.plist; its path.
    std::string bundle(const std::string& container, const std::string& name,
                       const platform::PropertyList& info);
    /// The product's own icon.
    void ownIcon(const std::string& png);
    static std::string containerPath(const std::string& name);

    /// What an app manager over `files`, which removes for good through them, works with.
    AppServices services(platform::FileManager& files, Eraser& eraser);
    AppServices services() { return services(files, deviceEraser); }

    /// Starts and waits, running the main queue.
    ThirdPartyAppCacheManager::AppList scanAll(ThirdPartyAppCacheManager& manager);
    ThirdPartyAppCacheManager::AppList scanThirdParty(ThirdPartyAppCacheManager& manager);
    CleanOutcome clean(ThirdPartyAppCacheManager& manager, const std::string& identifier);
    CleanOutcome cleanBatch(ThirdPartyAppCacheManager& manager,
                            const std::vector<std::string>& identifiers);
    CleanOutcome cleanAll(ThirdPartyAppCacheManager& manager);

    TemporaryFolder resourceFolder;
    FakeWorkspace workspace;
    platform::ResourceBundle resources{resourceFolder.path()};

  private:
    CleanOutcome waitFor(const std::function<void(ThirdPartyAppCacheManager::Progress,
                                                  ThirdPartyAppCacheManager::Completion)>& start);
};

/// A PNG of one colour; the shades tell pictures apart.
std::string picture(std::uint8_t shade);
/// The same in the device's own variant.
std::string devicePicture(std::uint8_t shade);
/// The shade of an icon's picture; -1 for no icon.
int shadeOf(const std::optional<AppIcon>& icon);

/// The identifiers of apps, in order.
std::vector<std::string> identifiersOf(const ThirdPartyAppCacheManager::AppList& apps);

/// The lines of a log that begin with `prefix`.
std::vector<std::string> linesWith(const std::vector<std::string>& lines, std::string_view prefix);

}  // namespace sweepwright::test
