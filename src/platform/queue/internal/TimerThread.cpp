#include "platform/queue/internal/TimerThread.h"

#include <algorithm>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace sweepwright::platform {

struct TimerScope::State {
    std::mutex mutex;
    std::condition_variable fired;
    bool open = true;
    bool firing = false;

    // The lock is not held meanwhile: what fires may take locks under which others schedule.
    void run(const std::function<void()>& fire) {
        {
            const std::scoped_lock lock(mutex);
            if (!open) return;
            firing = true;
        }
        fire();
        const std::scoped_lock lock(mutex);
        firing = false;
        fired.notify_all();
    }
};

namespace {

using Clock = std::chrono::steady_clock;

/// Far enough for anybody, near enough that no sum of time points overflows.
constexpr std::chrono::milliseconds kLongestDelay = std::chrono::hours(24 * 365);

class TimerThread {
  public:
    using Fire = std::function<void()>;

    /// Never destroyed: its thread may still wait when the process ends.
    static TimerThread& shared() {
        static auto* const thread = new TimerThread;
        return *thread;
    }

    void schedule(Clock::time_point when, const void* owner, Fire fire) {
        const std::scoped_lock lock(mutex_);
        if (!started_) {
            std::thread([this] { run(); }).detach();
            started_ = true;
        }
        const auto at = timers_.emplace(when, Timer{owner, std::move(fire)});
        if (at == timers_.begin()) changed_.notify_one();
    }

    void cancel(const void* owner) {
        std::vector<Fire> dropped;  // destroyed outside the lock: what they hold may set timers
        const std::scoped_lock lock(mutex_);
        if (timers_.empty()) return;
        for (auto at = timers_.begin(); at != timers_.end();) {
            if (at->second.owner == owner) {
                dropped.push_back(std::move(at->second.fire));
                at = timers_.erase(at);
            } else {
                ++at;
            }
        }
    }

  private:
    struct Timer {
        const void* owner;
        Fire fire;
    };

    [[noreturn]] void run() {
        std::unique_lock lock(mutex_);
        for (;;) {
            if (timers_.empty()) {
                changed_.wait(lock);
                continue;
            }
            const auto first = timers_.begin();
            if (const auto when = first->first; when > Clock::now()) {
                changed_.wait_until(lock, when);
                continue;
            }
            Fire fire = std::move(first->second.fire);
            timers_.erase(first);
            lock.unlock();
            fire();
            fire = nullptr;
            lock.lock();
        }
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::multimap<Clock::time_point, Timer> timers_;
    bool started_ = false;
};

}  // namespace

TimerScope::TimerScope() : state_(std::make_shared<State>()) {}

TimerScope::~TimerScope() {
    close();
}

void TimerScope::schedule(std::chrono::milliseconds delay, std::function<void()> fire) {
    {
        const std::scoped_lock lock(state_->mutex);
        if (!state_->open) return;
    }
    const auto when =
        Clock::now() + std::clamp(delay, std::chrono::milliseconds::zero(), kLongestDelay);
    TimerThread::shared().schedule(when, state_.get(),
                                   [state = state_, fire = std::move(fire)] { state->run(fire); });
}

void TimerScope::close() {
    {
        std::unique_lock lock(state_->mutex);
        if (!std::exchange(state_->open, false)) return;
        state_->fired.wait(lock, [&] { return !state_->firing; });
    }
    TimerThread::shared().cancel(state_.get());
}

}  // namespace sweepwright::platform
