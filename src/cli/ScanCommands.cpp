#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "cli/Categories.h"
#include "cli/Command.h"
#include "cli/Context.h"
#include "cli/Translation.h"
#include "cli/Wording.h"
#include "engine/CleanPreview.h"
#include "engine/FileCleanerEngine.h"

namespace sweepwright::cli {

namespace {

/// What a scan, or the question what would go, has to do: the categories, and one thing more.
double shareDone(std::size_t steps) {
    return static_cast<double>(steps) / static_cast<double>(categories().size() + 1);
}

/// A figure is no promise when what must stay can't be told: a clean would refuse.
void warnIfUnprotected(FileCleanerEngine& engine) {
    if (auto ready = engine.readiness(); !ready) {
        complain(told("a clean would refuse, and the sizes may hold what is protected: {}",
                      ready.error().description));
    }
}

std::string labelOf(std::string_view key) {
    const auto all = categories();
    const auto found = std::ranges::find(all, key, &Category::key);
    return found == all.end() ? std::string(key) : translated(found->label);
}

/// A category's word, which a person types, behind its name where that is in another language.
std::string nameOf(const Category& category) {
    const std::string label = translated(category.label);
    return label == category.label ? std::string(category.word)
                                   : fmt::format("{} {}", label, category.word);
}

Share shareOf(std::uint64_t part, std::uint64_t total) {
    return {total == 0 ? 0 : static_cast<double>(part) / static_cast<double>(total)};
}

std::string percentText(std::uint64_t part, std::uint64_t total) {
    if (total == 0) return "0%";
    return fmt::format("{:.0f}%", 100.0 * static_cast<double>(part) / static_cast<double>(total));
}

/// Bytes that cleans would free, by the words of the categories and "total".
using WouldFree = std::map<std::string, std::uint64_t, std::less<>>;

Table scanTable(const ScanResult& result, const WouldFree& wouldFree) {
    std::vector<Column> columns{{.title = wording::kCategory},
                                {.title = wording::kSize, .align = Align::Right},
                                {.title = wording::kShare, .align = Align::Right}};
    if (!wouldFree.empty())
        columns.push_back({.title = wording::kWouldFree, .align = Align::Right});
    columns.push_back({.holds = Holds::Bar, .reader = Reader::Person, .spare = 1});
    Table table(std::move(columns));
    const std::uint64_t total = result.totalSize;
    const auto add = [&](std::string_view word, std::string name, std::uint64_t size, Cell bar) {
        std::vector<Cell> row{std::move(name), sizeText(size), percentText(size, total)};
        if (const auto found = wouldFree.find(word); found != wouldFree.end())
            row.emplace_back(sizeText(found->second));
        row.push_back(std::move(bar));
        table.row(std::move(row));
    };
    for (const Category& category : categories()) {
        const std::uint64_t size = result.*category.figure;
        add(category.word, nameOf(category), size, shareOf(size, total));
    }
    add("total", translated("total"), total, "");
    return table;
}

/// What a clean of each category by itself, and what one of all of them, would free.
platform::Result<WouldFree> findWouldFree(Context& context) {
    WouldFree found;
    const auto add = [&](std::string_view word, CleanType type) -> platform::Result<> {
        context.progress().update(translated("finding what would go"), shareDone(found.size()));
        const auto preview = previewClean(EngineServices::shared(), type, &context.failures());
        if (!preview) return std::unexpected(preview.error());
        found.emplace(word, preview->wouldFree);
        return {};
    };
    for (const Category& category : categories())
        if (auto added = add(category.word, category.type); !added)
            return std::unexpected(added.error());
    if (auto added = add("total", CleanType::All); !added) return std::unexpected(added.error());
    return found;
}

Outcome scan(Context& context, const Call& call) {
    FileCleanerEngine& engine = context.engine();
    warnIfUnprotected(engine);
    const ScanResult result = engine.scan([&](std::string_view key, int done) {
        context.progress().update(labelOf(key), shareDone(static_cast<std::size_t>(done)));
    });
    platform::Result<WouldFree> wouldFree;
    if (call.has("--would-free")) wouldFree = findWouldFree(context);
    context.progress().clear();
    if (!wouldFree) return failed(wouldFree.error());

    Json document = Json::object();
    for (const auto& [key, bytes] : result.entries())
        document[key] = bytes;
    if (!wouldFree->empty()) document["wouldFree"] = *wouldFree;
    Output& output = context.output();
    output.document(document);
    output.table(scanTable(result, *wouldFree));
    if (wouldFree->empty()) output.note(translated(wording::kScanIsNoClean));
    return {};
}

Outcome size(Context& context, const Call& call) {
    FileCleanerEngine& engine = context.engine();
    warnIfUnprotected(engine);
    const std::string& word = call.word("WHAT");
    const Category* category = categoryNamed(word);
    context.progress().update(category != nullptr ? translated(category->label) : word, 0);
    std::uint64_t bytes = 0;
    if (category != nullptr) {
        bytes = (engine.*category->size)();
    } else {
        bytes = word == "system" ? engine.getSystemCacheSize() : engine.getCustomPathsSize();
    }
    context.progress().clear();
    context.output().document(Json{{"size", bytes}});
    context.output().line(sizeText(bytes));
    return {};
}

}  // namespace

void addScanCommands(Commands& commands) {
    constexpr const char* kGroup = "Measure";
    commands.push_back(
        {.words = "scan",
         .group = kGroup,
         .summary = "measure what lies in the places that each category's clean visits",
         .options = {{.name = "--would-free",
                      .value = "",
                      .help = "beside it, what the cleans would free; takes as long "
                              "as some more scans"}},
         .examples = {"sweepctl scan", "sweepctl scan --json"},
         .run = scan});
    commands.push_back({.words = "size",
                        .group = kGroup,
                        .summary = "measure one category, the system's caches or the custom paths",
                        .positionals = {{.name = "WHAT",
                                         .help = "one of",
                                         .choices = categoryWords({"system", "custom"})}},
                        .examples = {"sweepctl size logs"},
                        .run = size});
}

}  // namespace sweepwright::cli
