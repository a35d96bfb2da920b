#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/HostFileManager.h"

namespace sweepwright::test {

/// A folder that removes itself and what is in it.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Absolute host path.
    [[nodiscard]] const std::string& path() const { return path_; }

  private:
    std::string path_;
};

/// A device tree in a temporary folder. Paths are device paths; missing folders above are made.
/// A step that fails fails the test.
class TemporaryDevice {
  public:
    explicit TemporaryDevice(platform::Calls calls = platform::defaultCalls());

    /// A file of `bytes` bytes (sparse).
    void file(const std::string& path, std::uint64_t bytes);
    void fileWith(const std::string& path, std::string_view content);
    void folder(const std::string& path);
    void link(const std::string& path, const std::string& target);
    void hardLink(const std::string& path, const std::string& existing);
    void fifo(const std::string& path);
    /// Sets the modification date to `seconds` before now.
    void age(const std::string& path, double seconds);

    /// Whether something is there, a link counted as itself.
    [[nodiscard]] bool exists(const std::string& path) const;
    [[nodiscard]] std::string content(const std::string& path) const;
    /// The device paths of all that is beneath `path`, sorted; links are not followed.
    [[nodiscard]] std::vector<std::string> entriesBeneath(const std::string& path) const;

    /// The host folder that is the device's "/", and a device path beneath it.
    [[nodiscard]] const std::string& root() const { return folder_.path(); }
    [[nodiscard]] std::string host(const std::string& path) const { return root() + path; }

    [[nodiscard]] platform::HostFileManager& files() { return files_; }

  private:
    TemporaryFolder folder_;
    platform::HostFileManager files_;
};

}  // namespace sweepwright::test
