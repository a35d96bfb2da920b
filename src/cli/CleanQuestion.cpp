#include "cli/CleanQuestion.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/Confirmation.h"
#include "cli/PersonalPaths.h"
#include "cli/Text.h"
#include "cli/Translation.h"
#include "protection/CustomPathManager.h"

namespace sweepwright::cli {

namespace {

/// Every custom path, with what people keep there.
std::vector<std::string> describedCustomPaths() {
    std::vector<std::string> described;
    for (const std::string& path : CustomPathManager::sharedManager().getAllCustomPaths()) {
        const std::string holds = personalDataAt(path);
        described.push_back(holds.empty() ? path : fmt::format("{} ({})", path, holds));
    }
    return described;
}

}  // namespace

std::string removesData() {
    return translated("this removes data");
}

platform::Result<CleanPreview> findWhatWouldGo(Context& context, const DryRun& dryRun,
                                               CleanObserver* observer) {
    context.progress().update(translated("finding what would go"), 0);
    auto preview = dryRun(observer);
    context.progress().clear();
    return preview;
}

Outcome confirmClean(Context& context, const CleanQuestion& clean, bool sure) {
    const auto question = [&]() -> std::expected<Confirmation::Lines, Failure> {
        const auto preview = findWhatWouldGo(context, clean.dryRun);
        if (!preview) return failed(preview.error());
        Confirmation::Lines lines{told("Device: {}", context.device())};
        if (clean.emptiesCustomPaths) {
            const auto paths = describedCustomPaths();
            if (!paths.empty()) lines.push_back(told("Custom paths: {}", fmt::join(paths, ", ")));
        }
        lines.push_back(told("Remove {} in {} from {}?", sizeText(preview->wouldFree),
                             counted(preview->entries.size(), "entry", "entries"), clean.from));
        return lines;
    };
    return confirm({.why = removesData(),
                    .otherwise = translated("nothing was removed"),
                    .question = question},
                   sure);
}

}  // namespace sweepwright::cli
