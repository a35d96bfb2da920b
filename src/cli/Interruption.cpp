#include "cli/Interruption.h"

#include <cstdlib>
#include <utility>

#include "cli/Failure.h"
#include "platform/log/Log.h"

namespace sweepwright::cli {

Interruption::Interruption(std::function<void()> tidy)
    : tidy_(std::move(tidy)), signals_([this](int signal) { arrived(signal); }) {}

std::optional<int> Interruption::signal() const {
    const std::scoped_lock lock(mutex_);
    return signal_;
}

void Interruption::arrived(int signal) {
    const std::scoped_lock lock(mutex_);
    if (stop_ && !signal_) {
        signal_ = signal;
        stop_();
        return;
    }
    tidy_();
    platform::flushLog();
    std::_Exit(kSignalBase + signal);
}

Interruption::Stoppable::Stoppable(Interruption& interruption, std::function<void()> stop)
    : Stoppable(interruption, std::move(stop), [] {}) {}

Interruption::Stoppable::Stoppable(Interruption& interruption, std::function<void()> stop,
                                   const std::function<void()>& start)
    : interruption_(interruption) {
    const std::scoped_lock lock(interruption_.mutex_);
    start();
    interruption_.stop_ = std::move(stop);
}

Interruption::Stoppable::~Stoppable() {
    const std::scoped_lock lock(interruption_.mutex_);
    interruption_.stop_ = nullptr;
}

}  // namespace sweepwright::cli
