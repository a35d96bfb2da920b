#include "cli/Candidates.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "apps/AppNames.h"
#include "apps/ThirdPartyAppCacheManager.h"
#include "platform/files/FileManager.h"

namespace sweepwright::cli {

std::vector<Candidate> candidatesFrom(const std::vector<std::string>& words) {
    std::vector<Candidate> candidates;
    std::ranges::transform(words, std::back_inserter(candidates),
                           [](const std::string& word) { return Candidate{word}; });
    return candidates;
}

std::vector<Candidate> installedApps(const std::string& begun) {
    std::vector<Candidate> apps;
    for (const auto& id : ThirdPartyAppCacheManager::sharedManager().installedIdentifiers()) {
        if (!id.starts_with(begun)) continue;
        std::string name = AppNames::sharedNames().nameOf(id);
        apps.push_back({id, name == id ? "" : std::move(name)});
    }
    return apps;
}

std::vector<Candidate> devicePaths(const std::string& begun) {
    const std::size_t slash = begun.rfind('/');
    if (slash == std::string::npos) return {{"/"}};
    const std::string folder = begun.substr(0, slash + 1);
    const std::string beginning = begun.substr(slash + 1);
    auto& files = platform::FileManager::defaultManager();
    std::vector<Candidate> paths;
    for (const std::string& name :
         files.contentsOfDirectory(folder).value_or(std::vector<std::string>())) {
        if (!name.starts_with(beginning) || (beginning.empty() && name.starts_with('.'))) continue;
        const std::string path = folder + name;
        paths.push_back({files.isDirectory(path) ? path + "/" : path});
    }
    return paths;
}

}  // namespace sweepwright::cli
