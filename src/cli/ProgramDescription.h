#pragma once

#include <string>
#include <vector>

namespace sweepwright::cli {

/// What holds for every command. Parsing, help, manual page and completion are made of it, as they
/// are of the commands.

/// An option of every command.
struct GlobalOption {
    std::string letter{};  ///< "-v"; empty for none
    std::string name;      ///< "--device-root"
    std::string value{};   ///< what help calls its value, "DIR"; empty for a switch
    std::string help;
    std::vector<std::string> choices{};  ///< the values allowed; empty: any
    bool isHostFolder = false;           ///< the value is a folder of this computer
    bool isDevicePath = false;           ///< the value is a path of the device
};

/// In the order of the help.
std::vector<GlobalOption> globalOptions();

struct ExitStatus {
    std::string status;  ///< "0"
    std::string meaning;
};

std::vector<ExitStatus> exitStatuses();

/// What the program is for, in one line.
std::string programPurpose();

}  // namespace sweepwright::cli
