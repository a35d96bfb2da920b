#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <utility>

#include <fmt/format.h>

#include "apps/AppNames.h"
#include "cli/Command.h"
#include "cli/Context.h"
#include "cli/DevicePaths.h"
#include "cli/Wording.h"
#include "protection/AppWhitelistManager.h"
#include "protection/CustomPathManager.h"
#include "protection/PathWhitelistManager.h"

namespace sweepwright::cli {

namespace {

using platform::Result;
using Words = std::vector<std::string>;

constexpr const char* kProtectionGroup = "Protect and add";
constexpr Column kPathColumn{.title = wording::kPath, .holds = Holds::OwnedPath};

/// A stored list as its commands need it: shown, added to, removed from, emptied.
struct StoredList {
    std::string words;       ///< the command that shows it: "whitelist paths"
    std::string positional;  ///< what its entries are called: "PATH"
    std::string example;     ///< one entry
    std::string purpose;     ///< what adding one does: "protect paths"
    Column column{};         ///< in which its entries stand
    /// What stands beside an entry for a person.
    std::function<std::string(const std::string&)> nameOf{};
    std::function<Result<>()> readiness;
    std::function<Words()> builtIn;  ///< what stands in the list for good
    std::function<Words()> entries;  ///< what people have put there
    std::function<std::string(const std::string&)> storedForm;
    std::function<Outcome(const Words&)> validate;  ///< before anything is added
    std::function<Result<>(const std::string&)> add;
    std::function<Result<>(const std::string&)> remove;
    std::function<Result<>()> clear;
    std::function<Json(const Words& builtIn, const Words& entries)> document;
};

/// An empty answer from a list that can't be read would look like nothing being protected.
Outcome requireReadable(const StoredList& list) {
    if (auto ready = list.readiness(); !ready) return failed(ready.error());
    return {};
}

void showDocument(const StoredList& list, Output& output) {
    output.document(list.document(list.builtIn(), list.entries()));
}

Outcome show(const StoredList& list, Context& context) {
    if (auto readable = requireReadable(list); !readable) return readable;
    showDocument(list, context.output());
    Output& output = context.output();
    const Words builtIn = list.builtIn();
    const std::string user = builtIn.empty() ? "" : "user";
    Table table(
        {{.title = wording::kOrigin, .reader = builtIn.empty() ? Reader::Person : Reader::Everyone},
         {.title = wording::kApp, .holds = Holds::Text, .reader = Reader::Person},
         list.column});
    for (const std::string& entry : builtIn)
        table.row({"built-in", "", entry});
    for (const std::string& entry : list.entries())
        table.row({user, list.nameOf && output.toPerson() ? list.nameOf(entry) : "", entry});
    output.table(table);
    return {};
}

/// Changes the list by each word and tells what became of each.
Outcome change(const StoredList& list, Context& context, const Words& words, bool adding) {
    if (auto readable = requireReadable(list); !readable) return readable;
    Table table({{.title = wording::kResult}, list.column});
    for (const std::string& word : words) {
        Words all = list.entries();
        std::ranges::copy(list.builtIn(), std::back_inserter(all));
        const bool present = std::ranges::find(all, list.storedForm(word)) != all.end();
        if (auto changed = adding ? list.add(word) : list.remove(word); !changed) {
            return failed(changed.error());
        }
        if (adding) {
            table.row({present ? "already there" : "added", word});
        } else {
            table.row({present ? "removed" : "was not there", word});
        }
    }
    showDocument(list, context.output());
    context.output().table(table);
    return {};
}

Outcome clear(const StoredList& list, Context& context) {
    if (auto readable = requireReadable(list); !readable) return readable;
    const std::size_t count = list.entries().size();
    if (auto cleared = list.clear(); !cleared) return failed(cleared.error());
    showDocument(list, context.output());
    context.output().line(fmt::format("removed {}", count));
    return {};
}

void addListCommands(Commands& commands, const StoredList& list) {
    const std::string program = "sweepctl " + list.words;
    const Positional entries{.name = list.positional, .help = "one or more", .many = true};
    commands.push_back(
        {.words = list.words,
         .group = kProtectionGroup,
         .summary = "show the list",
         .examples = {program},
         .run = [list](Context& context, const Call&) { return show(list, context); }});
    commands.push_back({.words = list.words + " add",
                        .group = kProtectionGroup,
                        .summary = list.purpose,
                        .positionals = {entries},
                        .examples = {fmt::format("{} add {}", program, list.example)},
                        .run = [list](Context& context, const Call& call) -> Outcome {
                            const Words& words = call.words(list.positional);
                            if (auto good = list.validate(words); !good) return good;
                            return change(list, context, words, true);
                        }});
    commands.push_back({.words = list.words + " remove",
                        .group = kProtectionGroup,
                        .summary = "take entries off the list",
                        .positionals = {entries},
                        .run = [list](Context& context, const Call& call) {
                            return change(list, context, call.words(list.positional), false);
                        }});
    commands.push_back(
        {.words = list.words + " clear",
         .group = kProtectionGroup,
         .summary = "take every entry off the list",
         .run = [list](Context& context, const Call&) { return clear(list, context); }});
}

/// {"PATH": bool, …}. Keys can't hold bytes that are no UTF-8, so each such path is listed by its
/// base64 under "pathBytes", too.
Json checkDocument(const std::vector<std::pair<std::string, bool>>& answers) {
    Json document = Json::object();
    Json bytes = Json::object();
    for (const auto& [path, answer] : answers) {
        Json held = Json::object();
        setPath(held, "path", path);
        document[held["path"].get<std::string>()] = answer;
        if (held.contains("pathBytes")) bytes[held["pathBytes"].get<std::string>()] = answer;
    }
    if (!bytes.empty()) document["pathBytes"] = std::move(bytes);
    return document;
}

/// A command that asks a list about paths.
void addCheckCommand(Commands& commands, const StoredList& list, const std::string& summary,
                     const std::string& yes, const std::string& no,
                     const std::function<bool(const std::string&)>& question) {
    commands.push_back(
        {.words = list.words + " check",
         .group = kProtectionGroup,
         .summary = summary,
         .positionals = {{.name = list.positional, .help = "one or more", .many = true}},
         .run = [=](Context& context, const Call& call) -> Outcome {
             if (auto readable = requireReadable(list); !readable) return readable;
             Table table({{.title = wording::kAnswer}, list.column});
             std::vector<std::pair<std::string, bool>> answers;
             for (const std::string& path : call.words(list.positional)) {
                 answers.emplace_back(path, question(path));
                 table.row({answers.back().second ? yes : no, path});
             }
             context.output().document(checkDocument(answers));
             context.output().table(table);
             return {};
         }});
}

Words nothing() {
    return {};
}
std::string asItIs(const std::string& word) {
    return word;
}

StoredList pathWhitelist() {
    const auto manager = []() -> PathWhitelistManager& {
        return PathWhitelistManager::sharedManager();
    };
    return {
        .words = "whitelist paths",
        .positional = "PATH",
        .example = "/var/mobile/Media/DCIM",
        .purpose = "protect paths and all beneath them",
        .column = kPathColumn,
        .readiness = [=] { return manager().readiness(); },
        .builtIn = PathWhitelistManager::getBuiltInPaths,
        .entries = [=] { return manager().getUserDefinedPaths(); },
        .storedForm = PathWhitelistManager::normalizePath,
        .validate = checkDevicePaths,
        .add = [=](const std::string& path) { return manager().addPathToWhitelist(path); },
        .remove = [=](const std::string& path) -> Result<> {
            if (PathWhitelistManager::isBuiltInPath(path)) {
                return std::unexpected(platform::Error{
                    "PathWhitelistManager", 1, path + ": is built in and can't be removed"});
            }
            return manager().removePathFromWhitelist(path);
        },
        .clear = [=] { return manager().clearAllWhitelistedPaths(); },
        .document =
            [](const Words& builtIn, const Words& entries) {
                return Json{{"builtIn", pathArray(builtIn)}, {"user", pathArray(entries)}};
            },
    };
}

StoredList appWhitelist() {
    const auto manager = []() -> AppWhitelistManager& {
        return AppWhitelistManager::sharedManager();
    };
    return {
        .words = "whitelist apps",
        .positional = "ID",
        .example = "com.example.app",
        .purpose = "protect apps by their bundle identifiers",
        .column = {.title = wording::kIdentifier, .holds = Holds::Identifier},
        .nameOf =
            [](const std::string& id) {
                const std::string name = AppNames::sharedNames().nameOf(id);
                return name == id ? "" : name;
            },
        .readiness = [=] { return manager().readiness(); },
        .builtIn = nothing,
        .entries = [=] { return manager().getAllWhitelistedApps(); },
        .storedForm = asItIs,
        .validate = [](const Words&) { return Outcome(); },
        .add = [=](const std::string& id) { return manager().addAppToWhitelist(id); },
        .remove = [=](const std::string& id) { return manager().removeAppFromWhitelist(id); },
        .clear = [=] { return manager().clearAllWhitelistedApps(); },
        .document = [](const Words&, const Words& entries) { return pathArray(entries); },
    };
}

StoredList customPaths() {
    const auto manager = []() -> CustomPathManager& { return CustomPathManager::sharedManager(); };
    return {
        .words = "custom-paths",
        .positional = "PATH",
        .example = "/var/mobile/Media/Downloads",
        .purpose = "let a clean of the caches empty folders, too",
        .column = kPathColumn,
        .readiness = [=] { return manager().readiness(); },
        .builtIn = nothing,
        .entries = [=] { return manager().getAllCustomPaths(); },
        .storedForm = asItIs,
        .validate = checkDevicePaths,
        .add = [=](const std::string& path) { return manager().addCustomPath(path); },
        .remove = [=](const std::string& path) { return manager().removeCustomPath(path); },
        .clear = [=] { return manager().clearAllCustomPaths(); },
        .document = [](const Words&, const Words& entries) { return pathArray(entries); },
    };
}

}  // namespace

void addProtectionCommands(Commands& commands) {
    const StoredList paths = pathWhitelist();
    addListCommands(commands, paths);
    addCheckCommand(commands, paths, "tell whether paths are protected", "protected", "free",
                    [](const std::string& path) {
                        return PathWhitelistManager::sharedManager().isPathInWhitelist(path);
                    });
    addListCommands(commands, appWhitelist());
    const StoredList custom = customPaths();
    addListCommands(commands, custom);
    addCheckCommand(commands, custom, "tell whether paths match a custom path", "custom", "other",
                    [](const std::string& path) {
                        return CustomPathManager::sharedManager().isCustomPath(path);
                    });
}

}  // namespace sweepwright::cli
