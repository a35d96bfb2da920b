#include "cli/KnownApps.h"

#include <algorithm>
#include <optional>
#include <vector>

#include <fmt/format.h>

#include "apps/ThirdPartyAppCacheManager.h"
#include "cli/Suggestion.h"
#include "cli/Translation.h"
#include "platform/files/FileManager.h"

namespace sweepwright::cli {

namespace {

/// The only one of `known` that has `word` in it, letter case aside.
std::optional<std::string> onlyOneWith(const std::string& word,
                                       const std::vector<std::string>& known) {
    const auto holds = [part = platform::lowerCased(word)](const std::string& identifier) {
        return platform::lowerCased(identifier).contains(part);
    };
    const auto found = std::ranges::find_if(known, holds);
    if (found == known.end() || std::ranges::count_if(known, holds) > 1) return std::nullopt;
    return *found;
}

}  // namespace

std::string whyUnknownApp(const std::string& identifier) {
    auto& manager = ThirdPartyAppCacheManager::sharedManager();
    if (manager.isInstalled(identifier)) return {};
    const auto known = manager.installedIdentifiers();
    auto meant = nearest(identifier, known);
    if (!meant) meant = onlyOneWith(identifier, known);
    return told("{}: no app with this identifier is installed; {}", identifier,
                meant ? told("did you mean \"{}\"?", *meant) : translated("see sweepctl apps"));
}

}  // namespace sweepwright::cli
