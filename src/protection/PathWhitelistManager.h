#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/tree/TreeWalker.h"
#include "protection/OrderedStringSet.h"
#include "protection/PathIndex.h"
#include "protection/Snapshot.h"
#include "protection/StoredStrings.h"

namespace sweepwright {

/// The paths that must never be deleted and never be counted: three built-in ones (the caches of
/// Maps) and those that the user adds. A protected path protects all beneath it, and every
/// directory above it from being deleted as a whole.
///
/// Paths are compared as texts in normalised form, without a look at the file system. The user's
/// list is kept in the user defaults under "PathWhitelistPaths" in the order added, normalised,
/// without duplicates and without the built-in paths. Every change is durable when it returns.
/// Thread-safe; queries are quick even with many paths.
class PathWhitelistManager : public platform::TreeProtection {
  public:
    /// Loads the list; `defaults` must outlive this.
    explicit PathWhitelistManager(platform::UserDefaults& defaults);

    /// The one of UserDefaults::standard(), made on first use.
    static PathWhitelistManager& sharedManager();

    /// The built-in paths, in order.
    static const std::vector<std::string>& builtInPathsList();
    /// `path` without its trailing slashes; "/" stays. Nothing else is changed.
    static std::string normalizePath(std::string_view path);

    /// Reads the stored list again: another process may have changed it. When it can't be read,
    /// memory keeps what it held and readiness() tells. A stored list with duplicates is cleaned.
    void reload();
    /// Why the list can't be trusted, so that a clean must not start. Queries still answer for the
    /// built-in paths.
    [[nodiscard]] platform::Result<> readiness() const { return *readiness_.get(); }

    /// An empty path changes nothing. Removing a built-in path is refused with a log line and is no
    /// error. A list that could not be read is never written over: that is an error, and logged.
    platform::Result<> addPathToWhitelist(const std::string& path);
    platform::Result<> removePathFromWhitelist(const std::string& path);
    /// Removes all of the user's paths.
    platform::Result<> clearAllWhitelistedPaths();

    /// Whether `path` is protected: equal to, inside or above a protected path. A positive answer
    /// logs its reason. "/" is above nothing, since what follows it in a path is no further "/".
    [[nodiscard]] bool isPathInWhitelist(std::string_view path) const;
    /// Whether a protected path lies in `path`, which is not protected itself: it is never removed
    /// whole, but what else is in it may go.
    [[nodiscard]] bool holdsProtectedPath(std::string_view path) const;
    /// Whether `path` is one of the built-in paths, and not merely inside or above one.
    [[nodiscard]] static bool isBuiltInPath(std::string_view path);

    /// Every protected path, normalised: the user's in the order added, then the built-in ones.
    [[nodiscard]] std::vector<std::string> whitelistedPaths() const;
    /// The built-in paths, then the user's.
    [[nodiscard]] std::vector<std::string> getAllWhitelistedPaths() const;
    [[nodiscard]] static std::vector<std::string> getBuiltInPaths();
    [[nodiscard]] std::vector<std::string> getUserDefinedPaths() const;
    [[nodiscard]] std::size_t getWhitelistCount() const;

    bool isProtected(const std::string& path) const override { return isPathInWhitelist(path); }
    bool isFree(const std::string& path) const override;

  private:
    struct Paths {
        OrderedStringSet set;
        PathIndex index;
    };

    void loadWhitelist();
    platform::Result<> saveWhitelist(const std::function<void(OrderedStringSet&)>& change);
    void setPaths(OrderedStringSet set);

    StoredStrings stored_;
    std::mutex changing_;  ///< one reload or change at a time, so that memory ends as stored
    Snapshot<Paths> paths_;
    Snapshot<platform::Result<>> readiness_;
};

}  // namespace sweepwright
