#include "engine/LinkProtection.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace sweepwright {

namespace {

using platform::FileType;
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

/// Whether a path that can't be resolved leads nowhere, or where this process can't go either.
bool leadsNowhere(const platform::Error& error) {
    return error.isNotFound() || error.isNotDirectory() || error.isLinkLoop() ||
           error.isNameTooLong() || error.isPermissionDenied();
}

/// Each link on the way along `path` and, last, where the way ends; what is not there is taken by
/// its name.
std::vector<std::string> placesOf(platform::FileManager& files, const std::string& path) {
    std::vector<std::string> places;
    std::string place = "/";
    for (std::size_t start = 1; start < path.size();) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        const std::string name = path.substr(start, end - start);
        start = end + 1;
        if (name.empty() || name == ".") continue;
        const std::string next = platform::joinPath(place, name);
        const auto attributes = files.attributes(next, LastLink::Refuse);
        const bool isLink = attributes && attributes->type == FileType::SymbolicLink;
        if (isLink) places.push_back(next);
        place = isLink || name == ".." ? files.resolvedPath(next).value_or(next) : next;
    }
    places.push_back(std::move(place));
    return places;
}

/// `areKnown` becomes false when one of them could not be found out.
PathIndex placesOfAll(platform::FileManager& files, const std::vector<std::string>& paths,
                      bool& areKnown) {
    std::vector<std::string> places;
    for (const std::string& path : paths) {
        std::ranges::move(placesOf(files, path), std::back_inserter(places));
        // A link that could not be looked at was passed by as a name: where it all ends is asked
        // once more as a whole.
        if (auto end = files.resolvedPath(path)) {
            places.push_back(*std::move(end));
        } else if (!leadsNowhere(end.error())) {
            areKnown = false;
        }
    }
    return PathIndex(places);
}

}  // namespace

ProtectedPlaces ProtectedPlaces::find(platform::FileManager& files,
                                      const PathWhitelistManager& whitelist,
                                      const std::vector<std::string>& ownFiles) {
    ProtectedPlaces found;
    found.whitelisted = placesOfAll(files, whitelist.getAllWhitelistedPaths(), found.areKnown);
    found.ownFiles = placesOfAll(files, ownFiles, found.areKnown);
    return found;
}

LinkProtection::LinkProtection(platform::FileManager& files, const PathWhitelistManager& whitelist,
                               const platform::Directory& directory)
    : LinkProtection(
          files, std::make_shared<const ProtectedPlaces>(ProtectedPlaces::find(files, whitelist)),
          directory) {}

LinkProtection::LinkProtection(platform::FileManager& files,
                               std::shared_ptr<const ProtectedPlaces> places,
                               const platform::Directory& directory)
    : place_(placeOf(files, directory)), places_(std::move(places)) {}

bool LinkProtection::coversDirectory() const {
    return !place_ || !places_->areKnown || places_->whitelisted.touches(*place_);
}

bool LinkProtection::covers(std::string_view name) const {
    if (!place_ || !places_->areKnown) return true;
    const std::string entry = platform::joinPath(*place_, name);
    return places_->whitelisted.touches(entry) || places_->ownFiles.touches(entry);
}

std::string protectingPath(platform::FileManager& files, const PathWhitelistManager& whitelist,
                           const std::string& path) {
    const std::string normalized = PathWhitelistManager::normalizePath(path);
    const std::string place = placesOf(files, normalized).back();
    // A link may be protected itself, beside what it leads to.
    const std::string entry =
        platform::joinPath(placesOf(files, normalized.substr(0, normalized.rfind('/'))).back(),
                           platform::lastPathComponent(normalized));
    for (const std::string& other : whitelist.getAllWhitelistedPaths()) {
        const PathIndex places(placesOf(files, other));
        if (PathIndex({other}).touches(normalized) || places.touches(place) ||
            places.touches(entry))
            return other;
    }
    return {};
}

}  // namespace sweepwright
