// What a person looks at before a clean: lists, storage, analyses. Nothing is changed.
#include <array>
#include <cstdint>
#include <string>

#include <fmt/format.h>

#include "cli/Categories.h"
#include "cli/Command.h"
#include "cli/Context.h"
#include "cli/Text.h"
#include "engine/FileCleanerEngine.h"
#include "platform/DateText.h"

namespace sweepwright::cli {

namespace {

/// What the app's settings begin with as the size of a large file, in bytes.
constexpr std::uint64_t kLargeFile = std::uint64_t{50} << 20U;

using PathList = std::vector<std::string> (FileCleanerEngine::*)();

/// The path lists by category value; caches have a list of their own, offline data has none.
constexpr std::array<PathList, 9> kPathLists = {nullptr,
                                                &FileCleanerEngine::getTempFileList,
                                                &FileCleanerEngine::getCookieFileList,
                                                &FileCleanerEngine::getSystemLogFileList,
                                                &FileCleanerEngine::getDownloadsFileList,
                                                &FileCleanerEngine::getImageCacheFileList,
                                                &FileCleanerEngine::getDatabaseFileList,
                                                &FileCleanerEngine::getCrashReportFileList,
                                                nullptr};

/// Documents and text rows of the same entries, built side by side.
class SizedRows {
  public:
    /// Adds an entry and returns its object, for further keys.
    Json& add(std::string_view path, std::uint64_t size) {
        Json object = Json::object();
        setPath(object, "path", path);
        object["size"] = size;
        table_.row({sizeText(size), std::string(path)});
        return document_.emplace_back(std::move(object));
    }

    void show(Output& output) const {
        output.document(document_);
        output.table(table_);
    }

