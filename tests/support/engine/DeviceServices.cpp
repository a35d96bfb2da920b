#include "support/engine/DeviceServices.h"

namespace sweepwright::test {

DeviceServices::DeviceServices(platform::Device on, platform::FileManager& files,
                               platform::FileManager& settings, Clock now)
    : device(std::move(on)),
      defaults(settings, device.userDefaultsFile()),
      pathWhitelist(defaults),
      appWhitelist(defaults),
      customPaths(defaults),
      history(defaults, now),
      statistics(defaults, now),
      lock(settings, CleanLock::fileBeside(device.userDefaultsFile())),
      storage(device, files),
      deviceEraser(files, commands, webStorage),
      eraser(deviceEraser),
      files_(files),
      now_(std::move(now)) {}

EngineServices DeviceServices::engineServices() {
    return {device,     files_,  eraser,        pathWhitelist, customPaths, history,
            statistics, storage, notifications, mainQueue,     now_,        &lock};
}

AppServices DeviceServices::appServices(const platform::ResourceBundle& resources,
                                        platform::ApplicationWorkspace& workspace) {
    return {device,        files_,  eraser,     workspace,     resources, appWhitelist,
            pathWhitelist, history, statistics, notifications, mainQueue, &lock};
}

}  // namespace sweepwright::test
