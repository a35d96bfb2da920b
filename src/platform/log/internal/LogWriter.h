#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <limits>
#include <mutex>
#include <string>
#include <thread>

namespace sweepwright::platform {

/// Hands lines to a slow writer on a thread of its own, which starts with the first line. What
/// waits is bounded in bytes: when the writer can't keep up, the oldest waiting lines are dropped
/// and a line in their place says how many. Thread-safe.
class LogWriter {
  public:
    struct Line {
        std::chrono::system_clock::time_point time;
        std::string text;
    };
    /// Runs on the writer's thread, one call at a time.
    using Write = std::function<void(const Line&)>;

    /// Bytes that may wait, text and bookkeeping together.
    static constexpr std::size_t kMaxWaitingBytes = std::size_t{1} << 20U;
    /// Longer lines are cut.
    static constexpr std::size_t kMaxLineBytes = std::size_t{16} << 10U;

    explicit LogWriter(Write write);
    /// Writes what waits first.
    ~LogWriter();
    LogWriter(const LogWriter&) = delete;
    LogWriter& operator=(const LogWriter&) = delete;

    void add(std::string text);
    /// Returns when every line added before is written or dropped.
    void flush();

  private:
    static constexpr std::uint64_t kNone = std::numeric_limits<std::uint64_t>::max();

    void run();
    /// Number of the first line that waits.
    [[nodiscard]] std::uint64_t firstWaiting() const { return added_ - waiting_.size(); }
    static std::size_t cost(const Line& line) { return sizeof(Line) + line.text.capacity(); }

    const Write write_;
    std::mutex mutex_;
    std::condition_variable arrived_;
    std::condition_variable progressed_;
    std::deque<Line> waiting_;
    std::size_t waitingBytes_ = 0;
    std::uint64_t dropped_ = 0;      ///< since the last line that told of it
    std::uint64_t added_ = 0;        ///< lines ever
    std::uint64_t writing_ = kNone;  ///< number of the line in hand, counted from 0
    bool ending_ = false;
    std::thread thread_;
};

}  // namespace sweepwright::platform
