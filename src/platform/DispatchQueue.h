#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace sweepwright::platform {

/// A queue of jobs. A job may not throw: one that does is logged and the queue goes on.
/// Destroying a queue waits for the jobs that already run and for those already posted.
class DispatchQueue {
  public:
    using Job = std::function<void()>;

    /// Jobs run one after another, in the order posted, never two at once.
    static std::unique_ptr<DispatchQueue> serial(std::string label);

    /// Jobs run side by side. A job that blocks, even on another job of the same queue, never
    /// starves it: the queue grows by a thread when jobs wait and none of its threads is free, and
    /// shrinks again when they idle.
    static std::unique_ptr<DispatchQueue> concurrent(std::string label);

    virtual ~DispatchQueue() = default;
    DispatchQueue(const DispatchQueue&) = delete;
    DispatchQueue& operator=(const DispatchQueue&) = delete;

    [[nodiscard]] const std::string& label() const { return label_; }

    /// Posts `job` and returns at once.
    virtual void async(Job job) = 0;

    /// Posts `job` and returns when it has run. On a serial queue, not from one of its own jobs.
    void sync(const Job& job);

    /// Posts `job` when `delay` has passed.
    void after(std::chrono::milliseconds delay, Job job);

  protected:
    explicit DispatchQueue(std::string label) : label_(std::move(label)) {}

  private:
    std::string label_;
};

/// The main queue: its jobs wait until whichever main loop runs takes them.
class MainQueue : public DispatchQueue {
  public:
    MainQueue();
    ~MainQueue() override;

    /// The process's one main queue.
    static MainQueue& shared();

    void async(Job job) override;

    /// `wake` is called, on the poster's thread, whenever a job arrives in an empty queue: a main
    /// loop of another make (Qt's) arranges there that drain() runs on its thread. An empty
    /// function takes the hook away.
    void setHook(std::function<void()> wake);

    /// Runs, on the caller's thread, the jobs that wait now; returns how many.
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
