#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/core.h>

namespace sweepwright::platform {

/// Writes one diagnostic line. Thread-safe; never blocks a walk: lines are handed to a writer of
/// bounded memory and, when it can't keep up, the oldest waiting ones are dropped and counted.
void logLine(std::string line);

/// Whether a line would reach anybody. Where nobody listens, log() spares the formatting.
bool logIsWanted();

/// Formats and writes one diagnostic line: `log("✅ 已添加自定义路径: {}", path)`.
template <class... Args>
void log(fmt::format_string<Args...> format, Args&&... args) {
    if (!logIsWanted()) return;
    logLine(fmt::format(format, std::forward<Args>(args)...));
}

/// Where lines go. Without any call they go nowhere but to captures. Control characters, which a
/// device's names may hold, are escaped in files and on standard error, so that no name can forge a
/// line; captures get the text as it is.
struct LogOptions {
    std::string file;      ///< host path of a rotating file (1 MiB, 3 kept); empty: no file
    bool toError = false;  ///< also to standard error, a line each
};

/// Sets where lines go; called by `main`, before the first line. The file is opened with the first
/// line. A further call replaces what the last one set, once that has written what it holds.
void startLog(const LogOptions& options);

/// Waits until every line handed over so far is written. Call before the process ends.
void flushLog();

/// Collects every line as it is written while it lives, on whatever thread; for tests. Captures
/// nest.
class LogCapture {
  public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// The lines so far, in the order written.
    [[nodiscard]] std::vector<std::string> lines() const;
    /// Whether a line equals `text`.
    [[nodiscard]] bool contains(std::string_view text) const;
    void clear();

  private:
    friend void logLine(std::string line);
    std::vector<std::string> lines_;  ///< guarded by the log's lock
};

}  // namespace sweepwright::platform
