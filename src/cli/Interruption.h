#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/process/InterruptSignals.h"

namespace sweepwright::cli {

/// What SIGINT and SIGTERM do. While work that can be stopped is under way the first one asks it to
/// stop after the entry in hand, and the program goes on to its report. At any other time, and the
/// second time, the program ends at once.
class Interruption {
  public:
    /// `tidy` runs, on another thread, before the program ends at once: it takes the progress line
    /// away.
    explicit Interruption(std::function<void()> tidy);

    /// The signal that asked work to stop; none as long as nothing did.
    [[nodiscard]] std::optional<int> signal() const;

    /// While this lives the first signal calls `stop`, on another thread, in place of the end.
    class Stoppable {
      public:
        Stoppable(Interruption& interruption, std::function<void()> stop);
        /// Calls `start` first. A signal that arrives meanwhile takes effect when `start` has
        /// returned, so that `stop` finds work that it can stop.
        Stoppable(Interruption& interruption, std::function<void()> stop,
                  const std::function<void()>& start);
        ~Stoppable();
        Stoppable(const Stoppable&) = delete;
        Stoppable& operator=(const Stoppable&) = delete;

      private:
        Interruption& interruption_;
    };

  private:
    void arrived(int signal);

    mutable std::mutex mutex_;
    std::function<void()> tidy_;
    std::function<void()> stop_;
    std::optional<int> signal_;
    platform::InterruptSignals signals_;  // last: hears nothing before the rest is made
};

}  // namespace sweepwright::cli
