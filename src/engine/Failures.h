#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "engine/CleanObserver.h"

namespace sweepwright {

/// Paths, each with the reason for what became of it.
struct FailureList {
    struct Entry {
        std::string path;
        std::string reason;  ///< one line for a person, which names a path itself
        bool operator==(const Entry&) const = default;
    };
    std::size_t count = 0;       ///< more than there are entries when not all were kept
    std::vector<Entry> entries;  ///< by path
};

/// Collects what a scan, a list or a clean could not do: the folders that could not be read, the
/// entries that were to go and could not be removed, the record that could not be stored. What
/// stays by a rule (protected, hidden, a link, a mount point) is no failure.
///
/// A path counts once however often it is met, and what lies in one that counts already does not
/// count: entries are those that a preview names. Thread-safe.
class Failures final : public CleanObserver {
  public:
    /// Paths that are kept of each kind, which bounds the memory. Further ones are only counted,
    /// each time that they are met.
    static constexpr std::size_t kMaxKept = 10'000;

    void removed(const std::string& /*path*/, std::uint64_t /*bytes*/) override {}
    void kept(const std::string& path, KeptReason reason, const std::string& by) override;
    void unreadable(const std::string& folder, const platform::Error& error) override;
    void notRecorded(const platform::Error& error) override;

    [[nodiscard]] FailureList unreadableFolders() const;
    /// What was to go and is still there.
    [[nodiscard]] FailureList failedEntries() const;
    /// Why the record of a clean could not be stored: the first reason of several.
    [[nodiscard]] std::optional<platform::Error> recordError() const;

  private:
    class Paths {
      public:
        void add(const std::string& path, const std::string& reason);
        [[nodiscard]] FailureList list() const;

      private:
        [[nodiscard]] bool covers(std::string path) const;

        std::map<std::string, std::string> reasons_;
        std::size_t surplus_ = 0;
    };

    mutable std::mutex mutex_;
    Paths unreadable_;
    Paths failed_;
    std::optional<platform::Error> recordError_;
};

}  // namespace sweepwright
