#include "engine/LinkProtection.h"

#include <vector>

namespace sweepwright {

namespace {

using platform::LastLink;

/// Where an open directory lies, told by its descriptor where the host can; none when it lies
/// nowhere any more or outside the device root.
std::optional<std::string> placeOf(platform::FileManager& files,
                                   const platform::Directory& directory) {
    const auto root = files.openDirectory("/", LastLink::Refuse);
    const auto rootFolder =
        root ? files.hostPath(*root) : platform::Result<std::string>(std::unexpected(root.error()));
    const auto folder = files.hostPath(directory);
    if (!rootFolder || !folder) {
        auto resolved = files.resolvedPath(directory.path());
        return resolved ? std::optional(*std::move(resolved)) : std::nullopt;
    }
    if (*folder == *rootFolder) return "/";
    const std::string above = *rootFolder == "/" ? "/" : *rootFolder + "/";
    if (!folder->starts_with(above)) return std::nullopt;
    return folder->substr(above.size() - 1);
}

PathIndex protectedPlaces(platform::FileManager& files, const PathWhitelistManager& whitelist) {
    std::vector<std::string> places;
    for (const std::string& path : whitelist.getAllWhitelistedPaths())
        if (auto place = files.resolvedPath(path)) places.push_back(*std::move(place));
    return PathIndex(places);
}

}  // namespace

LinkProtection::LinkProtection(platform::FileManager& files, const PathWhitelistManager& whitelist,
                               const platform::Directory& directory)
    : place_(placeOf(files, directory)), protected_(protectedPlaces(files, whitelist)) {}

bool LinkProtection::coversDirectory() const {
    return !place_ || protected_.touches(*place_);
}

bool LinkProtection::covers(std::string_view name) const {
    return !place_ || protected_.touches(platform::joinPath(*place_, name));
}

bool leadsToProtected(platform::FileManager& files, const PathWhitelistManager& whitelist,
                      const std::string& path) {
    const auto place = files.resolvedPath(path);
    return place && protectedPlaces(files, whitelist).touches(*place);
}

std::string protectingPath(platform::FileManager& files, const PathWhitelistManager& whitelist,
                           const std::string& path) {
    const std::string normalized = PathWhitelistManager::normalizePath(path);
    const std::string place = files.resolvedPath(path).value_or(normalized);
    for (const std::string& other : whitelist.getAllWhitelistedPaths()) {
        if (PathIndex({other}).touches(normalized)) return other;
        const std::string otherPlace = files.resolvedPath(other).value_or(other);
        if (PathIndex({otherPlace}).touches(place)) return other;
    }
    return {};
}

}  // namespace sweepwright
