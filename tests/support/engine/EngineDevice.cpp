#include "support/engine/EngineDevice.h"

#include <algorithm>
#include <array>

#include <gtest/gtest.h>

namespace sweepwright::test {

namespace {

platform::DeviceOptions withHome(const std::string& home) {
    platform::DeviceOptions options;
    options.home = home;
    return options;
}

platform::Device openDevice(const TemporaryDevice& tree, platform::DeviceOptions options) {
    options.rootFolder = tree.root();
    return platform::Device::open(options).value();
}

bool isOfProtectionLists(const std::string& line) {
    constexpr std::array<std::string_view, 7> kBeginnings = {"🔒 白名单内置路径",
                                                             "🔒 白名单精确匹配",
                                                             "🔒 白名单标准化匹配",
                                                             "🔒 白名单子路径匹配",
                                                             "🔒 白名单父路径匹配",
                                                             "✅ 已添加",
                                                             "✅ 已从"};
    return std::ranges::any_of(
        kBeginnings, [&](std::string_view beginning) { return line.starts_with(beginning); });
}

}  // namespace

EngineDevice::EngineDevice(const std::string& home) : EngineDevice(withHome(home)) {}

EngineDevice::EngineDevice(platform::DeviceOptions options)
    : DeviceServices(openDevice(tree, std::move(options)), files, tree.files(),
                     [this] { return time; }) {
    tree.folder(library("Preferences"));
}

std::string EngineDevice::home(const std::string& relative) const {
    return platform::joinPath(device.homeDirectory(), relative);
}

std::string EngineDevice::caches(const std::string& relative) const {
    return platform::joinPath(device.cachesDirectory(), relative);
}

std::string EngineDevice::support(const std::string& relative) const {
    return platform::joinPath(device.applicationSupportDirectory(), relative);
}

std::string EngineDevice::library(const std::string& relative) const {
    return platform::joinPath(device.libraryDirectory(), relative);
}

std::string EngineDevice::documents(const std::string& relative) const {
    return platform::joinPath(device.documentsDirectory(), relative);
}

std::string EngineDevice::temporary(const std::string& relative) const {
    return platform::joinPath(device.temporaryDirectory(), relative);
}

std::string EngineDevice::shared(const std::string& relative) {
    return platform::joinPath(kSharedCaches, relative);
}

void EngineDevice::protect(const std::string& path) {
    EXPECT_TRUE(pathWhitelist.addPathToWhitelist(path).has_value()) << path;
}

void EngineDevice::addCustomPath(const std::string& path) {
    EXPECT_TRUE(customPaths.addCustomPath(path).has_value()) << path;
}

template <class Start>
EngineDevice::Outcome EngineDevice::outcomeOf(const Start& start) {
    std::optional<Outcome> outcome;
    start([&](bool success, std::uint64_t bytes, const std::optional<platform::Error>& error) {
        outcome = Outcome{success, bytes, error};
    });
    mainQueue.runUntil([&] { return outcome.has_value(); });
    return *outcome;
}

EngineDevice::Outcome EngineDevice::clean(CleanType type, FileCleanerEngine::Progress progress) {
    return clean(engine, type, std::move(progress));
}

EngineDevice::Outcome EngineDevice::clean(FileCleanerEngine& by, CleanType type,
                                          FileCleanerEngine::Progress progress) {
    return outcomeOf([&](FileCleanerEngine::Completion completion) {
        by.cleanWithType(type, std::move(progress), std::move(completion));
    });
}

EngineDevice::Outcome EngineDevice::deepClean() {
    return outcomeOf([&](FileCleanerEngine::Completion completion) {
        engine.deepCleanWithCompletion(std::move(completion));
    });
}

ScanResult EngineDevice::scan() {
    std::optional<ScanResult> found;
    engine.scanWithCompletion([&](const ScanResult& result) { found = result; });
    mainQueue.runUntil([&] { return found.has_value(); });
    return *found;
}

std::vector<std::string> EngineDevice::everything() const {
    std::vector<std::string> all = tree.entriesBeneath("/");
    std::erase_if(
        all, [&](const std::string& path) { return path.starts_with(device.userDefaultsFile()); });
    return all;
}

std::vector<std::string> engineLines(const platform::LogCapture& log) {
    std::vector<std::string> lines = log.lines();
    std::erase_if(lines, isOfProtectionLists);
    return lines;
}

}  // namespace sweepwright::test
