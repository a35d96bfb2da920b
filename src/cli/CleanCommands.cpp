#include <cstddef>
#include <string>

#include <fmt/format.h>

#include "cli/Categories.h"
#include "cli/CleanRun.h"
#include "cli/Command.h"
#include "cli/Context.h"
#include "cli/PreviewOutput.h"
#include "cli/Wording.h"
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

std::string nameOf(const CleanPart& part) {
    const Category* category = categoryOf(part.type);
    return std::string(category != nullptr ? category->label : wording::kSystemCaches);
}

Outcome previewed(Context& context, const Call& call,
                  const platform::Result<CleanPreview>& preview) {
    context.progress().clear();
    if (!preview) return failed(preview.error());
    showPreview(context.output(), *preview, {.nameOf = nameOf, .full = call.has("--full")});
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
    if (auto good = checkPreviewOptions(call); !good) return good;
    const std::string& word = call.word("CATEGORY");
    const Category* category = categoryNamed(word);
    const CleanType type = category != nullptr ? category->type : CleanType::All;
    if (call.has("--dry-run")) {
        context.progress().update("finding what would go", 0);
        return previewed(context, call, previewClean(EngineServices::shared(), type));
    }
    const std::string what =
        category != nullptr ? std::string(category->label) : "the data of all nine categories";
    if (auto sure = confirm(fmt::format("Remove {}?", what), call.has("--yes")); !sure) return sure;
    return runEngine(context, [type](CleanProgress progress, CleanCompletion completion) {
        FileCleanerEngine::sharedEngine().cleanWithType(type, std::move(progress),
                                                        std::move(completion));
    });
}

Outcome deepClean(Context& context, const Call& call) {
    if (auto good = checkPreviewOptions(call); !good) return good;
    if (call.has("--dry-run")) {
        context.progress().update("finding what would go", 0);
        return previewed(context, call, previewDeepClean(EngineServices::shared()));
    }
    if (auto sure = confirm("Remove the caches of the system?", call.has("--yes")); !sure) {
        return sure;
    }
    context.progress().update("caches of the system", 0);
    return runEngine(context, [](const CleanProgress&, CleanCompletion completion) {
        FileCleanerEngine::sharedEngine().deepCleanWithCompletion(std::move(completion));
    });
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
