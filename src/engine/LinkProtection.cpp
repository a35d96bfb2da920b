#include "engine/LinkProtection.h"

namespace sweepwright {

namespace {

bool liesIn(const std::string& path, const std::string& folder) {
    return path == folder || path.starts_with(folder + "/");
}

bool areRelated(const std::string& path, const std::string& protectedPath) {
    return protectedPath != "/" && (liesIn(path, protectedPath) || liesIn(protectedPath, path));
}

}  // namespace

bool leadsToProtected(platform::FileManager& files, const PathWhitelistManager& whitelist,
                      const std::string& directory) {
    const auto real = files.resolvedPath(directory);
    if (!real) return false;
    for (const std::string& path : whitelist.getAllWhitelistedPaths()) {
        const auto shielded = files.resolvedPath(path);
        if (shielded && areRelated(*real, *shielded)) return true;
    }
    return false;
}

std::string protectingPath(platform::FileManager& files, const PathWhitelistManager& whitelist,
                           const std::string& path) {
    const std::string normalized = PathWhitelistManager::normalizePath(path);
    const std::string real = files.resolvedPath(path).value_or(normalized);
    for (const std::string& other : whitelist.getAllWhitelistedPaths()) {
        if (normalized == other || areRelated(normalized, other) ||
            areRelated(real, files.resolvedPath(other).value_or(other)))
            return other;
    }
    return {};
}

}  // namespace sweepwright
