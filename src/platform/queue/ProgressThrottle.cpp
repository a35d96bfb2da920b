#include "platform/queue/ProgressThrottle.h"

#include <mutex>
#include <optional>
#include <utility>

namespace sweepwright::platform {

using std::chrono::steady_clock;

/// Shared with the jobs posted, which may run after the throttle has gone.
struct ProgressThrottle::State : std::enable_shared_from_this<State> {
    struct Call {
        std::string text;
        double fraction = 0;
    };

    State(DispatchQueue& target, Progress receiver, Clock time)
        : queue(target), progress(std::move(receiver)), clock(std::move(time)) {}

    DispatchQueue& queue;
    const Progress progress;
    const Clock clock;

    // Posting happens under the lock, so that two threads' calls arrive as they were admitted.
    std::mutex mutex;
    std::optional<steady_clock::time_point> lastPost;
    std::optional<Call> held;
    bool timerSet = false;

    void postLocked(Call call, steady_clock::time_point now) {
        lastPost = now;
        held.reset();
        queue.async([self = shared_from_this(), call = std::move(call)] {
            self->progress(call.text, call.fraction);
        });
    }

    void setTimerLocked(steady_clock::duration delay) {
        timerSet = true;
        queue.after(std::chrono::ceil<std::chrono::milliseconds>(delay),
                    [self = shared_from_this()] { self->timeIsUp(); });
    }

    /// Runs on the queue.
    void timeIsUp() {
        Call call;
        {
            const std::scoped_lock lock(mutex);
            timerSet = false;
            if (!held) return;
            const auto now = clock();
            if (const auto due = *lastPost + kInterval; due > now) return setTimerLocked(due - now);
            lastPost = now;
            call = *std::exchange(held, std::nullopt);
        }
        progress(call.text, call.fraction);
    }
};

ProgressThrottle::ProgressThrottle(DispatchQueue& queue, Progress progress, Clock clock)
    : state_(std::make_shared<State>(queue, std::move(progress), std::move(clock))) {}

void ProgressThrottle::report(std::string text, double fraction) {
    if (!state_->progress) return;
    const std::scoped_lock lock(state_->mutex);
    const auto now = state_->clock();
    State::Call call{std::move(text), fraction};
    if (!state_->lastPost || now - *state_->lastPost >= kInterval) {
        return state_->postLocked(std::move(call), now);
    }
    state_->held = std::move(call);
    if (!state_->timerSet) state_->setTimerLocked(*state_->lastPost + kInterval - now);
}

void ProgressThrottle::flush() {
    const std::scoped_lock lock(state_->mutex);
    if (state_->held) state_->postLocked(std::move(*state_->held), state_->clock());
}

}  // namespace sweepwright::platform
