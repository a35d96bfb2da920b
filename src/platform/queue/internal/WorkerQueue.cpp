#include "platform/queue/internal/WorkerQueue.h"

#include <algorithm>
#include <chrono>
#include <system_error>
#include <utility>

#include <pthread.h>

#include "platform/log/Log.h"

namespace sweepwright::platform {

namespace {

/// How long a thread waits for a job before it ends.
constexpr std::chrono::milliseconds kIdleTime{1000};

/// Jobs that wait this long with none of them taken wait for blocked threads, not for busy ones.
constexpr std::chrono::milliseconds kStallTime{2};
/// With as many threads as this a further one is more likely to crowd than to help.
constexpr std::size_t kManyThreads = 64;
constexpr std::chrono::milliseconds kStallTimeOfMany{50};

std::size_t threadsAtOnce() {
    static const std::size_t count = std::max(2U, std::thread::hardware_concurrency());
    return count;
}

/// The label's end tells more than its start; a thread's name holds 15 bytes.
void nameThread(const std::string& label) {
    constexpr std::size_t kLongest = 15;
    const std::size_t from = label.size() > kLongest ? label.size() - kLongest : 0;
    pthread_setname_np(pthread_self(), label.c_str() + from);
}

}  // namespace

WorkerQueue::WorkerQueue(std::string label, std::size_t limit)
    : DispatchQueue(std::move(label)), limit_(limit) {}

WorkerQueue::~WorkerQueue() {
    endTimers();
    {
        std::unique_lock lock(mutex_);
        quiet_.wait(lock, [&] { return jobs_.empty() && idle_ == threads_.size(); });
        closing_ = true;
        arrived_.notify_all();
        quiet_.wait(lock, [&] { return threads_.empty(); });
    }
    stalls_.close();
    for (std::thread& thread : retired_)
        thread.join();
}

void WorkerQueue::async(Job job) {
    Threads ended;
    {
        const std::scoped_lock lock(mutex_);
        jobs_.push_back(std::move(job));
        if (needsThread()) growLocked();
        arrived_.notify_one();
        ended.swap(retired_);
    }
    for (std::thread& thread : ended)
        thread.join();
}

bool WorkerQueue::asyncAtOnce(Job job) {
    Threads ended;
    {
        const std::scoped_lock lock(mutex_);
        const bool isFree = jobs_.size() < idle_;
        if (!isFree && (threads_.size() >= limit_ || !startThreadLocked())) return false;
        jobs_.push_back(std::move(job));
        arrived_.notify_one();
        ended.swap(retired_);
    }
    for (std::thread& thread : ended)
        thread.join();
    return true;
}

void WorkerQueue::growLocked() {
    if (threads_.size() >= limit_) return;
    if (threads_.size() < threadsAtOnce() && startThreadLocked()) return;
    watchForStallLocked();
}

bool WorkerQueue::startThreadLocked() {
    const auto place = threads_.emplace(threads_.end());
    try {
        *place = std::thread([this, place] { work(place); });
    } catch (const std::system_error& error) {
        threads_.erase(place);
        log("⚠️ 队列 {} 无法启动线程: {}", label(), error.what());
        return false;
    }
    ++idle_;
    return true;
}

void WorkerQueue::watchForStallLocked() {
    if (std::exchange(watching_, true)) return;
    takenThen_ = taken_;
    stalls_.schedule(threads_.size() < kManyThreads ? kStallTime : kStallTimeOfMany,
                     [this] { growIfStalled(); });
}

void WorkerQueue::growIfStalled() {
    const std::scoped_lock lock(mutex_);
    watching_ = false;
    if (!needsThread() || threads_.size() >= limit_) return;
    if (taken_ == takenThen_) startThreadLocked();
    if (needsThread() && threads_.size() < limit_) watchForStallLocked();
}

void WorkerQueue::work(Threads::iterator self) {
    nameThread(label());
    std::unique_lock lock(mutex_);
    while (arrived_.wait_for(lock, kIdleTime, [&] { return closing_ || !jobs_.empty(); }) &&
           !jobs_.empty()) {
        Job job = std::move(jobs_.front());
        jobs_.pop_front();
        --idle_;
        ++taken_;
        lock.unlock();
        run(job);
        job = nullptr;
        lock.lock();
        ++idle_;
        if (jobs_.empty() && idle_ == threads_.size()) quiet_.notify_all();
    }
    --idle_;
    retired_.splice(retired_.end(), threads_, self);
    quiet_.notify_all();
}

}  // namespace sweepwright::platform
