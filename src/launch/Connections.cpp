#include "launch/Connections.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "platform/process/HostProgram.h"

namespace sweepwright::launch {

namespace fs = std::filesystem;
using platform::Error;
using platform::Result;

namespace {

std::unexpected<Error> failure(std::string description) {
    return std::unexpected(Error{"Connections", 1, std::move(description)});
}

/// A folder of the mount table, in which blanks and the like stand as octal numbers: "\040".
std::string withoutOctals(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 3 >= text.size()) {
            plain += text[i];
            continue;
        }
        plain += static_cast<char>((text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 +
                                   (text[i + 3] - '0'));
        i += 3;
    }
    return plain;
}

/// For the person only: others have no business in their device.
std::error_code makePrivateFolder(const std::string& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (!error) fs::permissions(folder, fs::perms::owner_all, error);
    return error;
}

/// sshfs with what suits a clean: it reconnects, finds out within a quarter of a minute that the
/// device is gone, and remembers attributes for a few seconds only, since apps write meanwhile.
std::vector<std::string> sshfsCall(const DeviceAddress& address, const std::string& folder) {
    constexpr const char* kSshfsOptions =
        "reconnect,ServerAliveInterval=5,ServerAliveCountMax=3,ConnectTimeout=10,"
        "dcache_timeout=5,attr_timeout=5,entry_timeout=5";
    std::vector<std::string> words{"sshfs", address.login + ":/", folder, "-o", kSshfsOptions};
    if (!address.port.empty()) words.insert(words.end(), {"-p", address.port});
    return words;
}

Result<> run(const std::vector<std::string>& words) {
    const auto status = platform::runHostProgram(words);
    if (!status) return std::unexpected(status.error());
    if (*status != 0) return failure(fmt::format("{} ended with status {}", words[0], *status));
    return {};
}

}  // namespace

Connections::Connections(std::string folder, std::string mountTable)
    : folder_(std::move(folder)), mountTable_(std::move(mountTable)) {}

Result<Connections> Connections::ofPerson(const Environment& environment) {
    const auto runtime = environment("XDG_RUNTIME_DIR");
    if (!runtime || !runtime->starts_with('/'))
        return failure(
            "there is no run-time folder to connect devices in: "
            "$XDG_RUNTIME_DIR is not set");
    std::error_code error;
    const fs::path folder = fs::canonical(*runtime, error);
    if (error) return failure(fmt::format("{}: {}", *runtime, error.message()));
    return Connections((folder / "sweepwright").string());
}

std::string Connections::folderOf(const std::string& name) const {
    return folder_ + "/devices/" + name;
}

std::string Connections::chosenName() const {
    std::ifstream file(chosenFile());
    std::string name;
    std::getline(file, name);
    return name;
}

std::vector<std::string> Connections::mountPoints() const {
    std::ifstream table(mountTable_);
    std::vector<std::string> folders;
    std::string line;
    while (std::getline(table, line)) {
        std::istringstream fields(line);
        std::string field;
        for (int i = 0; i < 5; ++i)
            fields >> field;  // the fifth is where it is mounted
        folders.push_back(withoutOctals(field));
    }
    return folders;
}

std::vector<Connection> Connections::all() const {
    const std::string start = folderOf("");
    std::vector<Connection> found;
    for (const std::string& folder : mountPoints()) {
        if (!folder.starts_with(start)) continue;
        const std::string name = folder.substr(start.size());
        if (!DeviceAddress::parse(name)) continue;
        // Attributes may still come from the kernel's memory when nobody answers any more.
        std::error_code error;
        const fs::directory_iterator content(folder, error);
        const bool answers = !error;
        found.push_back({.name = name,
                         .folder = folder,
                         .state = answers ? Connection::State::Connected : Connection::State::Gone,
                         .isChosen = name == chosenName()});
    }
    std::ranges::sort(found, {}, &Connection::name);
    return found;
}

std::optional<Connection> Connections::chosen() const {
    const auto connections = all();
    const auto found = std::ranges::find_if(connections, &Connection::isChosen);
    if (found == connections.end()) return std::nullopt;
    return *found;
}

Result<> Connections::choose(const std::string& name) {
    const std::string fresh = chosenFile() + ".new";
    std::ofstream(fresh) << name << '\n';
    std::error_code error;
    fs::rename(fresh, chosenFile(), error);
    if (error) return failure(fmt::format("{}: {}", chosenFile(), error.message()));
    return {};
}

Result<> Connections::mount(const DeviceAddress& address, const std::string& folder) const {
    const std::string program = address.usb ? "ifuse" : "sshfs";
    if (!platform::hasHostProgram(program)) {
        return failure(
            fmt::format("{} is missing, which mounts the device; on Debian: "
                        "sudo apt install {}",
                        program, program));
    }
    if (const auto error = makePrivateFolder(folder))
        return failure(fmt::format("{}: {}", folder, error.message()));
    auto mounted = run(address.usb ? std::vector<std::string>{"ifuse", "--root", folder}
                                   : sshfsCall(address, folder));
    if (mounted) return mounted;
    std::error_code ignored;
    fs::remove(folder, ignored);
    // sshfs keeps what ssh says to itself.
    if (address.usb) return mounted;
    return failure(fmt::format("{}; see what ssh says: ssh {}{}{}", mounted.error().description,
                               address.port.empty() ? "" : "-p ", address.port,
                               (address.port.empty() ? "" : " ") + address.login));
}

Result<Connection> Connections::connect(const DeviceAddress& address) {
    if (const auto error = makePrivateFolder(folder_))
        return failure(fmt::format("{}: {}", folder_, error.message()));
    const auto find = [&]() -> std::optional<Connection> {
        const auto connections = all();
        const auto found = std::ranges::find(connections, address.name, &Connection::name);
        if (found == connections.end()) return std::nullopt;
        return *found;
    };
    auto connection = find();
    if (connection && connection->state == Connection::State::Gone) {
        if (auto cleared = disconnect(*connection); !cleared)
            return std::unexpected(cleared.error());
        connection.reset();
    }
    if (!connection) {
        if (auto mounted = mount(address, folderOf(address.name)); !mounted)
            return std::unexpected(mounted.error());
        connection = find();
        if (!connection) return failure(address.name + ": nothing was mounted");
    }
    // What is no device is not left mounted.
    if (auto device = platform::Device::open({.rootFolder = connection->folder,
                                              .home = {},
                                              .temporaryDirectory = {},
                                              .idiom = {},
                                              .osVersion = {},
                                              .preferredLanguages = {}});
        !device) {
        Error error = std::move(device.error());
        if (auto unmounted = disconnect(*connection); !unmounted)
            error.description += "; " + unmounted.error().description;
        return std::unexpected(std::move(error));
    }
    if (auto chosen = choose(address.name); !chosen) return std::unexpected(chosen.error());
    connection->isChosen = true;
    return *connection;
}

Result<> Connections::disconnect(const Connection& connection) {
    std::vector<std::string> words{
        platform::hasHostProgram("fusermount3") ? "fusermount3" : "fusermount", "-u"};
    if (connection.state == Connection::State::Gone) words.emplace_back("-z");
    words.push_back(connection.folder);
    if (auto unmounted = run(words); !unmounted) {
        return failure(fmt::format("{}: could not be unmounted ({}); is a program still using it?",
                                   connection.name, unmounted.error().description));
    }
    std::error_code ignored;
    fs::remove(connection.folder, ignored);
    if (chosenName() == connection.name) fs::remove(chosenFile(), ignored);
    return {};
}

}  // namespace sweepwright::launch
