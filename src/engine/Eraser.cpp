#include "engine/Eraser.h"

#include <thread>

#include "platform/tree/TreeWalker.h"

namespace sweepwright {

DeviceEraser& DeviceEraser::sharedEraser() {
    static platform::SpawnCommandRunner commands;
    static DeviceEraser eraser(platform::FileManager::defaultManager(), commands,
                               platform::WebStorage::ofHost());
    return eraser;
}

DeviceEraser::DeviceEraser(platform::FileManager& files, platform::CommandRunner& commands,
                           platform::WebStorage& webStorage)
    : files_(files), commands_(commands), webStorage_(webStorage) {}

platform::Removal DeviceEraser::removeEntry(const platform::Directory& parent,
                                            const std::string& name,
                                            const platform::WalkRules& rules) {
    using platform::TreeRemover;
    return TreeRemover(files_, TreeRemover::kDefaultThreads, crew_).remove(parent, name, rules);
}

std::int32_t DeviceEraser::runShellCommand(const std::string& command,
                                           const platform::Directory& directory) {
    const auto folder = files_.hostPath(directory);
    if (!folder) return -1;
    if (folder->contains('\'') && !platform::CommandRunner::confinementAvailable()) return -1;
    using platform::TreeWalker;
    const TreeWalker walker(files_, TreeWalker::kDefaultThreads, crew_);
    if (!walker.mountPointsBeneath(directory).empty()) return -1;
    return commands_.run(command, *folder);
}

void DeviceEraser::settle() {
    std::this_thread::sleep_for(kSettleTime);
}

platform::Result<> DeviceEraser::removeAllCachedResponses() {
    return webStorage_.removeAllCachedResponses();
}

platform::Result<> DeviceEraser::deleteAllCookies() {
    return webStorage_.deleteAllCookies();
}

}  // namespace sweepwright
