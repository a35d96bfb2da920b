#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/files/FileManager.h"
#include "platform/process/CommandRunner.h"
#include "platform/queue/Crew.h"
#include "platform/system/WebStorage.h"
#include "platform/tree/TreeRemover.h"

namespace sweepwright {

/// The one place where data leaves the device: whatever a clean decides to delete goes through
/// here. A preview puts another eraser in its place and runs the same clean.
class Eraser {
  public:
    virtual ~Eraser() = default;

    /// Removes entry `name` of `parent`, a directory with all that is in it. `rules` say which
    /// bytes count.
    virtual platform::Removal removeEntry(const platform::Directory& parent,
                                          const std::string& name,
                                          const platform::WalkRules& rules) = 0;

    /// The threads on which entries may be removed side by side; none where each must wait for the
    /// one before.
    virtual platform::Crew* crew() { return nullptr; }

    /// Runs a command that empties `directory`, and only there; the shell's exit code, or -1.
    virtual std::int32_t runShellCommand(const std::string& command,
                                         const platform::Directory& directory) = 0;

    /// Gives the system time to show what a command did, before it is measured.
    virtual void settle() = 0;

    /// The platform's own web storage; its bytes are not counted.
    virtual platform::Result<> removeAllCachedResponses() = 0;
    virtual platform::Result<> deleteAllCookies() = 0;
};

/// Removes for good.
class DeviceEraser final : public Eraser {
  public:
    static constexpr std::chrono::milliseconds kSettleTime{100};

    /// The process's one eraser, made on first use for Device::current().
    static DeviceEraser& sharedEraser();

    /// All three must outlive this.
    DeviceEraser(platform::FileManager& files, platform::CommandRunner& commands,
                 platform::WebStorage& webStorage);

    platform::Removal removeEntry(const platform::Directory& parent, const std::string& name,
                                  const platform::WalkRules& rules) override;
    platform::Crew* crew() override { return crew_.get(); }

    /// A path may end the command's quoting early. Where the host can't confine the command to the
    /// directory, one with a quote in it is not run (-1), and the file manager empties it instead.
    /// So it is where something is mounted beneath the directory: a command would go on into it.
    std::int32_t runShellCommand(const std::string& command,
                                 const platform::Directory& directory) override;
    void settle() override;
    platform::Result<> removeAllCachedResponses() override;
    platform::Result<> deleteAllCookies() override;

  private:
    platform::FileManager& files_;
    platform::CommandRunner& commands_;
    platform::WebStorage& webStorage_;
    std::shared_ptr<platform::Crew> crew_ = std::make_shared<platform::Crew>();
};

}  // namespace sweepwright
