#include "platform/log/internal/LogWriter.h"

#include <system_error>
#include <utility>

#include <fmt/format.h>

namespace sweepwright::platform {

LogWriter::LogWriter(Write write) : write_(std::move(write)) {}

LogWriter::~LogWriter() {
    {
        const std::scoped_lock lock(mutex_);
        ending_ = true;
        arrived_.notify_one();
    }
    if (thread_.joinable()) thread_.join();
}

void LogWriter::add(std::string text) {
    if (text.size() > kMaxLineBytes) {
        text.resize(kMaxLineBytes);
        text += "…";
    }
    text.shrink_to_fit();
    Line line{std::chrono::system_clock::now(), std::move(text)};
    const std::scoped_lock lock(mutex_);
    if (!thread_.joinable()) {
        try {
            thread_ = std::thread([this] { run(); });
        } catch (const std::system_error&) {
            thread_ = {};  // without a thread lines wait, and the next one tries again
        }
    }
    ++added_;
    waitingBytes_ += cost(line);
    waiting_.push_back(std::move(line));
    while (waitingBytes_ > kMaxWaitingBytes) {
        waitingBytes_ -= cost(waiting_.front());
        waiting_.pop_front();
        ++dropped_;
    }
    arrived_.notify_one();
}

void LogWriter::flush() {
    std::unique_lock lock(mutex_);
    if (!thread_.joinable()) return;
    progressed_.wait(lock, [&, target = added_] {
        return firstWaiting() >= target && dropped_ == 0 && writing_ >= target;
    });
}

void LogWriter::run() {
    std::unique_lock lock(mutex_);
    for (;;) {
        arrived_.wait(lock, [&] { return ending_ || dropped_ > 0 || !waiting_.empty(); });
        if (dropped_ == 0 && waiting_.empty()) return;
        Line line;
        writing_ = firstWaiting();
        if (dropped_ > 0) {
            line = {std::chrono::system_clock::now(),
                    fmt::format("⚠️ 日志写入过慢，已丢弃 {} 行", std::exchange(dropped_, 0))};
        } else {
            line = std::move(waiting_.front());
            waiting_.pop_front();
            waitingBytes_ -= cost(line);
        }
        lock.unlock();
        write_(line);
        lock.lock();
        writing_ = kNone;
        progressed_.notify_all();
    }
}

}  // namespace sweepwright::platform
