#pragma once

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace sweepwright::test {

/// Which streams of a process are a terminal; the others are pipes. Standard input of a pipe is
/// empty.
struct TerminalStreams {
    bool input = false;
    bool output = false;
    bool error = false;

    static TerminalStreams none() { return {}; }
    static TerminalStreams all() { return {true, true, true}; }
};

/// What to run.
struct ProcessOptions {
    std::vector<std::string> arguments;  ///< the first is the executable's path
    std::vector<std::pair<std::string, std::string>> environment;  ///< all of it
    TerminalStreams terminal = TerminalStreams::none();
    unsigned short columns = 80;  ///< of the terminal
    std::string outputFile;       ///< standard output goes there in place of a pipe
    /// Of SIGINT and SIGTERM; the others act as they do by default, however the tests were started.
    std::set<int> ignoredSignals;
};

/// How a process ended and what it wrote.
struct ProcessResult {
    int status = -1;  ///< exit status, or 128 plus the number of the signal that ended it
    std::string output;
    std::string error;
    std::string screen;  ///< what the streams that are a terminal wrote
};

/// A process under test. One that does not end within a minute is ended, and the test fails.
class Process {
  public:
    explicit Process(const ProcessOptions& options);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// Waits until the process has written `text`, to whatever stream; the test fails if it ends
    /// without.
    void waitForText(const std::string& text);
    /// Types `text` on the terminal.
    void type(const std::string& text);
    void signal(int number) const;
    /// Waits for the end.
    ProcessResult wait();

    /// Runs a process from start to end.
    static ProcessResult run(const ProcessOptions& options);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace sweepwright::test
