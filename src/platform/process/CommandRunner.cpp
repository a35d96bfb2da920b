#include "platform/process/CommandRunner.h"

#include <array>
#include <cerrno>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/log/Log.h"
#include "platform/process/internal/FolderConfinement.h"
#include "platform/text/Utf8.h"

extern char** environ;

namespace sweepwright::platform {
namespace {

constexpr const char* kShell = "/bin/sh";

std::string systemText(int number) {
    return std::generic_category().message(number);
}

/// A list of strings in the form that spawn calls take; the pointers live as long as this.
template <std::size_t n>
class StringVector {
  public:
    explicit StringVector(std::array<std::string, n> strings) : strings_(std::move(strings)) {
        for (std::size_t i = 0; i < n; ++i)
            pointers_[i] = strings_[i].data();
    }
    StringVector(const StringVector&) = delete;
    StringVector& operator=(const StringVector&) = delete;
    [[nodiscard]] char* const* data() const { return pointers_.data(); }

  private:
    std::array<std::string, n> strings_;
    std::array<char*, n + 1> pointers_{};
};

/// Where a child's standard streams lead: nowhere. A name in a command may end its quoting early,
/// and what the shell says of it, or is made to say, would act on the terminal and forge lines.
class NoStreams {
  public:
    NoStreams() : failed_(posix_spawn_file_actions_init(&actions_)) {
        if (failed_ != 0) return;
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            const int mode = stream == STDIN_FILENO ? O_RDONLY : O_WRONLY;
            const int added =
                posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", mode, 0);
            if (failed_ == 0) failed_ = added;
        }
    }
    ~NoStreams() { posix_spawn_file_actions_destroy(&actions_); }
    NoStreams(const NoStreams&) = delete;
    NoStreams& operator=(const NoStreams&) = delete;

    /// 0, or the errno value of what could not be prepared.
    [[nodiscard]] int failed() const { return failed_; }
    [[nodiscard]] const posix_spawn_file_actions_t* actions() const { return &actions_; }

  private:
    posix_spawn_file_actions_t actions_{};
    int failed_;
};

}  // namespace

bool CommandRunner::confinementAvailable() {
    return FolderConfinement::available();
}

SpawnCalls SpawnCalls::ofHost() {
    return {.spawn =
                [](int* child, const char* program, char* const arguments[],
                   char* const environment[]) {
                    const NoStreams streams;
                    if (streams.failed() != 0) return streams.failed();
                    return posix_spawn(child, program, streams.actions(), nullptr, arguments,
                                       environment);
                },
            .wait = [](int child, int* status) { return waitpid(child, status, 0); },
            .confine =
                [](const std::string& writableFolder) {
                    if (!FolderConfinement::available()) return 0;
                    return FolderConfinement::restrictThisThread(writableFolder);
                }};
}

SpawnCommandRunner::SpawnCommandRunner(SpawnCalls calls) : calls_(std::move(calls)) {}

std::int32_t SpawnCommandRunner::run(const std::string& command,
                                     const std::string& writableFolder) {
    // A byte 0 would cut the command short and run its first part alone.
    if (command.find('\0') != std::string::npos || !isUtf8(command)) {
        log("❌ 命令字符串转换失败");
        return -1;
    }
    const Start started = start(command, writableFolder);
    if (started.environmentRefused) log("⚠️ 使用自定义环境变量失败，尝试使用系统环境变量");
    if (started.error != 0) {
        log("❌ posix_spawn失败: {} (错误码: {}), 命令: {}", systemText(started.error),
            started.error, command);
        return -1;
    }
    return waitFor(started.child, command);
}

// The thread's confinement can't be lifted again, so a short-lived one takes it and hands it on to
// the child. It must not log: a thread that the log's writer might start there would be confined.
SpawnCommandRunner::Start SpawnCommandRunner::start(const std::string& command,
                                                    const std::string& writableFolder) const {
    Start outcome;
    try {
        std::thread([&] { outcome = startConfined(command, writableFolder); }).join();
    } catch (const std::system_error& failed) {
        outcome.error = failed.code().value();
    }
    return outcome;
}

SpawnCommandRunner::Start SpawnCommandRunner::startConfined(
    const std::string& command, const std::string& writableFolder) const {
    Start outcome;
    outcome.error = calls_.confine(writableFolder);
    if (outcome.error != 0) return outcome;

    const StringVector<3> arguments({"sh", "-c", command});
    const StringVector<3> environment(
        {"PATH=/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin", "HOME=/var/mobile", "SHELL=/bin/sh"});
    outcome.error = calls_.spawn(&outcome.child, kShell, arguments.data(), environment.data());
    if (outcome.error == 0) return outcome;
    outcome.environmentRefused = true;
    outcome.error = calls_.spawn(&outcome.child, kShell, arguments.data(), environ);
    return outcome;
}

std::int32_t SpawnCommandRunner::waitFor(int child, const std::string& command) const {
    int status = 0;
    while (calls_.wait(child, &status) < 0) {
        if (errno == EINTR) continue;
        log("❌ waitpid失败: {}", systemText(errno));
        return -1;
    }
    if (WIFEXITED(status)) {
        const int code = WEXITSTATUS(status);
        if (code != 0) log("⚠️ 命令执行失败，退出码: {}, 命令: {}", code, command);
        return code;
    }
    if (WIFSIGNALED(status)) log("❌ 命令被信号终止: {}, 命令: {}", WTERMSIG(status), command);
    return -1;
}

}  // namespace sweepwright::platform
