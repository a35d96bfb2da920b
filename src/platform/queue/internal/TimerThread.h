#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace sweepwright::platform {

/// The timers of one owner. They all run on the process's one timer thread, which starts with the
/// first of them. Thread-safe.
class TimerScope {
  public:
    TimerScope();
    /// As close().
    ~TimerScope();
    TimerScope(const TimerScope&) = delete;
    TimerScope& operator=(const TimerScope&) = delete;

    /// Runs `fire`, which must be brief, when `delay` has passed. Does nothing once closed.
    void schedule(std::chrono::milliseconds delay, std::function<void()> fire);

    /// Drops what has not fired. Once it has returned nothing of this scope runs or will run; so it
    /// may not be called from within `fire`.
    void close();

  private:
    struct State;
    std::shared_ptr<State> state_;
};

}  // namespace sweepwright::platform
