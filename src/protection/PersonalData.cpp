#include "protection/PersonalData.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <ranges>
#include <string>

namespace sweepwright {

namespace {

/// Whether a folder inside a place is as dear as the place.
enum class Inside { Counts, DoesNot };

struct Place {
    std::string_view path;  ///< "*" stands for one component
    std::string_view holds;
    Inside inside = Inside::Counts;
};

constexpr std::string_view kHome = "a whole home";
constexpr std::string_view kPhotos = "photos";
constexpr std::string_view kDocuments = "documents of apps";

constexpr auto kPlaces = std::to_array<Place>({
    {"/var/mobile", kHome, Inside::DoesNot},
    {"/var/root", kHome, Inside::DoesNot},
    {"/var/mobile/Media/DCIM", kPhotos},
    {"/var/mobile/Media/PhotoData", kPhotos},
    {"/var/mobile/Media/PhotoStreamsData", kPhotos},
    {"/var/mobile/Media/Recordings", "voice memos"},
    {"/var/mobile/Library/SMS", "messages"},
    {"/var/mobile/Library/Mail", "mail"},
    {"/var/mobile/Library/AddressBook", "contacts"},
    {"/var/mobile/Documents", kDocuments},
    {"/var/mobile/Library/Mobile Documents", kDocuments},
    {"/var/mobile/Containers/Data/Application/*/Documents", kDocuments},
    {"/var/mobile/Containers/Shared/AppGroup/*/Documents", kDocuments},
    // Many apps keep their databases right in their group's folder.
    {"/var/mobile/Containers/Shared/AppGroup/*", kDocuments, Inside::DoesNot},
});

using Components = std::vector<std::string_view>;

/// The components of a path; empty ones, of doubled and trailing "/", are none.
Components componentsOf(std::string_view path) {
    Components components;
    for (const auto& part : std::views::split(path, '/'))
        if (!part.empty()) components.emplace_back(part.begin(), part.end());
    // "/var" is a link to "/private/var" on every real device.
    if (components.size() > 1 && components[0] == "private" && components[1] == "var")
        components.erase(components.begin());
    return components;
}

bool concerns(const Components& path, const Place& place) {
    const Components at = componentsOf(place.path);
    if (path.size() > at.size() && place.inside == Inside::DoesNot) return false;
    const std::size_t common = std::min(path.size(), at.size());
    return std::equal(path.begin(), path.begin() + static_cast<std::ptrdiff_t>(common), at.begin(),
                      [](std::string_view part, std::string_view wanted) {
                          return wanted == "*" || part == wanted;
                      });
}

}  // namespace

std::vector<std::string_view> personalDataIn(std::string_view path, std::string_view home) {
    const Components components = componentsOf(path);
    const std::string documents = std::string(home) + "/Documents";
    std::vector<std::string_view> held;
    const auto look = [&](const Place& place) {
        if (std::ranges::find(held, place.holds) == held.end() && concerns(components, place))
            held.push_back(place.holds);
    };
    look({home, kHome, Inside::DoesNot});
    std::ranges::for_each(kPlaces, look);
    look({documents, kDocuments});
    return held;
}

}  // namespace sweepwright
