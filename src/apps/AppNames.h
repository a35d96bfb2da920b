#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "apps/BundleIndex.h"
#include "platform/device/Device.h"
#include "platform/files/FileManager.h"

namespace sweepwright {

/// Tells people the names of apps where the device has UUIDs and identifiers. Reads what it is
/// asked for and remembers it, so it shows the device as it was then. Synchronous, on one thread.
class AppNames {
  public:
    /// `files` must outlive this.
    AppNames(const platform::Device& device, platform::FileManager& files);

    /// The process's one, made on first use for Device::current().
    static AppNames& sharedNames();

    /// The name of an installed app; the identifier itself of one that is not or has none.
    std::string nameOf(const std::string& identifier);
    /// The name of the app, plug-in or app group whose container `path` is or lies in; none when
    /// there is no such container or it does not tell.
    std::optional<std::string> ownerOf(std::string_view path);

  private:
    std::optional<std::string> nameOfBundleIn(const std::string& container);
    std::optional<std::string> nameOfDataIn(const std::string& container);
    const BundleIndex& bundles();

    platform::FileManager& files_;
    std::optional<BundleIndex> bundles_;                                  // read when it is needed
    std::unordered_map<std::string, std::optional<std::string>> owners_;  // by container
};

}  // namespace sweepwright
