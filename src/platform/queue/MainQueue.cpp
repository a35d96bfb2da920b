#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/queue/DispatchQueue.h"

namespace sweepwright::platform {

struct MainQueue::State {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Job> jobs;
    bool woken = false;

    /// Held while the hook runs, so that taking it away waits; recursive, because a hook may post.
    std::recursive_mutex hookMutex;
    std::function<void()> hook;

    void callHook() {
        const std::scoped_lock lock(hookMutex);
        if (hook) hook();
    }

    std::optional<Job> take() {
        const std::scoped_lock lock(mutex);
        return takeLocked();
    }

    std::optional<Job> takeLocked() {
        if (jobs.empty()) return std::nullopt;
        Job job = std::move(jobs.front());
        jobs.pop_front();
        return job;
    }

    std::size_t waiting() {
        const std::scoped_lock lock(mutex);
        return jobs.size();
    }
};

MainQueue::MainQueue() : DispatchQueue("main"), state_(std::make_unique<State>()) {}

MainQueue::~MainQueue() {
    endTimers();
}

MainQueue& MainQueue::shared() {
    static auto* const queue = new MainQueue;  // never destroyed: workers may post until the end
    return *queue;
}

void MainQueue::async(Job job) {
    bool first = false;
    {
        const std::scoped_lock lock(state_->mutex);
        first = state_->jobs.empty();
        state_->jobs.push_back(std::move(job));
        state_->changed.notify_all();
    }
    if (first) state_->callHook();
}

void MainQueue::setHook(std::function<void()> wake) {
    const std::scoped_lock lock(state_->hookMutex);
    state_->hook = std::move(wake);
    if (state_->waiting() > 0) state_->callHook();
}

std::size_t MainQueue::drain() {
    // Counted first: a job that posts itself again must not keep the loop from its other work.
    const std::size_t now = state_->waiting();
    std::size_t ran = 0;
    while (ran < now) {
        const auto job = state_->take();
        if (!job) break;
        run(*job);
        ++ran;
    }
    if (ran > 0 && state_->waiting() > 0) state_->callHook();
    return ran;
}

void MainQueue::runUntil(const std::function<bool()>& done) {
    while (!done()) {
        std::optional<Job> job;
        {
            std::unique_lock lock(state_->mutex);
            state_->changed.wait(lock, [&] { return state_->woken || !state_->jobs.empty(); });
            state_->woken = false;
            job = state_->takeLocked();
        }
        if (job) run(*job);
    }
}

void MainQueue::wake() {
    const std::scoped_lock lock(state_->mutex);
    state_->woken = true;
    state_->changed.notify_all();
}

}  // namespace sweepwright::platform
