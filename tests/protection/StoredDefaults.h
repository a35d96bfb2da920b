#pragma once

#include <string>
#include <vector>

#include "platform/device/UserDefaults.h"
#include "platform/files/ForwardingFileManager.h"
#include "platform/plist/PropertyList.h"
#include "support/TemporaryDevice.h"

namespace sweepwright::test {

using Strings = std::vector<std::string>;

/// Where the path whitelist is stored.
inline const std::string kPathsKey = "PathWhitelistPaths";

/// Fails writing on demand, as a full disk does.
class FullDisk : public platform::ForwardingFileManager {
  public:
    using ForwardingFileManager::ForwardingFileManager;

    platform::Result<> writeFile(const std::string& path, std::string_view content) override {
        if (full) return std::unexpected(platform::Error{"POSIX", 28, path + ": full"});
        return ForwardingFileManager::writeFile(path, content);
    }

    bool full = false;
};

/// User defaults of a temporary device.
struct StoredDefaults {
    TemporaryDevice device;
    std::string file = "/var/mobile/Library/Preferences/com.sweepwright.app.plist";
    FullDisk files{device.files()};
    platform::UserDefaults defaults{files, file};

    void store(const std::string& key, const Strings& strings) {
        EXPECT_TRUE(
            defaults.set(key, platform::PropertyList::Array(strings.begin(), strings.end())));
    }

    /// The list stored under `key`; {"<absent>"} when there is none.
    [[nodiscard]] Strings stored(const std::string& key) const {
        const auto value = defaults.object(key);
        if (!value || value->array() == nullptr) return {"<absent>"};
        Strings strings;
        for (const auto& element : *value->array())
            strings.push_back(*element.bytes());
        return strings;
    }

    void damage() { device.fileWith(file, "bplist00 and nothing more"); }
};

}  // namespace sweepwright::test
