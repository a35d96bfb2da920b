#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/base/Error.h"
#include "platform/device/UserDefaults.h"

namespace sweepwright {

/// The running totals of all successful cleans, kept in the user defaults under
/// "totalCleanedBytes", "cleanCount" and "lastCleanDate". Thread-safe, and safe against other
/// processes.
class CleanStatistics {
  public:
    using Now = std::function<std::chrono::system_clock::time_point()>;

    struct Totals {
        std::uint64_t totalCleanedBytes = 0;
        std::int64_t cleanCount = 0;
        std::optional<std::string> lastCleanDate;  ///< "yyyy-MM-dd HH:mm:ss", local time
    };

    /// The one of UserDefaults::standard(), made on first use.
    static CleanStatistics& sharedStatistics();

    /// `defaults` must outlive this; `now` answers what time it is.
    explicit CleanStatistics(platform::UserDefaults& defaults,
                             Now now = std::chrono::system_clock::now);

    /// Adds one clean that freed `bytes`, all three keys in one durable change. Errors are logged.
    platform::Result<> recordClean(std::uint64_t bytes);

    /// What is stored now; what is absent or of another type reads as 0 or none.
    [[nodiscard]] Totals totals() const;

  private:
    platform::UserDefaults& defaults_;
    Now now_;
};

}  // namespace sweepwright
