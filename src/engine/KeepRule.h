#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "engine/CleanObserver.h"

namespace sweepwright {

/// An entry of which is asked whether it stays. What takes a system call is asked last.
class EntryInQuestion {
  public:
    EntryInQuestion(std::string_view name, std::string path)
        : name_(name), path_(std::move(path)) {}
    virtual ~EntryInQuestion() = default;

    [[nodiscard]] std::string_view name() const { return name_; }
    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] virtual bool isProtected() const = 0;
    [[nodiscard]] virtual bool isLink() const { return false; }

  private:
    std::string_view name_;
    std::string path_;
};

// For what an entry stays, in the order asked, by where it lies. Beside that mount points stay,
// with the folders that lead to them: whoever removes keeps them. In an app's caches only what is
// protected stays (apps/AppCleaning).

/// Directly in a folder that is emptied.
inline constexpr std::array kKeptInFolder{KeptReason::Hidden, KeptReason::Protected,
                                          KeptReason::Link, KeptReason::Database, KeptReason::Maps};
/// Among the side files of databases.
inline constexpr std::array kKeptSideFiles{KeptReason::Hidden, KeptReason::Protected,
                                           KeptReason::Link};
/// Among the caches that apps share.
inline constexpr std::array kKeptSharedCaches{KeptReason::OwnFolder, KeptReason::Protected,
                                              KeptReason::Maps};
/// The same in a deep clean: what is protected measures 0 and stays by that.
inline constexpr std::array kKeptByDeepClean{KeptReason::OwnFolder, KeptReason::Maps};
/// The first of `asked` for which the entry stays; none when it may go. Database and link are meant
/// by its name and type, Failed, MountPoint and RecentSideFile are never an answer.
std::optional<KeptReason> reasonToKeep(const EntryInQuestion& entry,
                                       std::span<const KeptReason> asked);

/// Logs that `path` stays, where the log tells of that reason.
void logKept(const std::string& path, KeptReason reason);

}  // namespace sweepwright
