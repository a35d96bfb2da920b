// Apart from the rest of FileManager, so that what brings its own needs no current device.
#include "platform/Device.h"
#include "platform/HostFileManager.h"

namespace sweepwright::platform {

FileManager& FileManager::defaultManager() {
    static HostFileManager manager(Device::current().root());
    return manager;
}

}  // namespace sweepwright::platform
