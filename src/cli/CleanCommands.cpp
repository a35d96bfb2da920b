#include <cstddef>
#include <string>

#include <fmt/format.h>

#include "cli/Categories.h"
#include "cli/CleanQuestion.h"
#include "cli/CleanRun.h"
#include "cli/Command.h"
#include "cli/Context.h"
#include "engine/CleanPreview.h"
#include "engine/FileCleanerEngine.h"

namespace sweepwright::cli {

namespace {

/// Counts what could not be removed, which a clean goes past.
class FailureCounter final : public CleanObserver {
  public:
    void removed(const std::string& /*path*/, std::uint64_t /*bytes*/) override {}
    void kept(const std::string& path, KeptReason reason, const std::string& by) override {
        if (reason != KeptReason::Failed) return;
        if (count_++ == 0) first_ = by.empty() ? path : by;
    }

    /// One line about the failures, if there were any.
    void report() const {
        if (count_ == 0) return;
        complain(fmt::format("{} could not be removed, first: {}",
                             count_ == 1 ? "1 entry" : fmt::format("{} entries", count_), first_));
    }

  private:
    std::size_t count_ = 0;
    std::string first_;
};

Outcome previewed(Context& context, const DryRun& dryRun) {
    const auto preview = findWhatWouldGo(context, dryRun);
    if (!preview) return failed(preview.error());
    showPreview(context.output(), *preview);
    return {};
}

/// Runs `start` of the shared engine and tells of what it could not remove.
Outcome runEngine(Context& context,
                  const std::function<void(CleanProgress, CleanCompletion)>& start) {
    FileCleanerEngine& engine = FileCleanerEngine::sharedEngine();
    FailureCounter failures;
    engine.setObserver(&failures);
    auto outcome = runClean(context, {.start = start, .stop = [&engine] { engine.stop(); }});
    engine.setObserver(nullptr);
    failures.report();
    return outcome;
}

Outcome clean(Context& context, const Call& call) {
    const std::string& word = call.word("CATEGORY");
    const Category* category = categoryNamed(word);
    const CleanType type = category != nullptr ? category->type : CleanType::All;
    const DryRun dryRun = [type] { return previewClean(EngineServices::shared(), type); };
    if (call.has("--dry-run")) return previewed(context, dryRun);
    const CleanQuestion question{
        .from = category != nullptr ? std::string(category->label)
                                    : fmt::format("{} categories", categories().size()),
        .emptiesCustomPaths = type == CleanType::Cache || type == CleanType::All,
        .dryRun = dryRun};
    if (auto sure = confirmClean(context, question, call.has("--yes")); !sure) return sure;
    return runEngine(context, [type](CleanProgress progress, CleanCompletion completion) {
        FileCleanerEngine::sharedEngine().cleanWithType(type, std::move(progress),
                                                        std::move(completion));
    });
}

Outcome deepClean(Context& context, const Call& call) {
    const DryRun dryRun = [] { return previewDeepClean(EngineServices::shared()); };
    if (call.has("--dry-run")) return previewed(context, dryRun);
    const CleanQuestion question{.from = "the caches of the system", .dryRun = dryRun};
    if (auto sure = confirmClean(context, question, call.has("--yes")); !sure) return sure;
    context.progress().update("caches of the system", 0);
    return runEngine(context, [](const CleanProgress&, CleanCompletion completion) {
        FileCleanerEngine::sharedEngine().deepCleanWithCompletion(std::move(completion));
    });
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
