#include "platform/queue/Crew.h"

#include <algorithm>
#include <ctime>
#include <limits>
#include <utility>

#include <sys/resource.h>

#include "platform/queue/internal/WorkerQueue.h"

namespace sweepwright::platform {

namespace {

std::chrono::nanoseconds processorTimeOfThisThread() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// A thread of a removal keeps up to 30 directories open. Half of what the process may open is left
/// for everything else.
unsigned threadsWithinDescriptors() {
    constexpr rlim_t kForAThread = 64;
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return 1;
    return static_cast<unsigned>(
        std::clamp<rlim_t>(limit.rlim_cur / kForAThread, 1, Crew::kMostThreads));
}

}  // namespace

Crew::Crew()
    : mostThreads_(threadsWithinDescriptors()),
      threads_(std::make_unique<WorkerQueue>("com.sweepwright.crew",
                                             std::numeric_limits<std::size_t>::max())) {}
Crew::~Crew() = default;

bool Crew::help(DispatchQueue::Job task) {
    if (!canStart_) return false;
    if (busy_.fetch_add(1) < kMostThreads - 1) {
        const bool helps = threads_->asyncAtOnce([this, task = std::move(task)] {
            task();
            --busy_;
        });
        if (helps) return true;
        canStart_ = false;
    }
    --busy_;
    return false;
}

bool Helpers::add(DispatchQueue::Job task) {
    {
        const std::lock_guard lock(mutex_);
        ++count_;
    }
    const auto leave = [this] {
        const std::lock_guard lock(mutex_);
        --count_;
        left_.notify_all();
    };
    const bool helps = crew_->help([task = std::move(task), leave] {
        task();
        leave();
    });
    if (!helps) leave();
    return helps;
}

std::size_t Helpers::count() const {
    const std::lock_guard lock(mutex_);
    return count_;
}

void Helpers::wait() {
    std::unique_lock lock(mutex_);
    left_.wait(lock, [this] { return count_ == 0; });
}

bool wereJourneys(int steps, std::chrono::nanoseconds passed, std::chrono::nanoseconds worked) {
    // Waited for by each step: a disk answers sooner, a device over USB or a network does not.
    constexpr std::chrono::microseconds kFar{300};
    const auto waited = passed - worked;
    return waited >= passed / 4 * 3 && waited >= steps * kFar;
}

thread_local Pace* Pace::current_ = nullptr;

Pace::Pace(Crew& crew) : crew_(&crew), outer_(std::exchange(current_, this)) {
    const bool isFirst = outer_ == nullptr || outer_->crew_ != crew_;
    if (isFirst) start(Clock::now());
}

Pace::~Pace() {
    current_ = outer_;
}

void Pace::start(Clock::time_point now) {
    steps_ = 0;
    since_ = now;
    worked_ = processorTimeOfThisThread();
}

void Pace::step() {
    if (outer_ != nullptr && outer_->crew_ == crew_) return outer_->step();
    ++steps_;
    const auto now = Clock::now();
    const auto passed = now - since_;
    if (passed < kSample || steps_ < kFewestSteps) return;
    crew_->setFar(wereJourneys(steps_, passed, processorTimeOfThisThread() - worked_));
    start(now);
}

}  // namespace sweepwright::platform
