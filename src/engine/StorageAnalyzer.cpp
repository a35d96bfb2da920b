#include "engine/StorageAnalyzer.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "platform/files/EntryNames.h"
#include "platform/log/Log.h"

namespace sweepwright {

using platform::FileType;
using platform::LastLink;
using platform::log;

namespace {

std::string formatInUnitsOf(std::uint64_t unit, std::uint64_t bytes) {
    const auto in = [bytes](std::uint64_t divisor) {
        return static_cast<double>(bytes) / static_cast<double>(divisor);
    };
    if (bytes < unit) return fmt::format("{} B", bytes);
    if (bytes < unit * unit) return fmt::format("{:.1f} KB", in(unit));
    if (bytes < unit * unit * unit) return fmt::format("{:.2f} MB", in(unit * unit));
    const double giga = in(unit * unit * unit);
    return giga >= 100.0 ? fmt::format("{:.1f} GB", giga) : fmt::format("{:.2f} GB", giga);
}

double percentageOf(std::uint64_t part, std::uint64_t total) {
    return total == 0 ? 0 : static_cast<double>(part) / static_cast<double>(total) * 100;
}

std::uint64_t shareOf(std::uint64_t bytes, double share) {
    return static_cast<std::uint64_t>(static_cast<double>(bytes) * share);
}

DeviceStorageInfo makeInfo(const platform::FileSystemAttributes& volume, std::uint64_t available,
                           std::uint64_t reserve) {
    DeviceStorageInfo info;
    info.totalSpace = volume.size;
    info.freeSpace = volume.freeSize;
    info.availableSpace = available;
    info.usedSpace = volume.size - volume.freeSize;
    info.userUsedSpace = volume.size - available;
    info.purgeableSpace = reserve;
    info.usagePercentage = percentageOf(info.usedSpace, volume.size);
    info.userUsagePercentage = percentageOf(info.userUsedSpace, volume.size);
    info.totalSpaceFormatted = StorageAnalyzer::formatBytes(info.totalSpace);
    info.freeSpaceFormatted = StorageAnalyzer::formatBytes(info.freeSpace);
    info.availableSpaceFormatted = StorageAnalyzer::formatBytes(info.availableSpace);
    info.usedSpaceFormatted = StorageAnalyzer::formatBytes(info.usedSpace);
    info.userUsedSpaceFormatted = StorageAnalyzer::formatBytes(info.userUsedSpace);
    return info;
}

}  // namespace

StorageAnalyzer::StorageAnalyzer(const platform::Device& device, platform::FileManager& files)
    : device_(device), files_(files), walker_(files) {}

StorageAnalyzer& StorageAnalyzer::sharedAnalyzer() {
    static StorageAnalyzer analyzer(platform::Device::current(),
                                    platform::FileManager::defaultManager());
    return analyzer;
}

std::string StorageAnalyzer::formatBytes(std::uint64_t bytes) {
    return formatInUnitsOf(1024, bytes);
}

std::string StorageAnalyzer::formatBytesDecimal(std::uint64_t bytes) {
    return formatInUnitsOf(1000, bytes);
}

std::optional<DeviceStorageInfo> StorageAnalyzer::getDeviceStorageInfo() {
    const auto volume = files_.fileSystemAttributes(device_.homeDirectory());
    if (volume) {
        if (!*volume) return std::nullopt;
        const std::uint64_t free = (*volume)->freeSize;
        const std::uint64_t reserve = shareOf((*volume)->size, kReserveShare);
        return makeInfo(**volume, reserve < free ? free - reserve : shareOf(free, kTightShare),
                        reserve);
    }
    log("⚠️ 存储信息获取失败: {}", volume.error().description);
    const auto root = files_.fileSystemAttributes("/");
    if (!root || !*root) return std::nullopt;
    return makeInfo(**root, (*root)->freeSize, 0);
}

std::vector<std::pair<std::string, FolderUsage>> StorageAnalyzer::analyzeDirectoryUsage(
    const platform::UnreadableHandler& onUnreadable) {
    std::vector<std::pair<std::string, FolderUsage>> usage;
    for (const char* folder : {"Documents", "Library", "tmp"}) {
        const std::uint64_t size =
            sizeOfDirectoryAtPath(platform::joinPath(device_.homeDirectory(), folder),
                                  platform::kDefaultMaxDepth, onUnreadable);
        usage.emplace_back(folder, FolderUsage{size, formatBytes(size)});
    }
    return usage;
}

std::vector<SizedFile> StorageAnalyzer::getLargeFiles(std::uint64_t minSize) {
    std::vector<SizedFile> results;
    findLargeFilesInDirectory(device_.homeDirectory(), minSize, results);
    std::ranges::stable_sort(results, std::ranges::greater{}, &SizedFile::size);
    return results;
}

void StorageAnalyzer::findLargeFilesInDirectory(const std::string& directory, std::uint64_t minSize,
                                                std::vector<SizedFile>& results, int maxDepth) {
    if (maxDepth <= 0) return log("⚠️ 达到最大递归深度，跳过路径: {}", directory);
    auto names = platform::namesAt(files_, directory);
    if (!names) return;
    while (names->size() > 0) {
        const std::string name = names->take();
        if (name.starts_with('.')) continue;
        const std::string path = platform::joinPath(directory, name);
        const auto attributes = files_.attributes(path, LastLink::Refuse);
        if (!attributes) continue;
        if (attributes->type == FileType::Directory) {
            findLargeFilesInDirectory(path, minSize, results, maxDepth - 1);
        } else if (attributes->size >= minSize) {
            results.push_back({path, name, attributes->size, formatBytes(attributes->size)});
        }
    }
}

std::uint64_t StorageAnalyzer::sizeOfDirectoryAtPath(
    const std::string& path, int maxDepth, const platform::UnreadableHandler& onUnreadable) {
    platform::WalkRules rules;
    rules.onUnreadable = onUnreadable;
    rules.maxDepth = maxDepth;
    rules.onDepthLimit = [](const std::string& at) { log("⚠️ 达到最大递归深度，跳过路径: {}", at); };
    return walker_.sizeOfDirectory(path, rules);
}

}  // namespace sweepwright
