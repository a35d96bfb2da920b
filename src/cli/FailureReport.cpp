#include "cli/FailureReport.h"

#include <string>
#include <string_view>

#include <fmt/format.h>

#include "cli/Text.h"
#include "cli/Translation.h"

namespace sweepwright::cli {

namespace {

Json arrayOf(const FailureList& list) {
    Json array = Json::array();
    for (const FailureList::Entry& entry : list.entries) {
        Json object = Json::object();
        setPath(object, "path", entry.path);
        object["reason"] = replacingBadBytes(entry.reason);
        array.push_back(std::move(object));
    }
    return array;
}

/// What a document says of the failures; empty when there are none.
Json failureKeys(const Failures& failures) {
    Json keys = Json::object();
    const auto add = [&keys](const FailureList& list, const char* number, const char* all) {
        if (list.count == 0) return;
        keys[number] = list.count;
        keys[all] = arrayOf(list);
    };
    add(failures.unreadableFolders(), "unreadable", "unreadableFolders");
    add(failures.failedEntries(), "failed", "failedEntries");
    if (const auto error = failures.recordError()) keys["recordError"] = errorValue(*error);
    return keys;
}

/// `what` reads "2 folders could not be read".
void tellList(const FailureList& list, const std::string& what, bool all) {
    if (list.count == 0) return;
    if (!all) return complain(told("{}, first: {}", what, list.entries.front().reason));
    complain(what + ":");
    for (const FailureList::Entry& entry : list.entries)
        complain("  " + entry.reason);
    if (list.count > list.entries.size())
        complain(told("  and {} more", list.count - list.entries.size()));
}

}  // namespace

void tellFailures(Output& output, const Failures& failures, bool all) {
    const Json keys = failureKeys(failures);
    if (keys.empty()) return;
    const bool documented = output.addToDocument(keys);
    const bool each = all || (output.json() && !documented);
    const FailureList folders = failures.unreadableFolders();
    tellList(folders, told("{} could not be read", counted(folders.count, "folder", "folders")),
             each);
    const FailureList entries = failures.failedEntries();
    tellList(entries, told("{} could not be removed", counted(entries.count, "entry", "entries")),
             each);
    if (const auto error = failures.recordError())
        complain(told("this clean could not be recorded: {}", error->description));
}

}  // namespace sweepwright::cli
