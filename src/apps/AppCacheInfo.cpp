#include "apps/AppCacheInfo.h"

#include <fmt/format.h>

namespace sweepwright {

std::string AppCacheInfo::description() const {
    return fmt::format("<AppCacheInfo: {}> appName={}, bundleID={}, cacheSize={}",
                       static_cast<const void*>(this), appName.value_or("(null)"),
                       bundleIdentifier.value_or("(null)"), cacheSize);
}

}  // namespace sweepwright
