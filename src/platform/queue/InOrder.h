#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <type_traits>
#include <utility>

#include "platform/queue/Crew.h"

namespace sweepwright::platform {

/// Work on items whose outcomes are told in the items' order. On a far device several items are
/// worked on at once; else, and without a crew, one after the other.
template <class Item, class Outcome>
class InOrder {
  public:
    /// `crew` may be none; else it must outlive this.
    explicit InOrder(Crew* crew) : crew_(crew) {
        if (crew != nullptr) helpers_.emplace(*crew);
    }

    /// Until `next()` gives no item: works with `work(item)`, on several threads where there is a
    /// crew, and tells `done(item, outcome)`. The caller's thread asks for items and tells of them;
    /// one after the other, an item is asked for when the one before has been told of.
    template <class Next, class Work, class Done>
    void run(Next next, const Work& work, const Done& done) {
        std::optional<Pace> pace;
        if (crew_ != nullptr) pace.emplace(*crew_);
        while (fill(next)) {
            while (slots_.size() > 1 && helpers_->count() + 1 < slots_.size() &&
                   helpers_->add([this, &work]() noexcept { help(work); })) {
            }
            Slot& first = slots_.front();
            if (takeFirst(first)) first.outcome.emplace(work(std::as_const(first.item)));
            done(std::as_const(first.item), std::move(*first.outcome));
            const std::lock_guard lock(mutex_);
            slots_.pop_front();
        }
        if (helpers_) helpers_->wait();
    }

  private:
    struct Slot {
        Item item;
        std::optional<Outcome> outcome{};
        bool isTaken = false;
    };

    /// Whether there is an item to tell of.
    template <class Next>
    bool fill(Next& next) {
        const std::size_t width = crew_ != nullptr && crew_->isFar() ? crew_->mostThreads() : 1;
        while (!ended_ && slots_.size() < width) {
            std::optional<Item> item = next();
            ended_ = !item;
            if (ended_) break;
            const std::lock_guard lock(mutex_);
            slots_.push_back({*std::move(item)});
        }
        return !slots_.empty();
    }

    template <class Work>
    void help(const Work& work) {
        const Pace pace(*crew_);
        std::unique_lock lock(mutex_);
        while (Slot* slot = waiting()) {
            slot->isTaken = true;
            lock.unlock();
            Outcome outcome = work(std::as_const(slot->item));
            lock.lock();
            slot->outcome.emplace(std::move(outcome));
            finished_.notify_one();
        }
    }

    Slot* waiting() {
        for (Slot& slot : slots_)
            if (!slot.isTaken) return &slot;
        return nullptr;
    }

    /// Whether the first item is the caller's to work on; if not, waits until a helper has done so.
    bool takeFirst(Slot& first) {
        std::unique_lock lock(mutex_);
        if (!std::exchange(first.isTaken, true)) return true;
        finished_.wait(lock, [&first] { return first.outcome.has_value(); });
        return false;
    }

    Crew* crew_;
    bool ended_ = false;
    std::mutex mutex_;
    std::condition_variable finished_;
    std::deque<Slot> slots_;  ///< in order; what is in them does not move
    std::optional<Helpers> helpers_;
};

}  // namespace sweepwright::platform
