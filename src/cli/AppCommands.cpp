#include <algorithm>
#include <string>

#include <fmt/format.h>

#include "apps/AppCleanPreview.h"
#include "apps/AppNames.h"
#include "apps/ThirdPartyAppCacheManager.h"
#include "cli/CleanQuestion.h"
#include "cli/CleanRun.h"
#include "cli/Command.h"
#include "cli/Confirmation.h"
#include "cli/Context.h"
#include "cli/KnownApps.h"
#include "cli/PreviewOutput.h"
#include "cli/Translation.h"
#include "cli/Wording.h"
#include "platform/queue/DispatchQueue.h"

namespace sweepwright::cli {

namespace {

using AppList = ThirdPartyAppCacheManager::AppList;

void setText(Json& object, const std::string& key, const std::optional<std::string>& text) {
    if (text) {
        setPath(object, key, *text);
    } else {
        object[key] = nullptr;
    }
}

Json appValue(const AppCacheInfo& app) {
    Json object = Json::object();
    setText(object, "bundleIdentifier", app.bundleIdentifier);
    setText(object, "appName", app.appName);
    setText(object, "appIconPath", app.appIconPath);
    object["hasIcon"] = app.appIcon.has_value();
    object["cacheSize"] = app.cacheSize;
    object["tmpSize"] = app.tmpSize;
    object["totalSize"] = app.totalSize;
    setText(object, "dataPath", app.dataPath);
    setText(object, "bundlePath", app.bundlePath);
    object["isSystemApp"] = app.isSystemApp;
    return object;
}

/// Scans on the manager's queue while the main queue shows how far it is.
AppList scanApps(Context& context, bool thirdPartyOnly) {
    ThirdPartyAppCacheManager& manager = context.apps();
    std::optional<AppList> found;
    const auto completion = [&found](const AppList& apps) { found = apps; };
    const auto progress = [&context](const std::string& name, double fraction) {
        context.progress().update(name, fraction);
    };
    if (thirdPartyOnly) {
        manager.scanThirdPartyAppsWithCompletion(completion, progress);
    } else {
        manager.scanAllAppsWithCompletion(completion, progress);
    }
    platform::MainQueue::shared().runUntil([&found] { return found.has_value(); });
    context.progress().clear();
    return *std::move(found);
}

Outcome apps(Context& context, const Call& call) {
    const AppList list = scanApps(context, call.has("--third-party"));
    Json document = Json::array();
    Table table({{.title = wording::kTotal, .align = Align::Right},
                 {.title = wording::kCaches, .align = Align::Right, .spare = 2},
                 {.title = wording::kTemporary, .align = Align::Right, .spare = 3},
                 {.title = wording::kApp, .holds = Holds::Text, .reader = Reader::Person},
                 {.title = wording::kKind, .spare = 1},
                 {.title = wording::kIdentifier, .holds = Holds::Identifier},
                 {.reader = Reader::Program}});
    for (const AppCacheInfo& app : list) {
        document.push_back(appValue(app));
        const std::string name = app.appName.value_or("-");
        table.row({sizeText(app.totalSize), sizeText(app.cacheSize), sizeText(app.tmpSize), name,
                   translated(app.isSystemApp ? "system" : "third-party"),
                   app.bundleIdentifier.value_or("-"), name});
    }
    context.output().document(document);
    context.output().table(table);
    return {};
}

/// The identifiers that a call is about; those that may not be cleaned, or name no app, are an
/// error. The hidden roots' shared folders would be cleaned for any word.
std::expected<std::vector<std::string>, Failure> chosenApps(Context& context, const Call& call) {
    ThirdPartyAppCacheManager& manager = context.apps();
    const auto& named = call.words("ID");
    if (auto ready = manager.readiness(); !ready) return failed(ready.error());
    if (call.has("--all")) return manager.withoutWhitelisted(scanApps(context, true));
    AppWhitelistManager& whitelist = AppWhitelistManager::sharedManager();
    for (const std::string& identifier : named) {
        if (whitelist.isAppInWhitelist(identifier))
            return failed({std::string(ThirdPartyAppCacheManager::kErrorDomain), 1,
                           told("{0}: is whitelisted, so nothing was cleaned; first: sweepctl "
                                "whitelist apps remove {0}",
                                identifier)});
        if (const std::string why = whyUnknownApp(identifier); !why.empty())
            return failed({std::string(ThirdPartyAppCacheManager::kErrorDomain), 2, why});
    }
    return named;
}

std::string cachesOf(const std::vector<std::string>& identifiers) {
    if (identifiers.size() == 1) return told("the caches of {}", identifiers.front());
    return told("the caches of {} apps", identifiers.size());
}

Outcome cleanApps(Context& context, const Call& call) {
    if (auto good = checkPreviewOptions(call); !good) return good;
    if (call.has("--all") != call.words("ID").empty())
        return wrongWords(translated("name apps to clean, or say --all"));
    const bool sure = call.has("--yes");
    if (!call.has("--dry-run")) {
        if (auto answerable = requireAnswerable(removesData(), sure); !answerable)
            return answerable;
    }
    const auto identifiers = chosenApps(context, call);
    if (!identifiers) return std::unexpected(identifiers.error());
    const auto dryRun = [&](CleanObserver* observer) {
        return previewAppsClean(AppServices::shared(), *identifiers, observer);
    };
    if (call.has("--dry-run")) {
        const auto preview = findWhatWouldGo(context, dryRun, &context.failures());
        if (!preview) return failed(preview.error());
        showPreview(
            context.output(), *preview,
            {.nameOf =
                 [](const CleanPart& part) { return AppNames::sharedNames().nameOf(part.app); },
             .paths = Holds::Path,
             .full = call.has("--full")});
        return {};
    }
    const CleanQuestion question{.from = cachesOf(*identifiers), .dryRun = dryRun};
    if (auto agreed = confirmClean(context, question, sure); !agreed) return agreed;
    ThirdPartyAppCacheManager& manager = context.apps();
    const bool single = !call.has("--all") && identifiers->size() == 1;
    return runClean(context,
                    {.start =
                         [&](CleanProgress progress, CleanCompletion completion) {
                             if (single) {
                                 manager.cleanCacheForApp(identifiers->front(), std::move(progress),
                                                          std::move(completion));
                             } else {
                                 manager.cleanCacheForApps(*identifiers, std::move(progress),
                                                           std::move(completion));
                             }
                         },
                     .stop = [&manager] { manager.stop(); },
                     .countsWhatWasThere = true});
}

}  // namespace

void addAppCommands(Commands& commands) {
    constexpr const char* kGroup = "Apps";
    std::vector<Option> cleanOptions{
        {.name = "--all", .value = "", .help = "every third-party app that is not whitelisted"},
        {.name = "--yes", .value = "", .help = "do it without a question"}};
    addPreviewOptions(cleanOptions);
    commands.push_back(
        {.words = "apps",
         .group = kGroup,
         .summary = "list the installed apps with the sizes of their caches",
         .options = {{.name = "--third-party", .value = "", .help = "leave the system's apps out"}},
         .examples = {"sweepctl apps --third-party"},
         .run = apps});
    commands.push_back({.words = "apps clean",
                        .group = kGroup,
                        .summary = "remove apps' caches, temporary files and web data",
                        .positionals = {{.name = "ID",
                                         .help = "bundle identifiers",
                                         .many = true,
                                         .optional = true,
                                         .candidates = installedApps}},
                        .options = cleanOptions,
                        .examples = {"sweepctl apps clean com.example.chat",
                                     "sweepctl apps clean --all --dry-run"},
                        .run = cleanApps});
}

}  // namespace sweepwright::cli
