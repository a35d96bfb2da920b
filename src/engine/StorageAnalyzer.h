#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/device/Device.h"
#include "platform/files/FileManager.h"
#include "platform/tree/TreeWalker.h"

namespace sweepwright {

/// How full the volume of the home directory is. Spaces are bytes, percentages 0 to 100.
struct DeviceStorageInfo {
    std::uint64_t totalSpace = 0;
    std::uint64_t freeSpace = 0;
    std::uint64_t availableSpace = 0;  ///< free space less the reserve
    std::uint64_t usedSpace = 0;       ///< total less free
    std::uint64_t userUsedSpace = 0;   ///< total less available
    std::uint64_t purgeableSpace = 0;  ///< the reserve
    double usagePercentage = 0;        ///< used of total
    double userUsagePercentage = 0;    ///< user-used of total
    std::string totalSpaceFormatted;
    std::string freeSpaceFormatted;
    std::string availableSpaceFormatted;
    std::string usedSpaceFormatted;
    std::string userUsedSpaceFormatted;
};

/// Size of a top folder of the home directory.
struct FolderUsage {
    std::uint64_t size = 0;  ///< bytes
    std::string formatted;
};

/// A large file of the home directory.
struct SizedFile {
    std::string path;
    std::string name;
    std::uint64_t size = 0;  ///< bytes
    std::string formatted;
};

/// Tells how full the device is and owns the one byte formatter. Keeps no state; synchronous, on
/// any thread.
class StorageAnalyzer {
  public:
    /// Share of the volume that is held back from what a user can use.
    static constexpr double kReserveShare = 0.05;
    /// What is left to the user of a volume whose free space is below the reserve.
    static constexpr double kTightShare = 0.9;

    StorageAnalyzer(const platform::Device& device, platform::FileManager& files);

    /// The process's one analyzer, made on first use for Device::current().
    static StorageAnalyzer& sharedAnalyzer();

    /// `bytes` as a text with units of 1024 that are written B, KB, MB, GB: "1023 B", "1.5 KB",
    /// "2.00 GB", "128.0 GB".
    [[nodiscard]] static std::string formatBytes(std::uint64_t bytes);
    /// The same with units of 1000.
    [[nodiscard]] static std::string formatBytesDecimal(std::uint64_t bytes);

    /// The figures of the volume that holds the home directory; when they can't be had, plainer
    /// ones of "/"; none when those can't be had either or the volume does not tell.
    std::optional<DeviceStorageInfo> getDeviceStorageInfo();

    /// Sizes of "Documents", "Library" and "tmp" in the home directory, in that order.
    /// What can't be read counts 0 and is told.
    std::vector<std::pair<std::string, FolderUsage>> analyzeDirectoryUsage(
        const platform::UnreadableHandler& onUnreadable = {});

    /// Visible files of the home directory of at least `minSize` bytes, largest first.
    std::vector<SizedFile> getLargeFiles(std::uint64_t minSize);
    /// Appends those beneath `directory` to `results`, in listing order.
    void findLargeFilesInDirectory(const std::string& directory, std::uint64_t minSize,
                                   std::vector<SizedFile>& results,
                                   int maxDepth = platform::kDefaultMaxDepth);

    /// Bytes of visible files beneath `path`; no whitelist is asked, links are not followed.
    std::uint64_t sizeOfDirectoryAtPath(const std::string& path,
                                        int maxDepth = platform::kDefaultMaxDepth,
                                        const platform::UnreadableHandler& onUnreadable = {});

  private:
    const platform::Device& device_;
    platform::FileManager& files_;
    platform::TreeWalker walker_;
};

}  // namespace sweepwright
