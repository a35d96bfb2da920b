#include "platform/log/Log.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <memory>
#include <mutex>

#include <spdlog/details/log_msg.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

#include "platform/log/internal/LogWriter.h"
#include "platform/text/ControlText.h"

namespace sweepwright::platform {

namespace {

constexpr std::size_t kFileBytes = std::size_t{1} << 20U;
constexpr std::size_t kRotatedFiles = 3;

using Sinks = std::vector<std::shared_ptr<spdlog::sinks::sink>>;

/// The sinks that `options` ask for; one that can't be made is told of on standard error.
Sinks makeSinks(const LogOptions& options) {
    Sinks sinks;
    try {
        if (options.toError) {
            sinks.push_back(std::make_shared<spdlog::sinks::stderr_sink_st>());
            sinks.back()->set_pattern("%v");
        }
        if (!options.file.empty()) {
            sinks.push_back(std::make_shared<spdlog::sinks::rotating_file_sink_st>(
                options.file, kFileBytes, kRotatedFiles));
            sinks.back()->set_pattern("%Y-%m-%d %H:%M:%S.%e %v");
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", escapedControls(error.what()).c_str());
    }
    return sinks;
}

/// Writes to sinks that are opened with the first line; runs on the writer's thread.
class SinkWriter {
  public:
    explicit SinkWriter(LogOptions options) : options_(std::move(options)) {}

    void operator()(const LogWriter::Line& line) {
        if (!std::exchange(opened_, true)) sinks_ = makeSinks(options_);
        const std::string text = escapedControls(line.text);
        const spdlog::details::log_msg message(line.time, spdlog::source_loc{}, "",
                                               spdlog::level::info, text);
        for (const auto& sink : sinks_)
            write(*sink, message);
    }

  private:
    void write(spdlog::sinks::sink& sink, const spdlog::details::log_msg& message) {
        try {
            sink.log(message);
            sink.flush();
        } catch (const std::exception& error) {
            // A full disk, most likely: said once, and the work goes on without its log.
            if (!std::exchange(failed_, true)) {
                std::fprintf(stderr, "%s\n", escapedControls(error.what()).c_str());
            }
        }
    }

    LogOptions options_;
    bool opened_ = false;
    bool failed_ = false;
    Sinks sinks_;
};

/// Never destroyed: threads may log until the process ends.
struct LogState {
    std::mutex mutex;
    std::vector<LogCapture*> captures;
    std::shared_ptr<LogWriter> writer;
    std::atomic<bool> wanted = false;

    void refreshWantedLocked() { wanted = writer != nullptr || !captures.empty(); }

    static LogState& shared() {
        static auto* const state = new LogState;
        return *state;
    }
};

}  // namespace

bool logIsWanted() {
    return LogState::shared().wanted.load(std::memory_order_relaxed);
}

void logLine(std::string line) {
    LogState& state = LogState::shared();
    const std::scoped_lock lock(state.mutex);
    for (LogCapture* capture : state.captures)
        capture->lines_.push_back(line);
    if (state.writer) state.writer->add(std::move(line));
}

void startLog(const LogOptions& options) {
    std::shared_ptr<LogWriter> writer;
    if (options.toError || !options.file.empty()) {
        writer = std::make_shared<LogWriter>([sinks = std::make_shared<SinkWriter>(options)](
                                                 const LogWriter::Line& line) { (*sinks)(line); });
    }
    LogState& state = LogState::shared();
    const std::scoped_lock lock(state.mutex);
    state.writer.swap(writer);
    state.refreshWantedLocked();
}

void flushLog() {
    LogState& state = LogState::shared();
    std::shared_ptr<LogWriter> writer;
    {
        const std::scoped_lock lock(state.mutex);
        writer = state.writer;
    }
    if (writer) writer->flush();
}

LogCapture::LogCapture() {
    LogState& state = LogState::shared();
    const std::scoped_lock lock(state.mutex);
    state.captures.push_back(this);
    state.refreshWantedLocked();
}

LogCapture::~LogCapture() {
    LogState& state = LogState::shared();
    const std::scoped_lock lock(state.mutex);
    std::erase(state.captures, this);
    state.refreshWantedLocked();
}

std::vector<std::string> LogCapture::lines() const {
    const std::scoped_lock lock(LogState::shared().mutex);
    return lines_;
}

bool LogCapture::contains(std::string_view text) const {
    const std::scoped_lock lock(LogState::shared().mutex);
    return std::ranges::find(lines_, text) != lines_.end();
}

void LogCapture::clear() {
    const std::scoped_lock lock(LogState::shared().mutex);
    lines_.clear();
}

}  // namespace sweepwright::platform
