#pragma once

#include <functional>
#include <memory>

namespace sweepwright::platform {

/// Hears of SIGINT and SIGTERM while it lives, one instance at a time. Commands started meanwhile
/// get the usual meaning of both back. It also makes writing into a closed pipe an error instead of
/// the program's end, so that a clean is never cut off because nobody reads its progress.
class InterruptSignals {
  public:
    /// `onSignal` runs on a thread of this object, once for each signal, with its number; it may
    /// lock and allocate.
    explicit InterruptSignals(std::function<void(int signal)> onSignal);
    ~InterruptSignals();
    InterruptSignals(const InterruptSignals&) = delete;
    InterruptSignals& operator=(const InterruptSignals&) = delete;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace sweepwright::platform
