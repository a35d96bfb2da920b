#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace sweepwright::platform {

/// Runs shell commands on the host. Replaceable in tests.
class CommandRunner {
  public:
    virtual ~CommandRunner() = default;

    /// Runs `command` through the shell and waits for its end. `writableFolder` is the host folder
    /// whose content the command may change (absolute, free of links).
    ///
    /// Returns the shell's exit code, or -1 when the command could not be run or did not exit
    /// normally; everything but success is logged.
    virtual std::int32_t run(const std::string& command, const std::string& writableFolder) = 0;

    /// Whether this host can keep a command from changing anything outside its folder.
    static bool confinementAvailable();
};

/// The system calls behind SpawnCommandRunner.
struct SpawnCalls {
    /// As posix_spawn() without attributes, the standard streams leading nowhere: 0 or an errno
    /// value.
    std::function<int(int* child, const char* program, char* const arguments[],
                      char* const environment[])>
        spawn;
    /// As waitpid() without options: the child, or -1 and errno.
    std::function<int(int child, int* status)> wait;
    /// Confines the calling thread and what it starts to a folder: 0 or an errno value.
    std::function<int(const std::string& writableFolder)> confine;

    /// The host's. Where it has no confinement, `confine` does nothing and succeeds.
    static SpawnCalls ofHost();
};

/// Runs commands as "/bin/sh -c", started with posix_spawn. Thread-safe.
///
/// A path put into a command may end its quoting early and turn into other commands. So the child
/// can change files only beneath its folder, enforced by the kernel where
/// confinementAvailable(); elsewhere the command runs unconfined. A command that could not be
/// confined although the host offers it does not run.
class SpawnCommandRunner final : public CommandRunner {
  public:
    explicit SpawnCommandRunner(SpawnCalls calls = SpawnCalls::ofHost());

    std::int32_t run(const std::string& command, const std::string& writableFolder) override;

  private:
    struct Start {
        int child = -1;
        int error = 0;  ///< errno value; 0: the child runs
        bool environmentRefused = false;
    };

    [[nodiscard]] Start start(const std::string& command, const std::string& writableFolder) const;
    [[nodiscard]] Start startConfined(const std::string& command,
                                      const std::string& writableFolder) const;
    [[nodiscard]] std::int32_t waitFor(int child, const std::string& command) const;

    SpawnCalls calls_;
};

}  // namespace sweepwright::platform
