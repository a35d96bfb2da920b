#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "support/FaultyFileManager.h"
#include "support/TemporaryDevice.h"
#include "support/engine/DeviceServices.h"

namespace sweepwright::test {

/// The cleans there are: 0 to 9 by their CleanType, then these.
enum Clean : int { kAll = 9, kDeep, kOneApp, kAppBatch, kAllApps, kCleans };

std::string cleanName(int clean);

/// A small device that has something for every clean beside all kinds of what must stay. It is made
/// once; what cleans took is put back by restore().
class SmallDevice {
  public:
    static constexpr const char* kHome = "/var/mobile/Containers/Data/Application/SELF";
    static constexpr const char* kApps = "/var/mobile/Containers/Data/Application";

    SmallDevice();

    /// Makes everything as it was at first.
    void restore();
    /// What must stay and is not as it was, one line each; empty when all is well.
    [[nodiscard]] std::string damage() const;
    /// Bytes, by the accounting rules, of what has gone since restore().
    [[nodiscard]] std::uint64_t bytesGone() const;
    /// Bytes of everything that a clean may take.
    [[nodiscard]] std::uint64_t bytesAtFirst() const;

    [[nodiscard]] TemporaryDevice& tree() { return tree_; }
    [[nodiscard]] const std::string& outside() const { return outside_.path(); }
    [[nodiscard]] static std::string home(const std::string& relative);

  private:
    void junk(const std::string& path, std::uint64_t bytes);
    void kept(const std::string& path);
    void keptLink(const std::string& path, const std::string& target);
    void keptMetadata(const std::string& container, const std::string& identifier);
    void fillHome();
    void fillSystem();
    void fillApps();
    void storeLists();

    TemporaryDevice tree_;
    TemporaryFolder outside_;
    std::map<std::string, std::uint64_t> junk_;  // host paths, bytes
    std::map<std::string, std::string> kept_;    // host paths, content
    std::map<std::string, std::string> links_;   // host paths, targets
    std::string defaultsAtFirst_;
};

/// The calls of a process.
struct WatchedCalls {
    FaultyFileManager files;
};

/// What a process has that works on the device, every file-system call going through `files`.
class Worker : public WatchedCalls, public DeviceServices {
  public:
    explicit Worker(TemporaryDevice& tree, std::set<Operation> watched = everyOperation());
    /// On the same device as mounts made since it was opened look to a new process.
    Worker(const std::string& root, platform::FileManager& target,
           std::set<Operation> watched = everyOperation());

    struct Outcome {
        bool success = false;
        std::uint64_t bytes = 0;
        std::optional<platform::Error> error;
    };
    Outcome clean(int which);

    /// Lets the n-th call from now on fail, or that and all later ones.
    void failNext(std::uint64_t n, int number) { files.failAt(files.calls() + n, number); }
    void failFromNext(std::uint64_t n, int number) { files.failFrom(files.calls() + n, number); }

    FileCleanerEngine engine{engineServices()};
    platform::ResourceBundle resources;
    ThirdPartyAppCacheManager apps{appServices(resources)};

  private:
    void start(int which, const FileCleanerEngine::Completion& completion);
};

}  // namespace sweepwright::test
