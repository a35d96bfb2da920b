#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/FileManager.h"
#include "protection/PathIndex.h"
#include "protection/PathWhitelistManager.h"

namespace sweepwright {

/// Protection by where things really lie. The whitelist compares texts; this keeps a link, or the
/// other name of a linked folder ("/private/var" for "/var"), from leading around it.
///
/// It is about one open directory and its entries, whatever path it was opened by and whatever is
/// renamed or swapped for a link meanwhile.
class LinkProtection {
  public:
    /// Resolves the whitelisted paths as they lead now.
    LinkProtection(platform::FileManager& files, const PathWhitelistManager& whitelist,
                   const platform::Directory& directory);

    /// Whether the directory is, lies in or holds a whitelisted path, or nobody can tell where it
    /// lies. "/" holds none, as in the whitelist: its entries are asked about one by one.
    [[nodiscard]] bool coversDirectory() const;
    /// Whether the entry `name` is, lies in or holds a whitelisted path.
    [[nodiscard]] bool covers(std::string_view name) const;

  private:
    std::optional<std::string> place_;  ///< the directory's path free of links
    PathIndex protected_;
};

/// Whether `path`, every link on its way resolved, is, lies in or holds a whitelisted path, links
/// on that one's way resolved too.
bool leadsToProtected(platform::FileManager& files, const PathWhitelistManager& whitelist,
                      const std::string& path);

/// The whitelisted path that protects `path`, by its text or by the links on its way; empty when
/// none does.
std::string protectingPath(platform::FileManager& files, const PathWhitelistManager& whitelist,
                           const std::string& path);

}  // namespace sweepwright
