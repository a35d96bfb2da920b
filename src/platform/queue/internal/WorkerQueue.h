#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <list>
#include <mutex>
#include <string>
#include <thread>

#include "platform/queue/DispatchQueue.h"
#include "platform/queue/internal/TimerThread.h"

namespace sweepwright::platform {

/// A queue with threads of its own, which start when jobs come and end when they have idled: what
/// DispatchQueue::serial() and concurrent() make.
class WorkerQueue final : public DispatchQueue {
  public:
    /// Runs at most `limit` jobs at once.
    WorkerQueue(std::string label, std::size_t limit);
    ~WorkerQueue() override;

    void async(Job job) override;

    /// Posts `job` only if a thread is free to take it at once, or can be started for it.
    bool asyncAtOnce(Job job);

  private:
    using Threads = std::list<std::thread>;

    [[nodiscard]] bool needsThread() const { return jobs_.size() > idle_; }
    void growLocked();
    bool startThreadLocked();
    void watchForStallLocked();
    void growIfStalled();
    void work(Threads::iterator self);

    const std::size_t limit_;

    std::mutex mutex_;
    std::condition_variable arrived_;
    std::condition_variable quiet_;
    std::deque<Job> jobs_;
    Threads threads_;
    Threads retired_;              ///< have left their loop and wait to be joined
    std::size_t idle_ = 0;         ///< of threads_, those without a job
    std::uint64_t taken_ = 0;      ///< jobs taken so far
    bool watching_ = false;        ///< whether growIfStalled() is due
    std::uint64_t takenThen_ = 0;  ///< taken_ when the watch began
    bool closing_ = false;

    TimerScope stalls_;
};

}  // namespace sweepwright::platform
