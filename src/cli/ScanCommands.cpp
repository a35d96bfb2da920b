#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "cli/Categories.h"
#include "cli/Command.h"
#include "cli/Context.h"
#include "cli/Wording.h"
#include "engine/FileCleanerEngine.h"

namespace sweepwright::cli {

namespace {

constexpr int kSteps = 10;  // the nine categories and the custom paths

/// A figure is no promise when what must stay can't be told: a clean would refuse.
void warnIfUnprotected(FileCleanerEngine& engine) {
    if (auto ready = engine.readiness(); !ready) {
        complain("a clean would refuse, and the sizes may hold what is protected: " +
                 ready.error().description);
    }
}

std::string_view labelOf(std::string_view key) {
    const auto all = categories();
    const auto found = std::ranges::find(all, key, &Category::key);
    return found == all.end() ? key : found->label;
}

Share shareOf(std::uint64_t part, std::uint64_t total) {
    return {total == 0 ? 0 : static_cast<double>(part) / static_cast<double>(total)};
}

std::string percentText(std::uint64_t part, std::uint64_t total) {
    if (total == 0) return "0%";
    return fmt::format("{:.0f}%", 100.0 * static_cast<double>(part) / static_cast<double>(total));
}

Table scanTable(const ScanResult& result) {
    Table table({{.title = wording::kCategory},
                 {.title = wording::kSize, .align = Align::Right},
                 {.title = wording::kShare, .align = Align::Right},
                 {.holds = Holds::Bar, .reader = Reader::Person, .spare = 1}});
    const std::uint64_t total = result.totalSize;
    for (const Category& category : categories()) {
        const std::uint64_t size = result.*category.figure;
        table.row({std::string(category.word), sizeText(size), percentText(size, total),
                   shareOf(size, total)});
    }
    table.row({"total", sizeText(total), percentText(total, total), ""});
    return table;
}

Outcome scan(Context& context, const Call&) {
    FileCleanerEngine& engine = FileCleanerEngine::sharedEngine();
    warnIfUnprotected(engine);
    const ScanResult result = engine.scan([&](std::string_view key, int done) {
        context.progress().update(labelOf(key), static_cast<double>(done) / kSteps);
    });
    context.progress().clear();

    Json document = Json::object();
    for (const auto& [key, bytes] : result.entries())
        document[key] = bytes;
    Output& output = context.output();
    output.document(document);
    output.table(scanTable(result));
    return {};
}

Outcome size(Context& context, const Call& call) {
    FileCleanerEngine& engine = FileCleanerEngine::sharedEngine();
    warnIfUnprotected(engine);
    const std::string& word = call.word("WHAT");
    const Category* category = categoryNamed(word);
    context.progress().update(category != nullptr ? category->label : word, 0);
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
    commands.push_back({.words = "scan",
                        .group = kGroup,
                        .summary = "tell what each category would free",
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
