#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Error.h"
#include "platform/tree/Unreadable.h"
#include "protection/CleanType.h"

namespace sweepwright {

/// Why a clean left something alone.
enum class KeptReason {
    Protected,       ///< whitelisted; `by` is the protecting path
    Hidden,          ///< its name begins with "."
    Link,            ///< a symbolic link
    Database,        ///< a database or a side file of one
    RecentSideFile,  ///< a database's side file changed less than 300 seconds ago
    Maps,            ///< a cache of the Maps app
    OwnFolder,       ///< the app's own cache folder
    MountPoint,      ///< something else is mounted there
    Failed,          ///< it could not be removed; `by` is the error
};

/// The reason as scripts read it: "protected", "hidden", "link", …
std::string_view keptReasonName(KeptReason reason);

/// A part of a clean: one of the nine categories, or one app (CleanType::ThirdPartyApps).
struct CleanPart {
    CleanType type = CleanType::All;
    std::string app;  ///< its bundle identifier
    auto operator<=>(const CleanPart&) const = default;
};

/// Hears of every decision of a clean, on the clean's thread, and of what a clean, a scan or a list
/// could not do.
class CleanObserver {
  public:
    virtual ~CleanObserver() = default;
    /// `path` went, which freed `bytes`.
    virtual void removed(const std::string& path, std::uint64_t bytes) = 0;
    /// `path` stays.
    virtual void kept(const std::string& path, KeptReason reason, const std::string& by) = 0;
    /// What lies in `folder` could not be read, all of it or a part: it was neither measured nor
    /// listed, and is not removed. On any thread, on several at once, and more than once a folder.
    virtual void unreadable(const std::string& /*folder*/, const platform::Error& /*error*/) {}
    /// A clean has freed something, and its record could not be stored.
    virtual void notRecorded(const platform::Error& /*error*/) {}
    /// All of `part` has been told of; it freed `bytes`.
    virtual void finished(const CleanPart& /*part*/, std::uint64_t /*bytes*/) {}
};

/// The handler that tells `observer`, which must outlive it; none for none.
platform::UnreadableHandler unreadableTo(CleanObserver* observer);

/// What a clean would do.
struct CleanPreview {
    struct Entry {
        std::string path;
        std::uint64_t size = 0;  ///< bytes, as the clean would count them
        auto operator<=>(const Entry&) const = default;
    };
    struct Kept {
        std::string path;
        KeptReason reason = KeptReason::Hidden;
        std::string by;  ///< the protecting path, where there is one
    };

    /// What a part of the clean would do.
    struct Part {
        CleanPart part;
        std::uint64_t wouldFree = 0;  ///< bytes
        std::size_t entries = 0;      ///< how many of the entries are its own
        auto operator<=>(const Part&) const = default;
    };

    std::uint64_t wouldFree = 0;  ///< bytes the clean would report
    std::vector<Entry> entries;   ///< in the order in which they would go
    std::vector<Kept> kept;       ///< each once
    std::vector<Part> parts;      ///< one after the other, as their entries stand in `entries`
};

}  // namespace sweepwright
