#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "apps/AppIcon.h"

namespace sweepwright {

/// One installed app. Sizes are bytes, paths device paths; what is not known is none.
struct AppCacheInfo {
    std::optional<std::string> bundleIdentifier;  ///< the record's key everywhere
    std::optional<std::string> appName;
    std::optional<std::string> appIconPath;  ///< by Info.plist; set by the directory walk only
    std::optional<AppIcon> appIcon;
    std::uint64_t cacheSize = 0;            ///< caches, WebKit data and the hidden roots' caches
    std::uint64_t tmpSize = 0;              ///< temporary files, the hidden roots' too
    std::uint64_t totalSize = 0;            ///< the sum of both
    std::optional<std::string> dataPath;    ///< the data container
    std::optional<std::string> bundlePath;  ///< the ".app" directory
    bool isSystemApp = false;

    /// One line for a log.
    [[nodiscard]] std::string description() const;
};

}  // namespace sweepwright
