#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "apps/AppNames.h"
#include "cli/Command.h"
#include "cli/Confirmation.h"
#include "cli/Context.h"
#include "cli/DevicePaths.h"
#include "cli/KnownApps.h"
#include "cli/PersonalPaths.h"
#include "cli/Text.h"
#include "cli/Translation.h"
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
    Candidates addable;              ///< what a shell offers to add
    std::function<std::string(const std::string&)> storedForm;
    std::function<Outcome(const Words&)> validate;  ///< before anything is added
    /// What a person should know of an entry that is to be added, in one line; empty for nothing.
    std::function<std::string(const std::string&)> warning;
    bool asksWhenWarned = false;  ///< whether adding such an entry needs a yes
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
    const std::string user = builtIn.empty() ? "" : translated("user");
    Table table(
        {{.title = wording::kOrigin, .reader = builtIn.empty() ? Reader::Person : Reader::Everyone},
         {.title = wording::kApp, .holds = Holds::Text, .reader = Reader::Person},
         list.column});
    for (const std::string& entry : builtIn)
        table.row({translated("built-in"), "", entry});
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
            table.row({translated(present ? "already there" : "added"), word});
        } else {
            table.row({translated(present ? "removed" : "was not there"), word});
        }
    }
    showDocument(list, context.output());
    context.output().table(table);
    return {};
}

/// Tells what is to be known of the entries, and asks where that needs a yes.
Outcome warn(const StoredList& list, const Words& words, bool sure) {
    Words warnings;
    for (const std::string& word : words) {
        if (std::string warning = list.warning(word); !warning.empty())
            warnings.push_back(std::move(warning));
    }
    if (warnings.empty()) return {};
    if (!list.asksWhenWarned || sure) {
        std::ranges::for_each(warnings, complain);
        return {};
    }
    Confirmation::Lines lines = warnings;
    lines.push_back(translated(words.size() == 1 ? "Add it?" : "Add them all?"));
    return confirm({.why = fmt::format("{}", fmt::join(warnings, "; ")),
                    .otherwise = translated("nothing was added"),
                    .question = Confirmation::asking(std::move(lines))},
                   sure);
}

Outcome add(const StoredList& list, Context& context, const Call& call) {
    const Words& words = call.words(list.positional);
    if (auto good = list.validate(words); !good) return good;
    if (auto readable = requireReadable(list); !readable) return readable;
    if (auto warned = warn(list, words, call.has("--yes")); !warned) return warned;
    return change(list, context, words, true);
}

Outcome clear(const StoredList& list, Context& context, bool sure) {
    if (auto readable = requireReadable(list); !readable) return readable;
    const std::size_t count = list.entries().size();
    const std::string what = told("{} from {}", counted(count, "entry", "entries"), list.words);
    const auto agreed =
        confirm({.why = translated("this empties the list"),
                 .otherwise = translated("the list is as it was"),
                 .question = Confirmation::askingUnlessEmpty(count, told("Remove {}?", what))},
                sure);
    if (!agreed) return agreed;
    if (auto cleared = list.clear(); !cleared) return failed(cleared.error());
    showDocument(list, context.output());
    context.output().line(told("removed {}", what));
    return {};
}

Positional offering(Positional positional, Candidates candidates) {
    positional.candidates = std::move(candidates);
    return positional;
}

