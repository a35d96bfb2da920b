#include <algorithm>
#include <limits>
#include <string>

#include <fmt/format.h>

#include "cli/Command.h"
#include "cli/Confirmation.h"
#include "cli/Context.h"
#include "cli/ReadableDefaults.h"
#include "cli/Text.h"
#include "cli/Translation.h"
#include "cli/Wording.h"
#include "platform/text/DateText.h"
#include "protection/CleanHistoryManager.h"
#include "protection/CleanStatistics.h"

namespace sweepwright::cli {

namespace {

Json dateValue(const std::optional<CleanHistoryItem::Date>& date) {
    return date ? Json(platform::dateText(*date)) : Json(nullptr);
}

Json recordsDocument(const std::vector<CleanHistoryItem>& records) {
    Json document = Json::array();
    for (const CleanHistoryItem& item : records) {
        document.push_back(Json{{"identifier", item.identifier},
                                {"cleanType", static_cast<std::int64_t>(item.cleanType)},
                                {"cleanTypeName", replacingBadBytes(item.cleanTypeName)},
                                {"cleanedBytes", item.cleanedBytes},
                                {"cleanDate", platform::dateText(item.cleanDate)}});
    }
    return document;
}

std::vector<Candidate> recordIdentifiers(const std::string& /*begun*/) {
    std::vector<Candidate> records;
    for (const auto& item : CleanHistoryManager::sharedManager().getAllCleanHistory()) {
        records.push_back(
            {item.identifier,
             fmt::format("{}, {}", platform::dateText(item.cleanDate), item.cleanTypeName)});
    }
    return records;
}

/// The document of the records that are left after a change.
void showRest(Output& output) {
    output.document(recordsDocument(CleanHistoryManager::sharedManager().getAllCleanHistory()));
}

Outcome history(Context& context, const Call& call) {
    if (auto readable = requireReadableDefaults(); !readable) return readable;
    const std::uint64_t limit =
        call.number("--limit").value_or(std::numeric_limits<std::uint64_t>::max());
    const auto records = CleanHistoryManager::sharedManager().getRecentCleanHistory(limit);
    Table table({{.title = wording::kDate},
                 {.title = wording::kFreed, .align = Align::Right},
                 {.title = wording::kWhat, .holds = Holds::Text, .reader = Reader::Person},
                 {.title = wording::kRecord, .holds = Holds::Identifier},
                 {.reader = Reader::Program}});
    for (const CleanHistoryItem& item : records) {
        table.row({platform::dateText(item.cleanDate), sizeText(item.cleanedBytes),
                   item.cleanTypeName, item.identifier, item.cleanTypeName});
    }
    context.output().document(recordsDocument(records));
    context.output().table(table);
    return {};
}

Outcome confirmDeleting(std::size_t count, std::size_t stored, bool sure) {
    const std::string question =
        told("Delete {} of {}?", count, counted(stored, "record", "records"));
    return confirm({.why = translated("this deletes records"),
                    .otherwise = translated("no record was deleted"),
                    .question = Confirmation::askingUnlessEmpty(count, question)},
                   sure);
}

Outcome deleteHistory(Context& context, const Call& call) {
    if (auto readable = requireReadableDefaults(); !readable) return readable;
    CleanHistoryManager& manager = CleanHistoryManager::sharedManager();
    const auto& identifiers = call.words("ID");
    const auto stored = manager.getAllCleanHistory();
    for (const std::string& identifier : identifiers) {
        if (std::ranges::find(stored, identifier, &CleanHistoryItem::identifier) == stored.end())
            return failed(
                {"CleanHistoryManager", -1,
                 told("{}: no recorded clean has this identifier; none was deleted", identifier)});
    }
    if (auto agreed = confirmDeleting(identifiers.size(), stored.size(), call.has("--yes"));
        !agreed)
        return agreed;
    Table table({{.title = wording::kResult}, {.title = wording::kRecord}});
    for (const std::string& identifier : identifiers) {
        CleanHistoryItem item;
        item.identifier = identifier;
        if (auto deleted = manager.deleteHistoryItem(item); !deleted)
            return failed(deleted.error());
        table.row({translated("deleted"), identifier});
    }
    showRest(context.output());
    context.output().table(table);
    return {};
}

Outcome clearHistory(Context& context, const Call& call) {
    if (auto readable = requireReadableDefaults(); !readable) return readable;
    CleanHistoryManager& manager = CleanHistoryManager::sharedManager();
    const std::size_t count = manager.getAllCleanHistory().size();
    if (auto agreed = confirmDeleting(count, count, call.has("--yes")); !agreed) return agreed;
    if (auto cleared = manager.clearAllHistory(); !cleared) return failed(cleared.error());
    showRest(context.output());
    context.output().line(told("deleted {}", counted(count, "record", "records")));
    return {};
}

Outcome stats(Context& context, const Call& /*call*/) {
    if (auto readable = requireReadableDefaults(); !readable) return readable;
    const CleanHistoryStatistics kept = CleanHistoryManager::sharedManager().getStatistics();
    const CleanStatistics::Totals running = CleanStatistics::sharedStatistics().totals();
    context.output().document(
        Json{{"history",
              {{"totalCleanedBytes", kept.totalCleanedBytes},
               {"totalCleanCount", kept.totalCleanCount},
               {"firstCleanDate", dateValue(kept.firstCleanDate)},
               {"lastCleanDate", dateValue(kept.lastCleanDate)}}},
             {"running",
              {{"totalCleanedBytes", running.totalCleanedBytes},
               {"cleanCount", running.cleanCount},
               {"lastCleanDate",
                running.lastCleanDate ? Json(*running.lastCleanDate) : Json(nullptr)}}}});
    Table table({{.title = wording::kSource},
                 {.title = wording::kFreed, .align = Align::Right},
                 {.title = wording::kCleans, .align = Align::Right},
                 {.title = wording::kLastClean, .holds = Holds::Text}});
    table.row({translated("history"), sizeText(kept.totalCleanedBytes),
               std::to_string(kept.totalCleanCount),
               kept.lastCleanDate ? platform::dateText(*kept.lastCleanDate) : "-"});
    table.row({translated("running"), sizeText(running.totalCleanedBytes),
               std::to_string(running.cleanCount), running.lastCleanDate.value_or("-")});
    context.output().table(table);
    context.output().note("");
    for (const std::string_view explanation : {wording::kStatsHistory, wording::kStatsRunning})
        context.output().note(translated(explanation));
    return {};
}

}  // namespace

void addHistoryCommands(Commands& commands) {
    constexpr const char* kGroup = "Records";
    const std::vector<Option> options{
        {.name = "--yes", .value = "", .help = "do it without a question"}};
    commands.push_back({.words = "history",
                        .group = kGroup,
                        .summary = "list the recorded cleans, newest first",
                        .options = {{.name = "--limit", .value = "N", .help = "at most so many"}},
                        .examples = {"sweepctl history --limit 5"},
                        .run = history});
    commands.push_back(
        {.words = "history delete",
         .group = kGroup,
         .summary = "delete records",
         .positionals =
             {{.name = "ID", .help = "identifiers", .many = true, .candidates = recordIdentifiers}},
         .options = options,
         .run = deleteHistory});
    commands.push_back({.words = "history clear",
                        .group = kGroup,
                        .summary = "delete all records",
                        .options = options,
                        .run = clearHistory});
    commands.push_back({.words = "stats",
                        .group = kGroup,
                        .summary = "what was cleaned in all: bytes, cleans, the last one",
                        .run = stats});
}

}  // namespace sweepwright::cli
