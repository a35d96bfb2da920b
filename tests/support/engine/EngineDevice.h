#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/log/Log.h"
#include "support/FaultyFileManager.h"
#include "support/TemporaryDevice.h"
#include "support/engine/DeviceServices.h"

namespace sweepwright::test {

/// A device's tree, and the calls on it.
struct WatchedTree {
    TemporaryDevice tree;
    FaultyFileManager files{tree.files(), everyOperation()};
};

/// A temporary device with all that cleans work with, and an engine. Every file-system call of the
/// engine goes through `files`, which counts them and can be made to fail; the user defaults are
/// read and written past it.
class EngineDevice : public WatchedTree, public DeviceServices {
  public:
    static constexpr const char* kHome = "/var/mobile/Containers/Data/Application/SELF";
    static constexpr const char* kSharedCaches = "/var/mobile/Library/Caches";

    explicit EngineDevice(const std::string& home = kHome);
    /// A device as described by `options`; its root folder is the temporary one.
    explicit EngineDevice(platform::DeviceOptions options);

    std::chrono::system_clock::time_point time = std::chrono::system_clock::now();  ///< now
    FileCleanerEngine engine{engineServices()};

    // Device paths beneath the home directory.
    [[nodiscard]] std::string home(const std::string& relative) const;
    [[nodiscard]] std::string caches(const std::string& relative) const;
    [[nodiscard]] std::string support(const std::string& relative) const;
    [[nodiscard]] std::string library(const std::string& relative) const;
    [[nodiscard]] std::string documents(const std::string& relative) const;
    [[nodiscard]] std::string temporary(const std::string& relative) const;
    /// In the caches of the system.
    [[nodiscard]] static std::string shared(const std::string& relative);

    void protect(const std::string& path);
    void addCustomPath(const std::string& path);

    struct Outcome {
        bool success = false;
        std::uint64_t bytes = 0;
        std::optional<platform::Error> error;
    };
    /// Cleans by the entry point and runs the main queue until the completion.
    Outcome clean(CleanType type, FileCleanerEngine::Progress progress = {});
    Outcome clean(FileCleanerEngine& by, CleanType type, FileCleanerEngine::Progress progress = {});
    Outcome deepClean();
    ScanResult scan();

    /// All that is in the tree but the user defaults, sorted.
    [[nodiscard]] std::vector<std::string> everything() const;

  private:
    template <class Start>
    Outcome outcomeOf(const Start& start);
};

/// The lines so far without those in which the protection lists tell what they matched and how they
/// were changed.
std::vector<std::string> engineLines(const platform::LogCapture& log);

}  // namespace sweepwright::test
