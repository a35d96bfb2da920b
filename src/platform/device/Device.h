#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Error.h"

namespace sweepwright::platform {

class DeviceRoot;
class FileManager;

/// Domain of errors about the words that describe a device, in contrast to those about its root.
inline constexpr std::string_view kDeviceOptionsErrorDomain = "DeviceOptions";

/// Whether this program runs on an iPhone or iPad, where the device root is "/".
bool runsOnDevice();

enum class Idiom { Phone = 0, Pad = 1 };

struct OperatingSystemVersion {
    int major = 26;
    int minor = 0;
};

/// What a person or the environment may say about the device; what is unset is found out.
struct DeviceOptions {
    std::string rootFolder;  ///< host folder that is the device's "/"
    std::optional<std::string> home;
    std::optional<std::string> temporaryDirectory;
    std::optional<Idiom> idiom;
    std::optional<OperatingSystemVersion> osVersion;
    std::vector<std::string> preferredLanguages;  ///< language tags, most wanted first
};

/// Where we are: an immutable value, made in `main`. Directories are device paths without a
/// trailing "/".
class Device {
  public:
    /// Opens the root and finds the home directory: the data container whose metadata names
    /// "com.sweepwright.app", else "/var/mobile". A root with neither "/var/mobile" nor
    /// "/private/var/mobile" is no device and an error, unless a home is given. A home or temporary
    /// directory that is given must be an absolute device path below "/" without "." and "..";
    /// repeated and trailing "/" go, and
    /// "/private/var" reads "/var" where that is the same directory, so that protected paths are
    /// recognised by their names. An error of kDeviceOptionsErrorDomain is about these two, any
    /// other about the root. Nothing is created.
    static Result<Device> open(const DeviceOptions& options);

    /// The device that shared instances work on. Set once in `main` before the first of them is
    /// used; asking before that ends the program. Setting it makes its files those of
    /// FileManager::defaultManager().
    static const Device& current();
    static void setCurrent(Device device);

    [[nodiscard]] const std::shared_ptr<const DeviceRoot>& root() const { return root_; }
    [[nodiscard]] const std::string& homeDirectory() const { return home_; }
    [[nodiscard]] const std::string& temporaryDirectory() const { return temporary_; }
    [[nodiscard]] std::string cachesDirectory() const { return home_ + "/Library/Caches"; }
    [[nodiscard]] std::string applicationSupportDirectory() const {
        return home_ + "/Library/Application Support";
    }
    [[nodiscard]] std::string documentsDirectory() const { return home_ + "/Documents"; }
    [[nodiscard]] std::string libraryDirectory() const { return home_ + "/Library"; }
    /// The property list that holds the user defaults.
    [[nodiscard]] std::string userDefaultsFile() const {
        return home_ + "/Library/Preferences/com.sweepwright.app.plist";
    }
    [[nodiscard]] Idiom idiom() const { return idiom_; }
    [[nodiscard]] OperatingSystemVersion osVersion() const { return osVersion_; }
    [[nodiscard]] const std::vector<std::string>& preferredLanguages() const {
        return preferredLanguages_;
    }

  private:
    Device() = default;
    std::shared_ptr<const DeviceRoot> root_;
    std::string home_;
    std::string temporary_;
    Idiom idiom_ = Idiom::Phone;
    OperatingSystemVersion osVersion_;
    std::vector<std::string> preferredLanguages_;
};

}  // namespace sweepwright::platform
