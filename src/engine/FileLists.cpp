// What each category holds, for a person to look at before a clean.
#include <algorithm>

#include "engine/Categories.h"
#include "engine/CategoryRules.h"
#include "engine/FileCleanerEngine.h"
#include "engine/FileVisitor.h"

namespace sweepwright {

using platform::joinPath;

void FileCleanerEngine::collectFilesInDirectory(const std::string& directory,
                                                std::vector<std::string>& paths,
                                                std::size_t maxCount, int maxDepth) {
    if (paths.size() >= maxCount) return;
    FileVisitor(
        services_.files,
        [&](const std::string& path, const std::string& /*name*/,
            const platform::FileAttributes* /*attributes*/) {
            paths.push_back(path);
            return paths.size() < maxCount;
        },
        unreadableTo(observer_))
        .walk(directory, maxDepth);
}

void FileCleanerEngine::collectEntries(const std::string& directory, NameRule rule,
                                       std::vector<std::string>& paths) {
    for (const std::string& name : entriesOf(directory)) {
        if (paths.size() >= kMaxListedPaths) return;
        if (rule(name)) collectFilesInDirectory(joinPath(directory, name), paths, kMaxListedPaths);
    }
}

std::vector<std::string> FileCleanerEngine::filesInPlaces(CleanType type) {
    std::vector<std::string> paths;
    for (const Place& place : categoryOf(type)->places) {
        if (!place.isListed) continue;
        const std::string folder = home(place.folder);
        if (place.rule != nullptr) {
            collectEntries(folder, place.rule, paths);
        } else if (exists(folder)) {
            collectFilesInDirectory(folder, paths, kMaxListedPaths);
        }
    }
    return paths;
}

std::vector<CacheEntry> FileCleanerEngine::getCacheFileList() {
    std::vector<CacheEntry> list;
    const auto add = [&list](const std::string& path, std::uint64_t size) {
        if (size > 0) list.push_back({path, size});
    };
    const auto addMeasured = [&](const std::string& path) {
        if (!isPathInWhitelist(path) && exists(path)) add(path, sizeOfDirectoryAtPath(path));
    };

    const std::string caches = services_.device.cachesDirectory();
    for (const std::string& name : entriesOf(caches)) {
        const std::string path = joinPath(caches, name);
        if (!name.starts_with('.') && !isPathInWhitelist(path)) add(path, getFileSizeAtPath(path));
    }
    const std::string support = services_.device.applicationSupportDirectory();
    for (const std::string& name : entriesOf(support)) {
        const std::string path = joinPath(support, name);
        if (rules::isTemporaryData(name) && services_.files.isDirectory(path)) addMeasured(path);
    }
    for (const std::string_view path : rules::kSafariCaches)
        addMeasured(std::string(path));
    for (const auto& cache : rules::kSystemCaches)
        addMeasured(std::string(cache.path));

    // Three of the folders above lie here too and are listed again, as they are measured.
    const std::string shared(rules::kSharedCaches);
    for (const std::string& name : entriesOf(shared)) {
        const std::string path = joinPath(shared, name);
        if (rules::isSharedCache(name) && !isMapsAppPath(path)) addMeasured(path);
    }
    for (const std::string& path : services_.customPaths.getAllCustomPaths())
        addMeasured(path);

    std::ranges::stable_sort(list, std::ranges::greater{}, &CacheEntry::size);
    return list;
}

std::vector<std::string> FileCleanerEngine::getTempFileList() {
    std::vector<std::string> paths;
    collectFilesInDirectory(services_.device.temporaryDirectory(), paths, kMaxListedPaths);
    return paths;
}

std::vector<std::string> FileCleanerEngine::getCookieFileList() {
    return filesInPlaces(CleanType::Cookies);
}

std::vector<std::string> FileCleanerEngine::getSystemLogFileList() {
    std::vector<std::string> paths;
    collectFilesInDirectory(home("Library/Logs"), paths, kMaxListedPaths);
    for (const std::string_view at : rules::kDiagnostics) {
        if (paths.size() >= kMaxListedPaths) break;
        const std::string path(at);
        if (sizeIfPresent(path) > 0) paths.push_back(path);
    }
    return paths;
}

std::vector<std::string> FileCleanerEngine::getDownloadsFileList() {
    return filesInPlaces(CleanType::Downloads);
}

std::vector<std::string> FileCleanerEngine::getImageCacheFileList() {
    return filesInPlaces(CleanType::ImageCache);
}

std::vector<std::string> FileCleanerEngine::getDatabaseFileList() {
    const std::string library = services_.device.libraryDirectory();
    std::vector<std::string> paths;
    for (const std::string& name : entriesOf(library))
        if (rules::isDatabase(name)) paths.push_back(joinPath(library, name));
    return paths;
}

std::vector<std::string> FileCleanerEngine::getCrashReportFileList() {
    return filesInPlaces(CleanType::CrashReports);
}

}  // namespace sweepwright
