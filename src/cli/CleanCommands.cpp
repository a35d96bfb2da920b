#include <cstddef>
#include <string>

#include <fmt/format.h>

#include "cli/Categories.h"
#include "cli/CleanQuestion.h"
#include "cli/CleanRun.h"
#include "cli/Command.h"
#include "cli/Context.h"
#include "cli/PreviewOutput.h"
#include "cli/Translation.h"
#include "cli/Wording.h"
#include "engine/CleanPreview.h"
#include "engine/FileCleanerEngine.h"

namespace sweepwright::cli {

namespace {

std::string nameOf(const CleanPart& part) {
    const Category* category = categoryOf(part.type);
    return translated(category != nullptr ? category->label : wording::kSystemCaches);
}

Outcome previewed(Context& context, const Call& call,
                  const platform::Result<CleanPreview>& preview) {
    if (!preview) return failed(preview.error());
    showPreview(context.output(), *preview, {.nameOf = nameOf, .full = call.has("--full")});
    return {};
}

Outcome clean(Context& context, const Call& call) {
    if (auto good = checkPreviewOptions(call); !good) return good;
    const std::string& word = call.word("CATEGORY");
    const Category* category = categoryNamed(word);
    const CleanType type = category != nullptr ? category->type : CleanType::All;
    const auto dryRun = [type](CleanObserver* observer) {
        return previewClean(EngineServices::shared(), type, observer);
    };
    if (call.has("--dry-run")) {
        const auto preview = findWhatWouldGo(context, dryRun, &context.failures());
        const std::uint64_t scanned = preview ? scannedSize(context.engine(), category) : 0;
        auto shown = previewed(context, call, preview);
        if (shown && scanned != preview->wouldFree)
            context.output().line(told("a scan counts {} there", sizeText(scanned)));
        return shown;
    }
    const CleanQuestion question{
        .from = category != nullptr ? translated(category->label)
                                    : told("{} categories", categories().size()),
        .emptiesCustomPaths = type == CleanType::Cache || type == CleanType::All,
        .dryRun = dryRun};
    if (auto sure = confirmClean(context, question, call.has("--yes")); !sure) return sure;
    FileCleanerEngine& engine = context.engine();
    return runClean(context, {.start =
                                  [&](CleanProgress progress, CleanCompletion completion) {
                                      engine.cleanWithType(type, std::move(progress),
                                                           std::move(completion));
                                  },
                              .stop = [&engine] { engine.stop(); }});
}

Outcome deepClean(Context& context, const Call& call) {
    if (auto good = checkPreviewOptions(call); !good) return good;
    const auto dryRun = [](CleanObserver* observer) {
        return previewDeepClean(EngineServices::shared(), observer);
    };
    if (call.has("--dry-run"))
        return previewed(context, call, findWhatWouldGo(context, dryRun, &context.failures()));
    const CleanQuestion question{.from = translated("the caches of the system"), .dryRun = dryRun};
    if (auto sure = confirmClean(context, question, call.has("--yes")); !sure) return sure;
    context.progress().update(translated(wording::kSystemCaches), 0);
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
    std::vector<Option> options{{.name = "--yes", .value = "", .help = "do it without a question"}};
    addPreviewOptions(options);
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
