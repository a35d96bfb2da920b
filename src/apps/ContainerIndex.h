#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/files/FileManager.h"

namespace sweepwright {

/// One folder a data container, named by a UUID.
inline constexpr std::string_view kDataContainers = "/var/mobile/Containers/Data/Application";

/// The bundle identifier that a data container's metadata names, else the container's own name.
std::string containerIdentifier(platform::FileManager& files, const std::string& container);
/// The same for who must not mistake one app for another: an error when metadata is there that
/// can't be read.
platform::Result<std::string> ownerOfContainer(platform::FileManager& files,
                                               const std::string& container);

/// Finds data containers by their identifier. What was found is remembered and checked again before
/// it is handed out. Thread-safe.
class ContainerIndex {
  public:
    explicit ContainerIndex(platform::FileManager& files) : files_(files) {}

    /// Device path of the container of `identifier`, the first in listing order; none when there is
    /// none.
    std::optional<std::string> find(const std::string& identifier);

  private:
    void readAll();
    platform::FileManager& files_;
    std::mutex mutex_;
    std::unordered_map<std::string, std::string> paths_;
};

}  // namespace sweepwright
