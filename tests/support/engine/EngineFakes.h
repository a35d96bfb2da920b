#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "engine/Eraser.h"
#include "platform/process/CommandRunner.h"
#include "platform/system/WebStorage.h"

namespace sweepwright::test {

/// Runs no shell: notes each command and answers for it, by default by removing the visible entries
/// of the folder and 0.
class FakeCommandRunner final : public platform::CommandRunner {
  public:
    struct Command {
        std::string text;
        std::string folder;  ///< host path
        bool operator==(const Command&) const = default;
    };
    using Answer = std::function<std::int32_t(const Command&)>;

    /// What a command does and its status from now on.
    void answer(Answer answer) { answer_ = std::move(answer); }
    /// As answer(), of a command that changes nothing.
    void answerOnly(std::int32_t status) {
        answer_ = [status](const Command&) { return status; };
    }
    [[nodiscard]] const std::vector<Command>& commands() const { return commands_; }

    std::int32_t run(const std::string& command, const std::string& writableFolder) override;

  private:
    std::vector<Command> commands_;
    Answer answer_;
};

/// Removes the visible entries of a host folder, as the shell commands do.
void removeVisibleEntries(const std::string& hostFolder);

/// Counts how often it was emptied.
class FakeWebStorage final : public platform::WebStorage {
  public:
    int responsesRemoved = 0;
    int cookiesDeleted = 0;
    platform::Result<> outcome;

    platform::Result<> removeAllCachedResponses() override {
        ++responsesRemoved;
        return outcome;
    }
    platform::Result<> deleteAllCookies() override {
        ++cookiesDeleted;
        return outcome;
    }
};

/// Forwards to another eraser and counts; but it does not wait for a system to settle. Several
/// threads may remove at once.
class ForwardingEraser final : public Eraser {
  public:
    /// `target` must outlive this.
    explicit ForwardingEraser(Eraser& target) : target_(target) {}

    std::vector<std::string> removed;                       ///< paths handed on, in order;
                                                            ///< to be read between cleans
    int settled = 0;                                        ///< calls of settle()
    std::function<void(const std::string& path)> onRemove;  ///< before a removal
    std::function<void()> onSettle;
    /// Called in place of each removal, when set.
    std::function<platform::Removal(const platform::Directory&, const std::string& name)> remover;

    platform::Removal removeEntry(const platform::Directory& parent, const std::string& name,
                                  const platform::WalkRules& rules) override;
    platform::Crew* crew() override { return target_.crew(); }
    std::int32_t runShellCommand(const std::string& command,
                                 const platform::Directory& directory) override {
        return target_.runShellCommand(command, directory);
    }
    void settle() override;
    platform::Result<> removeAllCachedResponses() override {
        return target_.removeAllCachedResponses();
    }
    platform::Result<> deleteAllCookies() override { return target_.deleteAllCookies(); }

  private:
    Eraser& target_;
    std::mutex mutex_;
};

}  // namespace sweepwright::test
