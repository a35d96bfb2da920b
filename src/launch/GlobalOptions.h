#pragma once

#include <functional>
#include <optional>
#include <stop_token>
#include <string>

#include "platform/device/Device.h"
#include "sample/SampleDevice.h"

namespace sweepwright::launch {

/// What a person may say to either program about the device and the log; what is unset comes from
/// the environment or is found out.
struct GlobalOptions {
    std::optional<std::string> deviceRoot;  ///< host folder; SWEEPWRIGHT_DEVICE_ROOT
    std::optional<std::string> home;        ///< device path; SWEEPWRIGHT_HOME
    std::optional<std::string> temporaryDirectory;
    std::optional<platform::Idiom> idiom;
    bool verbose = false;
};

/// Reads one environment variable; none when it is unset.
using Environment = std::function<std::optional<std::string>(const std::string& name)>;

/// The environment of this process.
Environment processEnvironment();

/// The device that options and environment name.
struct DeviceChoice {
    platform::DeviceOptions options;
    bool isSampleDevice = false;
    std::string connection{};  ///< the name of the connected device it is; empty for none
    std::optional<sample::SampleDeviceSummary>
        made;  ///< set when the sample device was made just now
};

/// Chooses the device: an option before its variable (an empty variable counts as unset), and with
/// neither, "/" on a device; elsewhere the device that was connected last, and without one the
/// bundled sample device, which is made on first use. A connected device that answers no more is an
/// error, never another device.
/// The preferred languages come from LC_ALL, LC_MESSAGES and LANG. A stop ends the making of the
/// sample device, of which nothing is left then.
platform::Result<DeviceChoice> chooseDevice(const GlobalOptions& options,
                                            const Environment& environment,
                                            const std::stop_token& stop = {});

/// The same choice without making anything: a sample device that is not there is left to the
/// opening to miss.
platform::Result<DeviceChoice> nameDevice(const GlobalOptions& options,
                                          const Environment& environment);

/// Starts the log of program `name`: a rotating file in $XDG_STATE_HOME/sweepwright, and standard
/// error when `verbose`. A folder that can't be made leaves the file out.
void startProgramLog(const std::string& name, bool verbose, const Environment& environment);

/// Opens the device that was chosen and makes it the current one.
platform::Result<> openCurrentDevice(const platform::DeviceOptions& options);

}  // namespace sweepwright::launch
