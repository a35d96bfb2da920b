#include <algorithm>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "cli/Command.h"
#include "cli/Context.h"
#include "cli/Translation.h"
#include "cli/Wording.h"
#include "launch/Connections.h"

namespace sweepwright::cli {

namespace {

using launch::Connection;
using launch::Connections;

Json documentOf(const Connection& connection) {
    return {{"name", connection.name},
            {"folder", connection.folder},
            {"answers", connection.state == Connection::State::Connected},
            {"chosen", connection.isChosen}};
}

Outcome connect(Context& context, const Call& call) {
    const auto address = launch::DeviceAddress::parse(call.word("ADDRESS"));
    if (!address) return wrongWords(address.error().description);
    auto connections = Connections::ofPerson(launch::processEnvironment());
    if (!connections) return failed(connections.error());
    const auto connected = connections->connect(*address);
    if (!connected) return failed(connected.error());
    Output& output = context.output();
    output.document(documentOf(*connected));
    output.line(told("{} is connected, and used where no other device is named: {}",
                     connected->name, output.shown(connected->folder)));
    return {};
}

/// A device that answers no more would make every other command wait for it.
Outcome clearGone(Connections& connections, std::vector<Connection>& known) {
    for (const Connection& connection : known) {
        if (connection.state != Connection::State::Gone) continue;
        if (auto cleared = connections.disconnect(connection); !cleared)
            return failed(cleared.error());
        complain(told("{}: answered no more and was unmounted", connection.name));
    }
    std::erase_if(known, [](const Connection& connection) {
        return connection.state == Connection::State::Gone;
    });
    return {};
}

Outcome devices(Context& context, const Call& /*call*/) {
    auto connections = Connections::ofPerson(launch::processEnvironment());
    if (!connections) return failed(connections.error());
    auto known = connections->all();
    if (auto cleared = clearGone(*connections, known); !cleared) return cleared;
    Json document = Json::array();
    Table table({{.title = wording::kDevice, .holds = Holds::Identifier},
                 {.title = wording::kUsed},
                 {.title = wording::kPath, .holds = Holds::Path}});
    for (const Connection& connection : known) {
        document.push_back(documentOf(connection));
        table.row({connection.name, connection.isChosen ? translated("used", "used device") : "",
                   connection.folder});
    }
    context.output().document(document);
    context.output().table(table);
    return {};
}

std::vector<Candidate> connectedNames(const std::string& /*begun*/) {
    std::vector<Candidate> names;
    const auto connections = Connections::ofPerson(launch::processEnvironment());
    if (!connections) return names;
    for (const Connection& connection : connections->all())
        names.push_back({connection.name, connection.folder});
    return names;
}

/// The one that is named, or the one that is used, or the only one.
std::expected<Connection, Failure> meant(const std::vector<Connection>& known,
                                         const std::vector<std::string>& words) {
    const auto found = std::ranges::find_if(known, [&](const Connection& connection) {
        return words.empty() ? connection.isChosen || known.size() == 1
                             : connection.name == words.front();
    });
    if (found != known.end()) return *found;
    if (!words.empty())
        return wrongWords(told("no device {} is connected; see sweepctl devices", words.front()));
    return wrongWords(translated(known.empty() ? "no device is connected"
                                               : "name one of the devices; see sweepctl devices"));
}

Outcome disconnect(Context& context, const Call& call) {
    auto connections = Connections::ofPerson(launch::processEnvironment());
    if (!connections) return failed(connections.error());
    const auto connection = meant(connections->all(), call.words("NAME"));
    if (!connection) return std::unexpected(connection.error());
    if (auto unmounted = connections->disconnect(*connection); !unmounted)
        return failed(unmounted.error());
    context.output().document(Json{{"disconnected", connection->name}});
    context.output().line(told("{} is disconnected", connection->name));
    return {};
}

}  // namespace

void addConnectCommands(Commands& commands) {
    constexpr const char* kGroup = "Connect";
    commands.push_back(
        {.words = "connect",
         .group = kGroup,
         .summary = "mount a device, and use it from then on where none is named",
         .positionals = {{.name = "ADDRESS",
                          .help = "usb (with ifuse), or [USER@]HOST[:PORT] (with sshfs)"}},
         .examples = {"sweepctl connect root@phone.local"},
         .needsDevice = false,
         .run = connect});
    commands.push_back({.words = "devices",
                        .group = kGroup,
                        .summary = "list the connected devices; those that answer no more are "
                                   "unmounted",
                        .needsDevice = false,
                        .run = devices});
    commands.push_back({.words = "disconnect",
                        .group = kGroup,
                        .summary = "unmount a device: the one in use, where none is named",
                        .positionals = {{.name = "NAME",
                                         .help = "as sweepctl devices lists it",
                                         .optional = true,
                                         .candidates = connectedNames}},
                        .needsDevice = false,
                        .run = disconnect});
}

}  // namespace sweepwright::cli
