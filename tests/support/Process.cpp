#include "support/Process.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace sweepwright::test {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds kLongest{60};

struct Pipe {
    int readEnd = -1;
    int writeEnd = -1;
};

Pipe makePipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) std::abort();
    return {ends[0], ends[1]};
}

void closeIfOpen(int& descriptor) {
    if (descriptor >= 0) close(descriptor);
    descriptor = -1;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> list;
    for (std::string& text : texts)
        list.push_back(text.data());
    list.push_back(nullptr);
    return list;
}

/// The terminal's two ends; what is typed is not echoed and line ends stay as they are written, so
/// that a test sees what the program wrote.
Pipe makeTerminal(unsigned short columns) {
    winsize size{};
    size.ws_col = columns;
    size.ws_row = 24;
    int outer = -1;
    int inner = -1;
    if (openpty(&outer, &inner, nullptr, nullptr, &size) != 0) std::abort();
    termios mode{};
    tcgetattr(inner, &mode);
    mode.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    mode.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    tcsetattr(inner, TCSANOW, &mode);
    fcntl(outer, F_SETFD, FD_CLOEXEC);
    fcntl(inner, F_SETFD, FD_CLOEXEC);
    return {outer, inner};
}

}  // namespace

struct Process::State {
    struct Source {
        int descriptor = -1;
        std::string* into = nullptr;
    };

    pid_t child = -1;
    int terminal = -1;
    std::vector<Source> sources;
    ProcessResult result;
    Clock::time_point end = Clock::now() + kLongest;

    [[nodiscard]] bool anyOpen() const {
        for (const Source& source : sources) {
            if (source.descriptor >= 0) return true;
        }
        return false;
    }

    /// Reads once from whatever has something; false when it took too long.
    bool readSome() {
        std::vector<pollfd> waiting;
        for (const Source& source : sources)
            waiting.push_back({source.descriptor, POLLIN, 0});
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0 || poll(waiting.data(), waiting.size(), static_cast<int>(left)) == 0) {
            ADD_FAILURE() << "the process took too long; so far it wrote\n"
                          << result.output << result.error << result.screen;
            kill(child, SIGKILL);
            return false;
        }
        for (std::size_t i = 0; i < sources.size(); ++i) {
            if (waiting[i].revents == 0) continue;
            std::array<char, 4096> bytes{};
            const ssize_t got = read(sources[i].descriptor, bytes.data(), bytes.size());
            if (got < 0 && errno == EINTR) continue;
            if (got <= 0) {  // a terminal whose other end is closed answers EIO
                if (sources[i].descriptor == terminal) terminal = -1;
                closeIfOpen(sources[i].descriptor);
            } else {
                sources[i].into->append(bytes.data(), static_cast<std::size_t>(got));
            }
        }
        return true;
    }
};

Process::Process(const ProcessOptions& options) : state_(std::make_unique<State>()) {
    std::vector<std::string> arguments = options.arguments;
    std::vector<std::string> variables;
    for (const auto& [name, value] : options.environment)
        variables.push_back(name + "=" + value);
    const std::vector<char*> argumentList = pointers(arguments);
    const std::vector<char*> variableList = pointers(variables);

    Pipe output = makePipe();
    Pipe error = makePipe();
    Pipe terminal = makeTerminal(options.columns);
    int empty = open("/dev/null", O_RDONLY | O_CLOEXEC);
    const TerminalStreams which = options.terminal;
    if (!options.outputFile.empty()) {
        close(output.writeEnd);
        output.writeEnd = open(options.outputFile.c_str(), O_WRONLY | O_CLOEXEC);
    }

    state_->child = fork();
    if (state_->child == 0) {
        setsid();
        if (which.input || which.output || which.error) ioctl(terminal.writeEnd, TIOCSCTTY, 0);
        dup2(which.input ? terminal.writeEnd : empty, STDIN_FILENO);
        dup2(which.output ? terminal.writeEnd : output.writeEnd, STDOUT_FILENO);
        dup2(which.error ? terminal.writeEnd : error.writeEnd, STDERR_FILENO);
        for (const int number : {SIGINT, SIGTERM})
            std::signal(number, options.ignoredSignals.contains(number) ? SIG_IGN : SIG_DFL);
        execve(argumentList[0], argumentList.data(), variableList.data());
        _exit(127);
    }
    for (int* descriptor : {&output.writeEnd, &error.writeEnd, &terminal.writeEnd, &empty})
        closeIfOpen(*descriptor);
    state_->terminal = terminal.readEnd;
    state_->sources = {{output.readEnd, &state_->result.output},
                       {error.readEnd, &state_->result.error},
                       {terminal.readEnd, &state_->result.screen}};
}

Process::~Process() {
    if (state_->child > 0) {
        kill(state_->child, SIGKILL);
        waitpid(state_->child, nullptr, 0);
    }
    for (State::Source& source : state_->sources)
        closeIfOpen(source.descriptor);
}

void Process::waitForText(const std::string& text) {
    const ProcessResult& so = state_->result;
    while (so.output.find(text) == std::string::npos && so.error.find(text) == std::string::npos &&
           so.screen.find(text) == std::string::npos) {
        if (!state_->anyOpen()) {
            ADD_FAILURE() << "the process ended without writing \"" << text << "\" but\n"
                          << so.output << so.error << so.screen;
            return;
        }
        if (!state_->readSome()) return;
    }
}

void Process::type(const std::string& text) {
    EXPECT_EQ(write(state_->terminal, text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

void Process::signal(int number) const {
    kill(state_->child, number);
}

ProcessResult Process::wait() {
    while (state_->anyOpen() && state_->readSome()) {
    }
    int status = 0;
    waitpid(state_->child, &status, 0);
    state_->child = -1;
    state_->result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return state_->result;
}

ProcessResult Process::run(const ProcessOptions& options) {
    return Process(options).wait();
}

}  // namespace sweepwright::test