void addListCommands(Commands& commands, const StoredList& list) {
    const std::string program = "sweepctl " + list.words;
    const Positional entries{.name = list.positional, .help = "one or more", .many = true};
    const Option yes{.name = "--yes", .value = "", .help = "do it without a question"};
    commands.push_back(
        {.words = list.words,
         .group = kProtectionGroup,
         .summary = "show the list",
         .examples = {program},
         .run = [list](Context& context, const Call&) { return show(list, context); }});
    commands.push_back(
        {.words = list.words + " add",
         .group = kProtectionGroup,
         .summary = list.purpose,
         .positionals = {offering(entries, list.addable)},
         .options = list.asksWhenWarned ? std::vector{yes} : std::vector<Option>(),
         .examples = {fmt::format("{} add {}", program, list.example)},
         .run = [list](Context& context, const Call& call) { return add(list, context, call); }});
    commands.push_back(
        {.words = list.words + " remove",
         .group = kProtectionGroup,
         .summary = "take entries off the list",
         .positionals = {offering(entries,
                                  [list](const auto&) { return candidatesFrom(list.entries()); })},
         .run = [list](Context& context, const Call& call) {
             return change(list, context, call.words(list.positional), false);
         }});
    commands.push_back({.words = list.words + " clear",
                        .group = kProtectionGroup,
                        .summary = "take every entry off the list",
                        .options = {yes},
                        .run = [list](Context& context, const Call& call) {
                            return clear(list, context, call.has("--yes"));
                        }});
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

/// What a list has to do with a path, as a document says it and in words.
struct Answer {
    bool isTouched = false;
    std::string words;
};

/// A command that asks a list about paths.
void addCheckCommand(Commands& commands, const StoredList& list, const std::string& summary,
                     const std::function<Answer(const std::string&)>& question) {
    commands.push_back({.words = list.words + " check",
                        .group = kProtectionGroup,
                        .summary = summary,
                        .positionals = {{.name = list.positional,
                                         .help = "one or more",
                                         .many = true,
                                         .candidates = devicePaths}},
                        .run = [=](Context& context, const Call& call) -> Outcome {
                            if (auto readable = requireReadable(list); !readable) return readable;
                            Table table({{.title = wording::kAnswer}, list.column});
                            std::vector<std::pair<std::string, bool>> answers;
                            for (const std::string& path : call.words(list.positional)) {
                                const Answer answer = question(path);
                                answers.emplace_back(path, answer.isTouched);
                                table.row({translated(answer.words), path});
                            }
                            context.output().document(checkDocument(answers));
                            context.output().table(table);
                            return {};
                        }});
}

Words nothing() {
    return {};
}
std::string noWarning(const std::string& /*word*/) {
    return {};
}

std::string warningOfPersonalData(const std::string& path) {
    const std::string holds = personalDataAt(path);
    if (holds.empty()) return {};
    return told("{}: holds {}, and every clean of the caches would empty it", path, holds);
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
        .addable = devicePaths,
        .storedForm = PathWhitelistManager::normalizePath,
        .validate = checkDevicePaths,
        .warning = noWarning,
        .add = [=](const std::string& path) { return manager().addPathToWhitelist(path); },
        .remove = [=](const std::string& path) -> Result<> {
            if (PathWhitelistManager::isBuiltInPath(path)) {
                return std::unexpected(platform::Error{
                    "PathWhitelistManager", 1, told("{}: is built in and can't be removed", path)});
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
        .addable = installedApps,
        .storedForm = asItIs,
        .validate = [](const Words&) { return Outcome(); },
        .warning = whyUnknownApp,  // who mistypes an identifier would believe an app protected
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
        .addable = devicePaths,
        .storedForm = asItIs,
        .validate = checkDevicePaths,
        .warning = warningOfPersonalData,
        .asksWhenWarned = true,
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
    addCheckCommand(commands, paths, "tell whether paths are protected, or hold what is",
                    [](const std::string& path) -> Answer {
                        const auto& manager = PathWhitelistManager::sharedManager();
                        if (!manager.isPathInWhitelist(path)) return {false, "free"};
                        if (!manager.holdsProtectedPath(path)) return {true, "protected"};
                        return {true, "holds a protected path: never removed whole"};
                    });
    addListCommands(commands, appWhitelist());
    const StoredList custom = customPaths();
    addListCommands(commands, custom);
    addCheckCommand(commands, custom, "tell whether paths match a custom path",
                    [](const std::string& path) -> Answer {
                        const bool is = CustomPathManager::sharedManager().isCustomPath(path);
                        return {is, is ? "custom" : "other"};
                    });
}

}  // namespace sweepwright::cli
