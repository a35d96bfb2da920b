#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/queue/Crew.h"

namespace sweepwright::platform {

/// Work on a tree, shared among threads: each works depth-first through what it took and, while
/// the shared queue is shorter than twice the number of threads, gives away its oldest directories,
/// which hold the most, but keeps one for itself: what it has open leads there. The caller's thread
/// is one of them; the crew's help only when a tree proves large, so that a small one costs no
/// thread, or at once where the device is far.
template <class Item>
class SharedWork {
  public:
    /// `threads` at most, as many as the crew has where the device is far; `crew` must outlive
    /// this.
    SharedWork(Crew& crew, unsigned threads) : crew_(crew), threads_(threads), helpers_(crew) {}

    /// Runs `makeWorker()(item, *this)` on every thread for every item until none is left; returns
    /// when all is done. A worker may give() further items, and may not throw.
    template <class MakeWorker>
    void run(Item first, const MakeWorker& makeWorker) {
        help_ = [this, &makeWorker]() noexcept { work(makeWorker); };
        queue_.push_back(std::move(first));
        queued_ = 1;
        work(makeWorker);
        helpers_.wait();
    }

    /// Whether a worker should give away work now; asked after every directory.
    [[nodiscard]] bool wantsMore() {
        const std::size_t threads = crew_.threadsFor(threads_);
        if (threads < 2 || queued_.load(std::memory_order_relaxed) >= 2 * threads) return false;
        return crew_.isFar() || asked_.load(std::memory_order_relaxed) >= kSmallTree ||
               asked_.fetch_add(1, std::memory_order_relaxed) >= kSmallTree;
    }

    void give(Item item) {
        const std::lock_guard lock(mutex_);
        queue_.push_back(std::move(item));
        queued_.store(queue_.size(), std::memory_order_relaxed);
        if (idle_ > 0) {
            arrived_.notify_one();
        } else if (workers_ < crew_.threadsFor(threads_) && helpers_.add(help_)) {
            ++workers_;
        }
    }

  private:
    /// Directories that one thread has done before the help of others pays.
    static constexpr unsigned kSmallTree = 16;

    template <class MakeWorker>
    void work(const MakeWorker& makeWorker) {
        auto worker = makeWorker();
        while (std::optional<Item> item = take())
            worker(std::move(*item), *this);
    }

    std::optional<Item> take() {
        std::unique_lock lock(mutex_);
        ++idle_;
        arrived_.wait(lock, [this] { return !queue_.empty() || idle_ == workers_; });
        if (queue_.empty()) {
            arrived_.notify_all();
            return std::nullopt;
        }
        --idle_;
        Item item = std::move(queue_.front());
        queue_.pop_front();
        queued_.store(queue_.size(), std::memory_order_relaxed);
        return item;
    }

    Crew& crew_;
    const unsigned threads_;
    std::atomic<unsigned> asked_{0};
    std::atomic<std::size_t> queued_{0};
    std::mutex mutex_;
    std::condition_variable arrived_;
    std::deque<Item> queue_;
    std::size_t workers_ = 1;  ///< all that have ever come: they leave only when all idle
    std::size_t idle_ = 0;
    DispatchQueue::Job help_;
    Helpers helpers_;
};

/// Names packed one behind the other: a directory's subdirectories that wait to be visited, at a
/// few bytes each however many there are.
class PackedNames {
  public:
    void add(std::string_view name) { bytes_.append(name).push_back('\0'); }
    [[nodiscard]] bool empty() const { return next_ >= bytes_.size(); }
    [[nodiscard]] bool holdsSeveral() const {
        return !empty() && bytes_.find('\0', next_) + 1 < bytes_.size();
    }
    /// Takes the next name out; not when empty.
    std::string take() {
        std::string name = bytes_.data() + next_;
        next_ += name.size() + 1;
        if (empty()) *this = PackedNames();
        return name;
    }

  private:
    std::string bytes_;
    std::size_t next_ = 0;
};

}  // namespace sweepwright::platform
