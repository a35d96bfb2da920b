#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/files/FileManager.h"
#include "platform/tree/Unreadable.h"

namespace sweepwright {

/// What an app's Info.plist says that discovery needs; what is missing or of another type is none.
struct BundleInfo {
    std::string path;  ///< of the ".app" directory
    std::optional<std::string> identifier;
    std::optional<std::string> displayName;
    std::optional<std::string> name;
    /// The last of the primary icon's files, else of the top-level icon files.
    std::optional<std::string> iconFile;
    /// The single icon file of old bundles.
    std::optional<std::string> oldIconFile;

    /// The name that people see; the identifier where the bundle gives none.
    [[nodiscard]] std::optional<std::string> shownName() const {
        return displayName ? displayName : name ? name : identifier;
    }
    /// The name to search icon files by.
    [[nodiscard]] std::optional<std::string> iconName() const {
        return iconFile ? iconFile : oldIconFile;
    }
};

/// Reads the Info.plist of a ".app" directory; none when it can't be read.
std::optional<BundleInfo> readBundleInfo(platform::FileManager& files,
                                         const std::string& bundlePath);

/// All installed bundles by identifier, read once: looking an app up costs no search.
class BundleIndex {
  public:
    /// Reads every bundle beneath the installed bundles' folder; a folder that can't be read is
    /// told. Synchronous.
    explicit BundleIndex(platform::FileManager& files,
                         const platform::UnreadableHandler& onUnreadable = {});

    /// The bundles with this identifier in listing order, at most one of each bundle container.
    [[nodiscard]] const std::vector<BundleInfo>& find(const std::string& identifier) const;
    /// Every identifier, in no order.
    [[nodiscard]] std::vector<std::string> identifiers() const;

  private:
    void readContainer(platform::FileManager& files, const std::string& container,
                       const platform::UnreadableHandler& onUnreadable);
    std::unordered_map<std::string, std::vector<BundleInfo>> byIdentifier_;
};

}  // namespace sweepwright
