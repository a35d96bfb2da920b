#include "engine/FileCleanerEngine.h"

#include <utility>

#include "engine/Categories.h"
#include "engine/CategoryRules.h"
#include "platform/log/Log.h"

namespace sweepwright {

std::vector<std::pair<std::string, std::uint64_t>> ScanResult::entries() const {
    std::vector<std::pair<std::string, std::uint64_t>> figures;
    for (const Category& category : categories())
        figures.emplace_back(category.key, this->*category.figure);
    figures.emplace_back("totalSize", totalSize);
    return figures;
}

FileCleanerEngine::FileCleanerEngine(const EngineServices& services)
    : services_(services),
      walker_(services.files),
      cleanQueue_(platform::DispatchQueue::serial("com.sweepwright.cleanqueue")) {}

FileCleanerEngine::~FileCleanerEngine() = default;

EngineServices EngineServices::shared() {
    return {platform::Device::current(),
            platform::FileManager::defaultManager(),
            DeviceEraser::sharedEraser(),
            PathWhitelistManager::sharedManager(),
            CustomPathManager::sharedManager(),
            CleanHistoryManager::sharedManager(),
            CleanStatistics::sharedStatistics(),
            StorageAnalyzer::sharedAnalyzer(),
            platform::NotificationCenter::defaultCenter(),
            platform::MainQueue::shared(),
            std::chrono::system_clock::now,
            &CleanLock::sharedLock()};
}

EngineServices EngineServices::over(platform::FileManager& view, Eraser& viewEraser) const {
    return {device,     view,    viewEraser,    pathWhitelist, customPaths, history,
            statistics, storage, notifications, mainQueue,     now};
}

FileCleanerEngine& FileCleanerEngine::sharedEngine() {
    static FileCleanerEngine engine(EngineServices::shared());
    return engine;
}

void FileCleanerEngine::scanWithCompletion(ScanCompletion completion) {
    cleanQueue_->async([this, completion = std::move(completion)] {
        const ScanResult result = scan();
        services_.mainQueue.async([completion, result] {
            if (completion) completion(result);
        });
    });
}

ScanResult FileCleanerEngine::scan(
    const std::function<void(std::string_view key, int done)>& onStep) {
    services_.pathWhitelist.reload();
    services_.customPaths.reload();
    int done = 0;
    const auto measure = [&](std::string_view key, std::uint64_t (FileCleanerEngine::*getter)()) {
        if (onStep) onStep(key, done++);
        return (this->*getter)();
    };
    ScanResult result;
    for (const Category& category : categories())
        result.*category.figure = measure(category.key, category.size);
    // The cache size holds the custom paths already; they count a second time here.
    result.cacheSize += measure("cacheSize", &FileCleanerEngine::getCustomPathsSize);
    for (const Category& category : categories())
        result.totalSize += result.*category.figure;
    return result;
}

void FileCleanerEngine::cleanWithType(CleanType type, Progress progress, Completion completion,
                                      std::shared_ptr<CleanObserver> observer) {
    cleanQueue_->async([this, type, number = ++lastAsked_, progress = std::move(progress),
                        completion = std::move(completion),
                        observer = std::move(observer)]() mutable {
        auto admitted = admission();
        if (!admitted) return postCompletion(std::move(completion), 0, admitted.error());
        cleanObserver_ = std::move(observer);
        ErrorSlot error;
        const std::uint64_t cleaned =
            runClean(number, progress, [&] { return cleanCategories(type, progress, error); });
        if (!error && cleaned > 0) recordClean(type, cleaned);
        cleanObserver_.reset();
        admitted->reset();
        postCompletion(std::move(completion), cleaned, std::move(error));
    });
}

std::uint64_t FileCleanerEngine::cleanNow(CleanType type, const Progress& progress,
                                          ErrorSlot& error) {
    return runClean(++lastAsked_, progress, [&] { return cleanCategories(type, progress, error); });
}

platform::Result<std::optional<CleanLock::Share>> FileCleanerEngine::admission() {
    if (auto ready = readiness(); !ready) return std::unexpected(ready.error());
    if (services_.lock == nullptr) return std::nullopt;
    return services_.lock->share();
}

std::uint64_t FileCleanerEngine::runClean(CleanNumber number, const Progress& progress,
                                          const std::function<std::uint64_t()>& body) {
    // One throttle for the whole clean: it may visit thousands of directories a second.
    throttle_ = std::make_unique<platform::ProgressThrottle>(services_.mainQueue, progress);
    // Found once: a folder that goes may hold a link by which a protected path leads.
    protectedPlaces_ = findProtectedPlaces();
    running_ = number;
    const std::uint64_t cleaned = isStopped() ? 0 : body();
    running_ = kNoClean;
    throttle_->flush();
    throttle_.reset();
    protectedPlaces_.reset();
    return cleaned;
}

std::uint64_t FileCleanerEngine::cleanCategories(CleanType type, const Progress& progress,
                                                 ErrorSlot& error) {
    std::uint64_t cleaned = 0;
    if (const Category* category = categoryOf(type)) {
        cleaned = (this->*category->clean)(progress, error);
        if (observer_ != nullptr) observer_->finished({type, {}}, cleaned);
    } else if (type == CleanType::All) {
        for (const Category& each : categories())
            if (!isStopped()) cleaned += cleanCategories(each.type, progress, error);
    }
    return cleaned;
}

platform::Result<> FileCleanerEngine::readiness() const {
    services_.pathWhitelist.reload();
    services_.customPaths.reload();
    if (auto ready = services_.pathWhitelist.readiness(); !ready) return ready;
    return services_.customPaths.readiness();
}

void FileCleanerEngine::recordClean(CleanType type, std::uint64_t cleaned) {
    // What was cleaned is cleaned, and the clean a success, whether or not it can be recorded.
    const auto counted = saveCleanStatistics(cleaned);
    const auto entered = services_.history.saveCleanHistoryWithType(
        type, cleaned, cleanTypeNameForType(type).value_or(""));
    for (const auto& stored : {counted, entered})
        if (!stored && cleanObserver() != nullptr) cleanObserver()->notRecorded(stored.error());
    services_.notifications.post("CleanHistoryUpdated");
}

void FileCleanerEngine::postCompletion(Completion completion, std::uint64_t cleaned,
                                       ErrorSlot error) {
    services_.mainQueue.async(
        [completion = std::move(completion), cleaned, error = std::move(error)] {
            if (completion) completion(!error.has_value(), cleaned, error);
        });
}

std::optional<std::string> FileCleanerEngine::cleanTypeNameForType(CleanType type) {
    if (categoryOf(type) == nullptr && type != CleanType::All) return std::nullopt;
    return std::string(nameOf(type).value());
}

platform::Result<> FileCleanerEngine::saveCleanStatistics(std::uint64_t bytes) {
    return services_.statistics.recordClean(bytes);
}

std::uint64_t FileCleanerEngine::getTotalCleanableSize() {
    std::uint64_t total = 0;
    for (const Category& category : categories())
        total += (this->*category.size)();
    return total;
}

std::optional<DeviceStorageInfo> FileCleanerEngine::getStorageInfo() {
    return services_.storage.getDeviceStorageInfo();
}

bool FileCleanerEngine::isPathAccessible(const std::string& path) {
    return services_.files.contentsOfDirectory(path).has_value();
}

bool FileCleanerEngine::isPathWritable(const std::string& path) {
    return exists(path) && services_.files.isWritable(path);
}

std::uint64_t FileCleanerEngine::getFileSizeAtPath(const std::string& path) {
    return fileSize(path, observer_);
}

std::uint64_t FileCleanerEngine::fileSize(const std::string& path, CleanObserver* observer) {
    if (!exists(path, observer)) return 0;
    if (services_.files.isDirectory(path))
        return walker_.sizeOfDirectory(path, walkRules(platform::kDefaultMaxDepth, observer));
    const auto attributes = services_.files.attributes(path, platform::LastLink::Refuse);
    return attributes ? attributes->size : 0;
}

bool FileCleanerEngine::exists(const std::string& path, CleanObserver* observer) {
    const auto attributes = services_.files.attributes(path, platform::LastLink::Follow);
    if (!attributes) noteUnreadable(path, attributes.error(), observer);
    return attributes.has_value();
}

void FileCleanerEngine::noteUnreadable(const std::string& path, const Error& error,
                                       CleanObserver* observer) {
    platform::tellUnreadable(services_.files, path, error, unreadableTo(observer));
}

bool FileCleanerEngine::isPathInWhitelist(const std::string& path) const {
    return services_.pathWhitelist.isPathInWhitelist(path);
}

std::string FileCleanerEngine::home(std::string_view relative) const {
    return platform::joinPath(services_.device.homeDirectory(), relative);
}

std::vector<std::string> FileCleanerEngine::entriesOf(const std::string& directory) {
    auto names = services_.files.contentsOfDirectory(directory);
    if (names) return *std::move(names);
    noteUnreadable(directory, names.error(), observer_);
    return {};
}

bool FileCleanerEngine::isMapsAppPath(std::string_view path) {
    return rules::isMapsAppPath(path);
}

bool FileCleanerEngine::isSQLiteDatabaseFile(std::string_view path) {
    return rules::isSQLiteDatabaseFile(path);
}

bool FileCleanerEngine::isSystemPath(std::string_view path) {
    return rules::isSystemPath(path);
}

}  // namespace sweepwright
