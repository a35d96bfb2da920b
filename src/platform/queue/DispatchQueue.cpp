#include "platform/queue/DispatchQueue.h"

#include <condition_variable>
#include <exception>
#include <limits>
#include <mutex>

#include "platform/log/Log.h"
#include "platform/queue/internal/TimerThread.h"
#include "platform/queue/internal/WorkerQueue.h"

namespace sweepwright::platform {

DispatchQueue::DispatchQueue(std::string label)
    : label_(std::move(label)), timers_(std::make_unique<TimerScope>()) {}

DispatchQueue::~DispatchQueue() = default;

std::unique_ptr<DispatchQueue> DispatchQueue::serial(std::string label) {
    return std::make_unique<WorkerQueue>(std::move(label), 1);
}

std::unique_ptr<DispatchQueue> DispatchQueue::concurrent(std::string label) {
    return std::make_unique<WorkerQueue>(std::move(label), std::numeric_limits<std::size_t>::max());
}

void DispatchQueue::sync(const Job& job) {
    // Shared, so that the worker may still be leaving notify_one() when the caller has gone on.
    struct Completion {
        std::mutex mutex;
        std::condition_variable changed;
        bool done = false;
    };
    const auto completion = std::make_shared<Completion>();
    async([this, &job, completion] {
        run(job);
        const std::scoped_lock lock(completion->mutex);
        completion->done = true;
        completion->changed.notify_one();
    });
    std::unique_lock lock(completion->mutex);
    completion->changed.wait(lock, [&] { return completion->done; });
}

void DispatchQueue::after(std::chrono::milliseconds delay, Job job) {
    timers_->schedule(delay, [this, job = std::move(job)]() mutable { async(std::move(job)); });
}

void DispatchQueue::endTimers() {
    timers_->close();
}

void DispatchQueue::run(const Job& job) const {
    try {
        job();
    } catch (const std::exception& thrown) {
        log("❌ 队列 {} 的任务抛出异常: {}", label_, thrown.what());
    } catch (...) {
        log("❌ 队列 {} 的任务抛出异常: {}", label_, "?");
    }
}

}  // namespace sweepwright::platform
