#pragma once

#include <string>

#include "platform/FileManager.h"
#include "protection/PathWhitelistManager.h"

namespace sweepwright {

/// Whether `directory`, every link on its way resolved, is, lies in or holds a whitelisted path,
/// links on that one's way resolved too. The whitelist itself compares texts; this keeps a link, or
/// the other name of a linked folder ("/private/var" for "/var"), from leading around it.
bool leadsToProtected(platform::FileManager& files, const PathWhitelistManager& whitelist,
                      const std::string& directory);

/// The whitelisted path that protects `path`, by its text or by the links on its way; empty when
/// none does.
std::string protectingPath(platform::FileManager& files, const PathWhitelistManager& whitelist,
                           const std::string& path);

}  // namespace sweepwright
