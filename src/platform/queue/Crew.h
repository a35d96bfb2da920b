#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>

#include "platform/queue/DispatchQueue.h"

namespace sweepwright::platform {

class WorkerQueue;

/// The threads that the walks and removals of a job share: they start when first needed and stay
/// for what comes next. With them stays what the job has found out about the device. Thread-safe.
class Crew {
  public:
    /// No more work at once, the caller's own thread among them.
    static constexpr unsigned kMostThreads = 16;

    Crew();
    ~Crew();
    Crew(const Crew&) = delete;
    Crew& operator=(const Crew&) = delete;

    /// Runs `task`, which may not throw, on a further thread at once; false when all are busy or
    /// none can be started.
    bool help(DispatchQueue::Job task);

    /// Whether the device is far: its calls were lately waited for and not worked on, so that more
    /// threads than processors pay.
    [[nodiscard]] bool isFar() const { return isFar_.load(std::memory_order_relaxed); }
    void setFar(bool isFar) { isFar_.store(isFar, std::memory_order_relaxed); }

    /// How many threads may work for a far device: kMostThreads, or fewer where the process may not
    /// open as many files as they could keep open.
    [[nodiscard]] unsigned mostThreads() const { return mostThreads_; }

    /// How many threads are to work where `near` are enough for a near device.
    [[nodiscard]] unsigned threadsFor(unsigned near) const {
        return isFar() && near > 1 && near < mostThreads_ ? mostThreads_ : near;
    }

  private:
    const unsigned mostThreads_;
    std::atomic<unsigned> busy_{0};
    std::atomic<bool> canStart_{true};  ///< no thread could be started once: none is tried again
    std::atomic<bool> isFar_{false};
    std::unique_ptr<WorkerQueue> threads_;
};

/// Those of a crew that help with one piece of work.
class Helpers {
  public:
    /// `crew` must outlive this.
    explicit Helpers(Crew& crew) : crew_(&crew) {}

    /// Has one more run `task`, as Crew::help() does.
    bool add(DispatchQueue::Job task);
    /// Those that have not returned from their task.
    [[nodiscard]] std::size_t count() const;
    /// Waits until all have. Must be called when one was added.
    void wait();

  private:
    Crew* crew_;
    mutable std::mutex mutex_;
    std::condition_variable left_;
    std::size_t count_ = 0;
};

/// Whether steps that took `passed`, of which their thread worked `worked`, were journeys to a far
/// device. A thread that waited for a processor has many steps behind it when it has had one; one
/// that waited for the device has few.
[[nodiscard]] bool wereJourneys(int steps, std::chrono::nanoseconds passed,
                                std::chrono::nanoseconds worked);

/// Tells a crew, for the thread that it lives on, whether the device is far: how long its steps
/// take against the processor time that they take. One within another of the same crew adds to
/// that.
class Pace {
  public:
    explicit Pace(Crew& crew);
    ~Pace();
    Pace(const Pace&) = delete;
    Pace& operator=(const Pace&) = delete;

    /// A step is done that asks the device something: a folder read, an entry removed.
    void step();

  private:
    using Clock = std::chrono::steady_clock;

    static constexpr std::chrono::milliseconds kSample{20};
    static constexpr int kFewestSteps = 4;

    void start(Clock::time_point now);

    static thread_local Pace* current_;

    Crew* crew_;
    Pace* outer_;
    int steps_ = 0;
    Clock::time_point since_;
    std::chrono::nanoseconds worked_{};  ///< of this thread, until `since_`
};

}  // namespace sweepwright::platform
