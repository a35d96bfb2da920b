#include <cstddef>
#include <string>

#include <fmt/format.h>

#include "cli/Categories.h"
#include "cli/CleanRun.h"
#include "cli/Command.h"
#include "cli/Context.h"
#include "engine/CleanPreview.h"
#include "engine/FileCleanerEngine.h"

namespace sweepwright::cli {

namespace {

Outcome previewed(Context& context, const platform::Result<CleanPreview>& preview) {
    context.progress().clear();
    if (!preview) return failed(preview.error());
    showPreview(context.output(), *preview);
    return {};
}

Outcome clean(Context& context, const Call& call) {
    const std::string& word = call.word("CATEGORY");
    const Category* category = categoryNamed(word);
    const CleanType type = category != nullptr ? category->type : CleanType::All;
    if (call.has("--dry-run")) {
        context.progress().update("finding what would go", 0);
        const auto preview = previewClean(EngineServices::shared(), type, &context.failures());
        const std::uint64_t scanned = preview ? scannedSize(context.engine(), category) : 0;
        auto shown = previewed(context, preview);
        if (shown && scanned != preview->wouldFree)
            context.output().line(fmt::format("a scan counts {} there", sizeText(scanned)));
        return shown;
    }
    const std::string what =
        category != nullptr ? std::string(category->label) : "the data of all nine categories";
    if (auto sure = confirm(fmt::format("Remove {}?", what), call.has("--yes")); !sure) return sure;
    FileCleanerEngine& engine = context.engine();
    return runClean(context, {.start =
                                  [&](CleanProgress progress, CleanCompletion completion) {
                                      engine.cleanWithType(type, std::move(progress),
                                                           std::move(completion));
                                  },
                              .stop = [&engine] { engine.stop(); }});
}

Outcome deepClean(Context& context, const Call& call) {
    if (call.has("--dry-run")) {
        context.progress().update("finding what would go", 0);
        return previewed(context, previewDeepClean(EngineServices::shared(), &context.failures()));
    }
    if (auto sure = confirm("Remove the caches of the system?", call.has("--yes")); !sure) {
        return sure;
    }
    context.progress().update("caches of the system", 0);
    FileCleanerEngine& engine = context.engine();
    return runClean(context, {.start =
                                  [&](const CleanProgress&, CleanCompletion completion) {
                                      engine.deepCleanWithCompletion(std::move(completion));
                                  },
                              .stop = [&engine] { engine.stop(); },
                              .countsWhatWasThere = true});
}

}  // namespace

void addCleanCommands(Commands& commands) {
    constexpr const char* kGroup = "Clean";
    const std::vector<Option> options{
        {.name = "--yes", .value = "", .help = "do it without a question"},
        {.name = "--dry-run",
         .value = "",
         .help = "tell what would go and what stays; remove nothing"}};
    commands.push_back(
        {.words = "clean",
         .group = kGroup,
         .summary = "remove what a category holds",
         .positionals = {{.name = "CATEGORY", .help = "one of", .choices = categoryWords({"all"})}},
         .options = options,
         .examples = {"sweepctl clean cache --dry-run", "sweepctl clean all --yes"},
         .run = clean});
    commands.push_back({.words = "deep-clean",
                        .group = kGroup,
                        .summary = "sweep the caches of the system",
                        .options = options,
                        .run = deepClean});
}

}  // namespace sweepwright::cli
