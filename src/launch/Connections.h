#pragma once

#include <optional>
#include <string>
#include <vector>

#include "launch/DeviceAddress.h"
#include "launch/GlobalOptions.h"
#include "platform/base/Error.h"

namespace sweepwright::launch {

/// A device that was connected.
struct Connection {
    enum class State { Connected, Gone };  ///< Gone: mounted, but it answers no more

    std::string name;
    std::string folder;  ///< host folder that is the device's "/"
    State state = State::Connected;
    bool isChosen = false;  ///< the one that is used where no device is named
};

/// The devices that a person has connected, each mounted by sshfs or ifuse on a folder of its own
/// in the run-time folder, which goes when the person logs out. What holds is what is mounted: a
/// folder on which nothing is mounted is no connection. A file beside the folders names the chosen
/// one.
///
/// Removes nothing but its own empty folders and that file.
class Connections {
  public:
    /// Those in `folder`, a host path without links. `mountTable` is read for what is mounted.
    explicit Connections(std::string folder, std::string mountTable = "/proc/self/mountinfo");

    /// Those of the person that the environment belongs to; an error without a run-time folder.
    static platform::Result<Connections> ofPerson(const Environment& environment);

    /// All of them, by name. Asks each whether it answers, which takes as long as the mount waits.
    [[nodiscard]] std::vector<Connection> all() const;
    /// The one that is used where no device is named.
    [[nodiscard]] std::optional<Connection> chosen() const;

    /// Mounts the device and chooses it. One that is connected is chosen; one that is gone is
    /// cleared first. ssh and the mounting program talk to the person on the terminal.
    platform::Result<Connection> connect(const DeviceAddress& address);
    /// Unmounts a device. One that is gone is cleared though it may be in use.
    platform::Result<> disconnect(const Connection& connection);

  private:
    [[nodiscard]] std::string folderOf(const std::string& name) const;
    [[nodiscard]] std::string chosenFile() const { return folder_ + "/chosen"; }
    [[nodiscard]] std::string chosenName() const;
    [[nodiscard]] std::vector<std::string> mountPoints() const;
    [[nodiscard]] platform::Result<> mount(const DeviceAddress& address,
                                           const std::string& folder) const;
    platform::Result<> choose(const std::string& name);

    std::string folder_;
    std::string mountTable_;
};

}  // namespace sweepwright::launch
