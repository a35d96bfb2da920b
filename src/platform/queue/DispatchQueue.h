#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace sweepwright::platform {

class TimerScope;

/// A queue of jobs. A job may not throw: one that does is logged and the queue goes on.
/// Destroying a queue drops its pending timers and waits for the jobs that already run and for
/// those already posted; it may not be done by one of its own jobs.
class DispatchQueue {
  public:
    using Job = std::function<void()>;

    /// Jobs run one after another, in the order posted, never two at once.
    static std::unique_ptr<DispatchQueue> serial(std::string label);

    /// Jobs run side by side. A job that blocks, even on another job of the same queue, never
    /// starves it: the queue grows when jobs wait and none of its threads is free, at once up to
    /// one thread a core and beyond that whenever no waiting job was taken for some milliseconds,
    /// and shrinks again when its threads idle.
    static std::unique_ptr<DispatchQueue> concurrent(std::string label);

    virtual ~DispatchQueue();
    DispatchQueue(const DispatchQueue&) = delete;
    DispatchQueue& operator=(const DispatchQueue&) = delete;

    [[nodiscard]] const std::string& label() const { return label_; }

    /// Posts `job` and returns at once.
    virtual void async(Job job) = 0;

    /// Posts `job` and returns when it has run. On a serial queue, not from one of its own jobs.
    void sync(const Job& job);

    /// Posts `job` when `delay` has passed. Timers that are due in the same order as they were set
    /// are posted in that order.
    void after(std::chrono::milliseconds delay, Job job);

  protected:
    explicit DispatchQueue(std::string label);

    /// Drops the pending timers; once it has returned none of them posts. The first thing that the
    /// destructor of a class which implements async() does.
    void endTimers();

    /// Runs `job` on this thread; what it throws is logged.
    void run(const Job& job) const;

  private:
    std::string label_;
    std::unique_ptr<TimerScope> timers_;
};

/// The main queue: its jobs wait until whichever main loop runs takes them. Jobs that still wait
/// when it is destroyed are dropped.
class MainQueue : public DispatchQueue {
  public:
    MainQueue();
    ~MainQueue() override;

    /// The process's one main queue.
    static MainQueue& shared();

    void async(Job job) override;

    /// `wake` is called, on the poster's thread, whenever a job arrives in an empty queue, and at
    /// once when jobs wait already: a main loop of another make (Qt's) arranges there that drain()
    /// runs on its thread. An empty function takes the hook away; once that has returned, the hook
    /// does not run any more. The hook may post, but not wait for the loop it wakes.
    void setHook(std::function<void()> wake);

    /// Runs, on the caller's thread, the jobs that wait now; returns how many. Jobs that arrive
    /// meanwhile are left to a further call, for which the hook asks. A job may drain in turn.
    std::size_t drain();

    /// Runs jobs as they come until `done` answers true; it is asked after every job. This is the
    /// main loop of a program without another one. wake() makes it ask again.
    void runUntil(const std::function<bool()>& done);
    void wake();

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace sweepwright::platform
