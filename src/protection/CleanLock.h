#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/files/FileManager.h"

namespace sweepwright {

/// Says which process cleans a device: a lock on "<user defaults>.cleaning", which holds the name
/// and number of the process that has it. The system takes it from a process that ends, however it
/// ends. Lists and history are not held back by it; they have the user defaults' own lock.
///
/// Within a process cleans share it: it is taken by the first and given back by the last, and none
/// waits for another. Nothing that a clean promises rests on it, so that where the file can't be
/// made (a read-only or full disk, a folder of another) cleans run without, and say so in the log.
/// Thread-safe.
class CleanLock {
  public:
    static constexpr const char* kErrorDomain = "CleanLock";
    static constexpr std::int64_t kHeld = 1;

    /// The lock is on device path `file`, whose directory is made if absent. `files` must outlive
    /// this.
    CleanLock(platform::FileManager& files, std::string file);

    /// The one of Device::current(), made on first use.
    static CleanLock& sharedLock();
    /// The lock's file for user defaults at `userDefaultsFile`.
    static std::string fileBeside(const std::string& userDefaultsFile);

    /// A clean's share; given back when destroyed.
    class Share {
      public:
        explicit Share(CleanLock& lock) : lock_(&lock) {}

      private:
        struct GiveBack {
            void operator()(CleanLock* lock) const { lock->giveBack(); }
        };
        std::unique_ptr<CleanLock, GiveBack> lock_;
    };

    /// A share for a clean that begins; an error of kErrorDomain, which names the other process in
    /// one line, when that one cleans. Does not wait.
    platform::Result<Share> share();

  private:
    void giveBack();
    [[nodiscard]] platform::Error heldByAnother() const;

    platform::FileManager& files_;
    std::string file_;
    std::mutex mutex_;
    std::size_t shares_ = 0;
    std::optional<platform::FileLock> held_;
};

}  // namespace sweepwright
