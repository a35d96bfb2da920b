#pragma once

#include <memory>
#include <mutex>
#include <utility>

namespace sweepwright {

/// An immutable value that is replaced as a whole: a reader goes on with the one it got, whatever
/// is set meanwhile. Thread-safe.
template <class T>
class Snapshot {
  public:
    [[nodiscard]] std::shared_ptr<const T> get() const {
        const std::scoped_lock lock(mutex_);
        return value_;
    }

    void set(T value) {
        auto next = std::make_shared<const T>(std::move(value));
        const std::scoped_lock lock(mutex_);
        value_.swap(next);
    }

  private:
    mutable std::mutex mutex_;
    std::shared_ptr<const T> value_ = std::make_shared<const T>();
};

}  // namespace sweepwright
