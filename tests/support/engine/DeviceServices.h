#pragma once

#include <chrono>
#include <functional>

#include "apps/ThirdPartyAppCacheManager.h"
#include "engine/FileCleanerEngine.h"
#include "platform/device/UserDefaults.h"
#include "support/NoWorkspace.h"
#include "support/engine/EngineFakes.h"

namespace sweepwright::test {

/// The services of one device, wired as in the program. Shell commands and web storage are fakes.
class DeviceServices {
  public:
    using Clock = std::function<std::chrono::system_clock::time_point()>;

    /// The engine and the apps call `files`; the user defaults and the lock call `settings`. Both
    /// must outlive this and may be constructed after it.
    DeviceServices(platform::Device on, platform::FileManager& files,
                   platform::FileManager& settings, Clock now = std::chrono::system_clock::now);

    platform::Device device;
    platform::UserDefaults defaults;
    PathWhitelistManager pathWhitelist;
    AppWhitelistManager appWhitelist;
    CustomPathManager customPaths;
    CleanHistoryManager history;
    CleanStatistics statistics;
    CleanLock lock;
    StorageAnalyzer storage;
    platform::NotificationCenter notifications;
    platform::MainQueue mainQueue;
    FakeCommandRunner commands;
    FakeWebStorage webStorage;
    DeviceEraser deviceEraser;
    ForwardingEraser eraser;

    [[nodiscard]] EngineServices engineServices();
    [[nodiscard]] AppServices appServices(const platform::ResourceBundle& resources,
                                          platform::ApplicationWorkspace& workspace = noWorkspace);

  private:
    platform::FileManager& files_;
    Clock now_;
};

}  // namespace sweepwright::test