  private:
    Json document_ = Json::array();
    Table table_{{Align::Right, Align::Left}};
};

Outcome listCategory(Context& context, const Call& call) {
    FileCleanerEngine& engine = context.engine();
    const Category* category = categoryNamed(call.word("CATEGORY"));
    Output& output = context.output();
    if (category->type == CleanType::OfflineData)
        return wrongWords("offline-data has no list of files; try: sweepctl size offline-data");
    context.progress().update(category->label, 0);
    if (category->type == CleanType::Cache) {
        SizedRows rows;
        for (const CacheEntry& entry : engine.getCacheFileList())
            rows.add(entry.path, entry.size);
        context.progress().clear();
        rows.show(output);
        return {};
    }
    const auto paths = (engine.*kPathLists.at(static_cast<std::size_t>(category->type)))();
    context.progress().clear();
    output.document(pathArray(paths));
    for (const std::string& path : paths)
        output.line(output.shown(path));
    return {};
}

Outcome storage(Context& context, const Call& /*call*/) {
    const auto info = context.engine().getStorageInfo();
    if (!info) {
        return failed({std::string(FileCleanerEngine::kErrorDomain), -1,
                       "the device's volume does not tell how large it is"});
    }
    context.output().document(Json{{"totalSpace", info->totalSpace},
                                   {"freeSpace", info->freeSpace},
                                   {"availableSpace", info->availableSpace},
                                   {"usedSpace", info->usedSpace},
                                   {"userUsedSpace", info->userUsedSpace},
                                   {"purgeableSpace", info->purgeableSpace},
                                   {"usagePercentage", info->usagePercentage},
                                   {"userUsagePercentage", info->userUsagePercentage},
                                   {"totalSpaceFormatted", info->totalSpaceFormatted},
                                   {"freeSpaceFormatted", info->freeSpaceFormatted},
                                   {"availableSpaceFormatted", info->availableSpaceFormatted},
                                   {"usedSpaceFormatted", info->usedSpaceFormatted},
                                   {"userUsedSpaceFormatted", info->userUsedSpaceFormatted}});
    Table table({Align::Left, Align::Right, Align::Right});
    table.row({"total", info->totalSpaceFormatted, ""});
    table.row({"used", info->usedSpaceFormatted, fmt::format("{:.1f}%", info->usagePercentage)});
    table.row({"used-with-reserve", info->userUsedSpaceFormatted,
               fmt::format("{:.1f}%", info->userUsagePercentage)});
    table.row({"free", info->freeSpaceFormatted, ""});
    table.row({"available", info->availableSpaceFormatted, ""});
    context.output().table(table);
    return {};
}

void analyzeApps(Context& context) {
    SizedRows rows;
    for (const AppEntry& app : context.engine().getInstalledAppsWithStorage())
        setPath(rows.add(app.path, app.size), "name", app.name);
    rows.show(context.output());
}

void analyzeLarge(Context& context, std::uint64_t minSize) {
    SizedRows rows;
    for (const LargeFileEntry& file : context.engine().findLargeFilesWithMinSize(minSize)) {
        Json& object = rows.add(file.path, file.size);
        setPath(object, "name", file.name);
        object["modifiedDate"] = platform::dateText(file.modifiedDate);
    }
    rows.show(context.output());
}

void analyzeDuplicates(Context& context) {
    Json groups = Json::array();
    Table table({Align::Right, Align::Right, Align::Left});
    std::size_t number = 0;
    for (const auto& group : context.engine().findDuplicateFiles()) {
        Json files = Json::array();
        ++number;
        for (const DuplicateEntry& file : group) {
            Json object = Json::object();
            setPath(object, "path", file.path);
            setPath(object, "name", file.name);
            object["size"] = file.size;
            files.push_back(std::move(object));
            table.row({std::to_string(number), sizeText(file.size), file.path});
        }
        groups.push_back(std::move(files));
    }
    context.output().document(groups);
    context.output().table(table);
}

void analyzeExtensions(Context& context) {
    const ExtensionAnalysis analysis = context.engine().analyzeStorageByCategory();
    Json byExtension = Json::object();
    Table table({Align::Right, Align::Left});
    for (const auto& [extension, size] : analysis.byExtension) {
        // A name's bytes need not be text; a key of a document must be.
        byExtension[replacingBadBytes(extension)] = size;
        table.row({sizeText(size), extension});
    }
    table.row({sizeText(analysis.totalAnalyzed), "total"});
    context.output().document(
        Json{{"byExtension", std::move(byExtension)}, {"totalAnalyzed", analysis.totalAnalyzed}});
    context.output().table(table);
}

void analyzeUsage(Context& context) {
    Json document = Json::object();
    Table table({Align::Right, Align::Left});
    for (const auto& [folder, usage] : StorageAnalyzer::sharedAnalyzer().analyzeDirectoryUsage(
             unreadableTo(&context.failures()))) {
        document[folder] = Json{{"size", usage.size}, {"formatted", usage.formatted}};
        table.row({usage.formatted, folder});
    }
    context.output().document(document);
    context.output().table(table);
}

Outcome analyze(Context& context, const Call& call) {
    const std::string& what = call.word("WHAT");
    if (call.has("--min-size") && what != "large")
        return wrongWords("--min-size goes with: sweepctl analyze large");
    context.progress().update(what, 0);
    if (what == "apps") {
        analyzeApps(context);
    } else if (what == "large") {
        analyzeLarge(context, call.number("--min-size").value_or(kLargeFile));
    } else if (what == "duplicates") {
        analyzeDuplicates(context);
    } else if (what == "extensions") {
        analyzeExtensions(context);
    } else {
        analyzeUsage(context);
    }
    context.progress().clear();
    return {};
}

}  // namespace

void addLookCommands(Commands& commands) {
    constexpr const char* kGroup = "Look";
    commands.push_back(
        {.words = "list",
         .group = kGroup,
         .summary = "list what a category holds",
         .positionals = {{.name = "CATEGORY", .help = "one of", .choices = categoryWords()}},
         .examples = {"sweepctl list cache"},
         .run = listCategory});
    commands.push_back({.words = "storage",
                        .group = kGroup,
                        .summary = "tell how full the device is",
                        .run = storage});
    commands.push_back(
        {.words = "analyze",
         .group = kGroup,
         .summary = "look for what takes space; nothing is changed",
         .positionals = {{.name = "WHAT",
                          .help = "one of",
                          .choices = {"apps", "large", "duplicates", "extensions", "usage"}}},
         .options = {{.name = "--min-size",
                      .value = "BYTES",
                      .help = "with large: files of at least this many bytes (52428800)"}},
         .examples = {"sweepctl analyze large --min-size 1000000"},
         .run = analyze});
}

}  // namespace sweepwright::cli
