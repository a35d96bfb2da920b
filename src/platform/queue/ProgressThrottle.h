#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "platform/queue/DispatchQueue.h"

namespace sweepwright::platform {

/// Thins a flood of progress calls: posts at most about 60 a second to a queue. What is held back
/// gives way to newer calls and is delivered when its time has come or at flush(), so that the last
/// call always arrives. Thread-safe; with a serial or main queue calls arrive in their order.
class ProgressThrottle {
  public:
    /// A text naming the item just handled, and a fraction from 0 to 1.
    using Progress = std::function<void(const std::string& text, double fraction)>;
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    /// Least time between two posts.
    static constexpr std::chrono::milliseconds kInterval{16};

    /// Calls `progress` on `queue`, which must outlive this; an empty `progress` is never called.
    ProgressThrottle(DispatchQueue& queue, Progress progress,
                     Clock clock = std::chrono::steady_clock::now);

    void report(std::string text, double fraction);

    /// Posts what is held back. At the end of a job, before its completion is posted.
    void flush();

  private:
    struct State;
    std::shared_ptr<State> state_;
};

}  // namespace sweepwright::platform
