#include "engine/FolderAnalysis.h"

#include <algorithm>
#include <cstddef>

#include "engine/FileVisitor.h"

namespace sweepwright {

using platform::LastLink;

FolderAnalysis::FolderAnalysis(const EngineServices& services, std::string folder,
                               CleanObserver* observer)
    : files_(services.files),
      engine_(services.over(files_, services.eraser)),
      storage_(services.device, files_),
      folder_(std::move(folder)),
      observer_(observer) {
    engine_.setObserver(observer);
}

platform::Result<> FolderAnalysis::readiness() {
    const auto names = files_.contentsOfDirectory(folder_);
    if (!names) return std::unexpected(names.error());
    return {};
}

std::vector<LargeFileEntry> FolderAnalysis::largeFiles(std::uint64_t minSize) {
    // Not the first so many that are found: the largest of all, of which no more are remembered
    // than a few times as many.
    constexpr std::size_t kWanted = FileCleanerEngine::kMaxLargeFiles;
    std::vector<LargeFileEntry> largest;
    const auto keepLargest = [&largest] {
        std::ranges::stable_sort(largest, std::ranges::greater{}, &LargeFileEntry::size);
        if (largest.size() > kWanted) largest.resize(kWanted);
    };
    const auto visit = [&](const std::string& path, const std::string& name,
                           const platform::FileAttributes* attributes) {
        if (attributes == nullptr || attributes->size < minSize) return true;
        largest.push_back({path, name, attributes->size, attributes->modificationDate});
        if (largest.size() >= 8 * kWanted) keepLargest();
        return true;
    };
    FileVisitor(files_, visit, unreadableTo(observer_)).walk(folder_, platform::kDefaultMaxDepth);
    keepLargest();
    return largest;
}

std::vector<std::vector<DuplicateEntry>> FolderAnalysis::duplicates() {
    FileCleanerEngine::FilesBySize bySize;
    engine_.collectFilesForDuplicateCheck(folder_, bySize);
    return FileCleanerEngine::duplicatesAmong(std::move(bySize));
}

ExtensionAnalysis FolderAnalysis::extensions() {
    ExtensionAnalysis analysis;
    engine_.analyzeDirectory(folder_, analysis.byExtension);
    analysis.totalAnalyzed = FileCleanerEngine::calculateTotalSize(analysis.byExtension);
    return analysis;
}

std::vector<std::pair<std::string, FolderUsage>> FolderAnalysis::usage() {
    std::vector<std::pair<std::string, FolderUsage>> usage;
    for (const std::string& name :
         files_.contentsOfDirectory(folder_).value_or(std::vector<std::string>())) {
        if (name.starts_with('.')) continue;
        const std::string path = platform::joinPath(folder_, name);
        const auto attributes = files_.attributes(path, LastLink::Refuse);
        if (!attributes) continue;
        const std::uint64_t size =
            attributes->type == platform::FileType::Directory
                ? storage_.sizeOfDirectoryAtPath(path, platform::kDefaultMaxDepth,
                                                 unreadableTo(observer_))
                : attributes->size;
        usage.emplace_back(name, FolderUsage{size, StorageAnalyzer::formatBytes(size)});
    }
    std::ranges::stable_sort(usage, std::ranges::greater{},
                             [](const auto& entry) { return entry.second.size; });
    return usage;
}

}  // namespace sweepwright
