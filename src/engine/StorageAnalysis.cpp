// Read-only analyses: bundles, large files, files of equal size, bytes by extension.
#include <algorithm>

#include "engine/CategoryRules.h"
#include "engine/FileCleanerEngine.h"
#include "engine/FileVisitor.h"
#include "platform/log/Log.h"

namespace sweepwright {

using platform::joinPath;
using platform::log;

namespace {

void logDepthLimit(const std::string& path) {
    log("⚠️ 达到最大递归深度，跳过路径: {}", path);
}

}  // namespace

std::vector<AppEntry> FileCleanerEngine::getInstalledAppsWithStorage() {
    const std::string bundles(rules::kInstalledBundles);
    std::vector<AppEntry> apps;
    for (const std::string& name : entriesOf(bundles)) {
        const std::string path = joinPath(bundles, name);
        apps.push_back({name, sizeOfDirectoryAtPath(path), path});
    }
    return apps;
}

std::vector<LargeFileEntry> FileCleanerEngine::findLargeFilesWithMinSize(std::uint64_t minSize) {
    std::vector<LargeFileEntry> results;
    findLargeFilesInDirectory(services_.device.documentsDirectory(), minSize, results,
                              kMaxLargeFiles);
    findLargeFilesInDirectory(services_.device.cachesDirectory(), minSize, results, kMaxLargeFiles);
    std::ranges::stable_sort(results, std::ranges::greater{}, &LargeFileEntry::size);
    return results;
}

void FileCleanerEngine::findLargeFilesInDirectory(const std::string& directory,
                                                  std::uint64_t minSize,
                                                  std::vector<LargeFileEntry>& results,
                                                  std::size_t maxCount, int maxDepth) {
    if (results.size() >= maxCount) return;
    FileVisitor(
        services_.files,
        [&](const std::string& path, const std::string& name,
            const platform::FileAttributes* attributes) {
            if (attributes != nullptr && attributes->size >= minSize)
                results.push_back({path, name, attributes->size, attributes->modificationDate});
            return results.size() < maxCount;
        },
        unreadableTo(observer_))
        .walk(directory, maxDepth);
}

std::vector<std::vector<DuplicateEntry>> FileCleanerEngine::findDuplicateFiles() {
    FilesBySize bySize;
    collectFilesForDuplicateCheck(services_.device.documentsDirectory(), bySize);
    collectFilesForDuplicateCheck(services_.device.cachesDirectory(), bySize);
    return duplicatesAmong(std::move(bySize));
}

std::vector<std::vector<DuplicateEntry>> FileCleanerEngine::duplicatesAmong(FilesBySize bySize) {
    std::vector<std::vector<DuplicateEntry>> groups;
    for (auto& [size, entries] : bySize)
        if (entries.size() > 1) groups.push_back(std::move(entries));
    return groups;
}

void FileCleanerEngine::collectFilesForDuplicateCheck(const std::string& directory,
                                                      FilesBySize& bySize, int maxDepth) {
    FileVisitor(
        services_.files,
        [&](const std::string& path, const std::string& name,
            const platform::FileAttributes* attributes) {
            if (attributes != nullptr && attributes->size > 0)
                bySize[attributes->size].push_back({path, name, attributes->size});
            return true;
        },
        unreadableTo(observer_), logDepthLimit)
        .walk(directory, maxDepth);
}

ExtensionAnalysis FileCleanerEngine::analyzeStorageByCategory() {
    ExtensionAnalysis analysis;
    analyzeDirectory(services_.device.documentsDirectory(), analysis.byExtension);
    analyzeDirectory(services_.device.cachesDirectory(), analysis.byExtension);
    analysis.totalAnalyzed = calculateTotalSize(analysis.byExtension);
    return analysis;
}

void FileCleanerEngine::analyzeDirectory(const std::string& directory, ExtensionSizes& categories,
                                         int maxDepth) {
    FileVisitor(
        services_.files,
        [&](const std::string& /*path*/, const std::string& name,
            const platform::FileAttributes* attributes) {
            if (attributes == nullptr) return true;
            const std::string extension = platform::lowerCased(platform::pathExtension(name));
            categories[extension.empty() ? "(no extension)" : extension] += attributes->size;
            return true;
        },
        unreadableTo(observer_), logDepthLimit)
        .walk(directory, maxDepth);
}

std::uint64_t FileCleanerEngine::calculateTotalSize(const ExtensionSizes& categories) {
    std::uint64_t total = 0;
    for (const auto& [extension, size] : categories)
        total += size;
    return total;
}

}  // namespace sweepwright
