#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "engine/StorageAnalyzer.h"
#include "platform/files/ForwardingFileManager.h"
#include "support/TemporaryDevice.h"
#include "ui/presentation/ScreenServices.h"

namespace sweepwright::test {

/// Puts all that a sample device holds into `device`, in place of what it held.
void fillWithSampleDevice(TemporaryDevice& device);

/// A data container of an app with caches of `bytes` bytes, as the directory walk finds it; its
/// device path.
std::string addApp(TemporaryDevice& device, const std::string& bundleIdentifier,
                   const std::string& name, std::uint64_t bytes);

/// A volume that is as full as a test wants it, beneath the device's own files.
class VolumeFiles final : public platform::ForwardingFileManager {
  public:
    explicit VolumeFiles(platform::FileManager& target) : ForwardingFileManager(target) {}

    /// None: the volume does not tell.
    std::optional<platform::FileSystemAttributes> volume;

    platform::Result<std::optional<platform::FileSystemAttributes>> fileSystemAttributes(
        const std::string& /*path*/) override {
        return volume;
    }
};

/// `services` with another storage analyzer.
ui::ScreenServices withStorage(const ui::ScreenServices& services, StorageAnalyzer& storage);

}  // namespace sweepwright::test
