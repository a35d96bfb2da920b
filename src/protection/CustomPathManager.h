#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "protection/StoredStringSet.h"

namespace sweepwright {

/// The user's own locations to be cleaned, exactly as they were given. Kept in the user defaults
/// under "CustomCleanPaths" in the order in which they were added. Every change is durable when it
/// returns. Thread-safe.
class CustomPathManager {
  public:
    /// `defaults` must outlive this.
    explicit CustomPathManager(platform::UserDefaults& defaults);

    /// The one of UserDefaults::standard(), made on first use.
    static CustomPathManager& sharedManager();

    /// Reads the stored list again: another process may have changed it. When it can't be read,
    /// memory keeps what it held and readiness() tells.
    void reload() { paths_.reload(); }
    /// Why the list can't be trusted, so that a clean must not start.
    [[nodiscard]] platform::Result<> readiness() const { return paths_.readiness(); }

    /// An empty path changes nothing; whether anything is there is not checked. A list that could
    /// not be read is never written over: that is an error, and logged.
    platform::Result<> addCustomPath(const std::string& path);
    platform::Result<> removeCustomPath(const std::string& path);
    platform::Result<> clearAllCustomPaths();

    /// Whether `path` is a member, starts with one or is the start of one, by bytes alone: with the
    /// member "/a/Foo", "/a/FooBar" and "/a" are custom paths, too.
    [[nodiscard]] bool isCustomPath(std::string_view path) const;
    [[nodiscard]] std::vector<std::string> getAllCustomPaths() const;
    [[nodiscard]] std::size_t getCustomPathCount() const;

  private:
    StoredStringSet paths_;
};

}  // namespace sweepwright
