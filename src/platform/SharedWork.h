#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace sweepwright::platform {

/// Work on a tree, shared among threads: each works depth-first through what it took and, while
/// the shared queue is shorter than twice the number of threads, gives away its oldest directories,
/// which hold the most, but keeps one for itself: what it has open leads there. The caller's thread
/// is one of them; others start only when a tree proves large, so that a small one costs no thread.
template <class Item>
class SharedWork {
  public:
    explicit SharedWork(unsigned threads) : threads_(threads) {}

    /// Runs `makeWorker()(item, *this)` on every thread for every item until none is left; returns
    /// when all is done. A worker may give() further items.
    template <class MakeWorker>
    void run(Item first, const MakeWorker& makeWorker) {
        startThread_ = [this, &makeWorker] {
            return std::thread([this, &makeWorker] { work(makeWorker); });
        };
        queue_.push_back(std::move(first));
        queued_ = 1;
        work(makeWorker);
        for (std::thread& thread : helpers_)
            thread.join();
    }

    /// Whether a worker should give away work now; asked after every directory.
    [[nodiscard]] bool wantsMore() {
        if (threads_ < 2 || queued_.load(std::memory_order_relaxed) >= std::size_t{2} * threads_)
            return false;
        return asked_.load(std::memory_order_relaxed) >= kSmallTree ||
               asked_.fetch_add(1, std::memory_order_relaxed) >= kSmallTree;
    }

    void give(Item item) {
        const std::lock_guard lock(mutex_);
        queue_.push_back(std::move(item));
        queued_.store(queue_.size(), std::memory_order_relaxed);
        if (idle_ > 0) {
            arrived_.notify_one();
        } else if (helpers_.size() + 1 < threads_) {
            startHelper();
        }
    }

  private:
    /// Directories that one thread has done before a start of others pays.
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
        arrived_.wait(lock, [this] { return !queue_.empty() || idle_ == helpers_.size() + 1; });
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

    void startHelper() {
        try {
            helpers_.push_back(startThread_());
        } catch (const std::system_error&) {
            threads_ = static_cast<unsigned>(helpers_.size()) + 1;  // go on with what there is
        }
    }

    std::atomic<unsigned> threads_;
    std::atomic<unsigned> asked_{0};
    std::atomic<std::size_t> queued_{0};
    std::mutex mutex_;
    std::condition_variable arrived_;
    std::deque<Item> queue_;
    std::vector<std::thread> helpers_;
    std::size_t idle_ = 0;
    std::function<std::thread()> startThread_;
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
