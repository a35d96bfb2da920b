#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace sweepwright::test {

/// Where threads wait until so many have come; later ones pass.
class Meeting {
  public:
    explicit Meeting(int count) : missing_(count) {}

    /// Whether all came before a minute was over.
    bool attend() {
        std::unique_lock lock(mutex_);
        if (--missing_ <= 0) changed_.notify_all();
        return changed_.wait_for(lock, std::chrono::minutes(1), [this] { return missing_ <= 0; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int missing_;
};

}  // namespace sweepwright::test
