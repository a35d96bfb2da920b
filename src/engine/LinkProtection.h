#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/FileManager.h"
#include "protection/PathIndex.h"
#include "protection/PathWhitelistManager.h"

namespace sweepwright {

/// Where paths lie: each with every link on its way resolved, as far as it is there, and those
/// links themselves.
struct ProtectedPlaces {
    PathIndex whitelisted;
    PathIndex ownFiles;  ///< must not go with a folder that holds them, which may be emptied

    bool areKnown = true;  ///< false when one could not be found out: then everything is protected

    static ProtectedPlaces find(platform::FileManager& files, const PathWhitelistManager& whitelist,
                                const std::vector<std::string>& ownFiles = {});
};

/// Protection by where things really lie. The whitelist compares texts; this keeps a link, or the
/// other name of a linked folder ("/private/var" for "/var"), from leading around it.
///
/// It is about one open directory and its entries, whatever path it was opened by and whatever is
/// renamed or swapped for a link meanwhile.
class LinkProtection {
  public:
    /// By the whitelist as its paths lead now.
    LinkProtection(platform::FileManager& files, const PathWhitelistManager& whitelist,
                   const platform::Directory& directory);
    /// By what was found before: for many directories, and for work that may take away
    /// a link by which a protected path leads.
    LinkProtection(platform::FileManager& files, std::shared_ptr<const ProtectedPlaces> places,
                   const platform::Directory& directory);

    /// Whether the directory is, lies in or holds a whitelisted place, or nobody can tell where it
    /// lies. "/" holds none, as in the whitelist: its entries are asked about one by one.
    [[nodiscard]] bool coversDirectory() const;
    /// Whether the entry `name` is, lies in or holds a whitelisted place or an own file.
    [[nodiscard]] bool covers(std::string_view name) const;

  private:
    std::optional<std::string> place_;  ///< the directory's path free of links
    std::shared_ptr<const ProtectedPlaces> places_;
};

/// The whitelisted path that protects `path`, by its text or by the links on its way; empty when
/// none does.
std::string protectingPath(platform::FileManager& files, const PathWhitelistManager& whitelist,
                           const std::string& path);

}  // namespace sweepwright
