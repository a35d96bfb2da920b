#include "engine/LinkProtection.h"

namespace sweepwright {

namespace {

bool liesIn(const std::string& path, const std::string& folder) {
    return path == folder || path.starts_with(folder + "/");
}

}  // namespace

bool leadsToProtected(platform::FileManager& files, const PathWhitelistManager& whitelist,
                      const std::string& directory) {
    const auto real = files.resolvedPath(directory);
    if (!real) return false;
    for (const std::string& path : whitelist.getAllWhitelistedPaths()) {
        const auto shielded = files.resolvedPath(path);
        if (shielded && *shielded != "/" && (liesIn(*real, *shielded) || liesIn(*shielded, *real)))
            return true;
    }
    return false;
}

}  // namespace sweepwright
