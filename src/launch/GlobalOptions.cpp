#include "launch/GlobalOptions.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "launch/Connections.h"
#include "platform/log/Log.h"

namespace sweepwright::launch {

namespace fs = std::filesystem;
using platform::Error;
using platform::Result;

namespace {

std::optional<std::string> variable(const Environment& environment, const std::string& name) {
    auto value = environment(name);
    if (value && value->empty()) value.reset();
    return value;
}

/// The folder `$name`, else `$HOME/fallback`. A relative folder in the variable is ignored, as the
/// base directory conventions want it.
std::optional<std::string> baseFolder(const Environment& environment, const std::string& name,
                                      const std::string& fallback) {
    auto folder = variable(environment, name);
    if (folder && folder->front() == '/') return folder;
    const auto home = variable(environment, "HOME");
    if (!home) return std::nullopt;
    return *home + "/" + fallback;
}

/// Makes the sample device at `folder` unless it is there.
Result<std::optional<sample::SampleDeviceSummary>> ensureSampleDevice(const std::string& folder,
                                                                      const std::stop_token& stop) {
    std::error_code ignored;
    if (fs::exists(fs::symlink_status(folder, ignored))) return std::nullopt;
    auto made = sample::makeSampleDevice(folder, 1, std::chrono::system_clock::now(), stop);
    if (made) return *made;
    if (fs::is_directory(folder, ignored)) return std::nullopt;  // another process was first
    return std::unexpected(std::move(made.error()));
}

Result<DeviceChoice> connected(const Connection& connection, DeviceChoice choice) {
    if (connection.state == Connection::State::Gone) {
        return std::unexpected(
            Error{"Launch", 3,
                  fmt::format("{0}: is connected but answers no more; \"sweepctl connect {0}\" "
                              "connects it again, \"sweepctl devices\" unmounts it",
                              connection.name)});
    }
    choice.options.rootFolder = connection.folder;
    choice.connection = connection.name;
    return choice;
}

/// Language tags from the locale the environment asks for: "zh_CN.UTF-8" reads "zh-CN".
std::vector<std::string> preferredLanguages(const Environment& environment) {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        auto locale = variable(environment, name);
        if (!locale) continue;
        std::string tag = locale->substr(0, locale->find_first_of(".@"));
        std::ranges::replace(tag, '_', '-');
        if (tag.empty() || tag == "C" || tag == "POSIX") return {"en"};
        return {std::move(tag)};
    }
    return {"en"};
}

}  // namespace

Environment processEnvironment() {
    return [](const std::string& name) -> std::optional<std::string> {
        const char* value = std::getenv(name.c_str());
        if (value == nullptr) return std::nullopt;
        return value;
    };
}

Result<DeviceChoice> nameDevice(const GlobalOptions& options, const Environment& environment) {
    DeviceChoice choice;
    choice.options.home = options.home ? options.home : variable(environment, "SWEEPWRIGHT_HOME");
    choice.options.temporaryDirectory = options.temporaryDirectory;
    choice.options.idiom = options.idiom;
    choice.options.preferredLanguages = preferredLanguages(environment);

    auto root =
        options.deviceRoot ? options.deviceRoot : variable(environment, "SWEEPWRIGHT_DEVICE_ROOT");
    if (!root && platform::runsOnDevice()) root.emplace(1, '/');
    if (root) {
        // Never taken for "none given": a script's unset variable must not lead to another device.
        if (root->empty()) return std::unexpected(Error{"Launch", 2, "the device root is empty"});
        choice.options.rootFolder = std::move(*root);
        return choice;
    }

    if (const auto connections = Connections::ofPerson(environment)) {
        if (const auto chosen = connections->chosen()) return connected(*chosen, choice);
    }

    const auto data = baseFolder(environment, "XDG_DATA_HOME", ".local/share");
    if (!data) {
        return std::unexpected(
            Error{"Launch", 1,
                  "no device root is given, and without $HOME there is no place for "
                  "the sample device"});
    }
    choice.options.rootFolder = *data + "/sweepwright/sample-device";
    choice.isSampleDevice = true;
    return choice;
}

Result<DeviceChoice> chooseDevice(const GlobalOptions& options, const Environment& environment,
                                  const std::stop_token& stop) {
    auto choice = nameDevice(options, environment);
    if (!choice || !choice->isSampleDevice) return choice;
    auto made = ensureSampleDevice(choice->options.rootFolder, stop);
    if (!made) return std::unexpected(std::move(made.error()));
    choice->made = *made;
    return choice;
}

void startProgramLog(const std::string& name, bool verbose, const Environment& environment) {
    platform::LogOptions log;
    log.toError = verbose;
    if (const auto state = baseFolder(environment, "XDG_STATE_HOME", ".local/state")) {
        const std::string folder = *state + "/sweepwright";
        std::error_code failed;
        fs::create_directories(folder, failed);
        if (!failed) log.file = folder + "/" + name + ".log";
    }
    platform::startLog(log);
}

Result<> openCurrentDevice(const platform::DeviceOptions& options) {
    auto device = platform::Device::open(options);
    if (!device) return std::unexpected(std::move(device.error()));
    platform::Device::setCurrent(std::move(*device));
    return {};
}

}  // namespace sweepwright::launch
