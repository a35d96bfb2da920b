#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "protection/StoredStringSet.h"

namespace sweepwright {

/// The bundle identifiers of the apps whose caches must never be cleaned, compared exactly. Kept in
/// the user defaults under "AppWhitelistBundleIdentifiers" in the order in which they were added.
/// Every change is durable when it returns. Thread-safe.
class AppWhitelistManager {
  public:
    /// `defaults` must outlive this.
    explicit AppWhitelistManager(platform::UserDefaults& defaults);

    /// The one of UserDefaults::standard(), made on first use.
    static AppWhitelistManager& sharedManager();

    /// Reads the stored list again: another process may have changed it. When it can't be read,
    /// memory keeps what it held and readiness() tells.
    void reload() { apps_.reload(); }
    /// Why the list can't be trusted, so that a clean must not start.
    [[nodiscard]] platform::Result<> readiness() const { return apps_.readiness(); }

    /// An empty identifier changes nothing. A list that could not be read is never written over:
    /// that is an error, and logged.
    platform::Result<> addAppToWhitelist(const std::string& bundleIdentifier);
    platform::Result<> removeAppFromWhitelist(const std::string& bundleIdentifier);
    platform::Result<> clearAllWhitelistedApps();

    [[nodiscard]] bool isAppInWhitelist(std::string_view bundleIdentifier) const;
    [[nodiscard]] std::vector<std::string> getAllWhitelistedApps() const;
    [[nodiscard]] std::size_t getWhitelistCount() const;

  private:
    StoredStringSet apps_;
};

}  // namespace sweepwright
