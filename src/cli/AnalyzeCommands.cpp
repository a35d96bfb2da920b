// What takes space: the app's own files as the analyses look at them, or any folder of the device.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/Command.h"
#include "cli/Context.h"
#include "cli/SizedRows.h"
#include "cli/Text.h"
#include "cli/Translation.h"
#include "cli/Wording.h"
#include "engine/FileCleanerEngine.h"
#include "engine/FolderAnalysis.h"
#include "platform/device/Device.h"
#include "platform/text/DateText.h"

namespace sweepwright::cli {

namespace {

/// What the app's settings begin with as the size of a large file, in bytes.
constexpr std::uint64_t kLargeFile = std::uint64_t{50} << 20U;

/// What is looked at: the app's own files, or a folder that was named.
struct Subject {
    std::uint64_t minSize = kLargeFile;
    std::optional<std::string> folder{};
    std::unique_ptr<FolderAnalysis> inFolder{};
};

/// Tells a person what the figures are about; `own` says which of the app's own folders.
void showSubject(Output& output, const Subject& subject, std::string_view about,
                 std::string (*own)(std::string_view home)) {
    output.note(translated(about));
    const std::string at =
        output.shown(subject.folder.value_or(platform::Device::current().homeDirectory()));
    output.note(subject.folder ? wording::inFolder(at) : own(at));
    if (!subject.folder) output.note(translated(wording::kWholeDevice));
    output.note("");
}

void analyzeApps(Context& context, Subject& /*subject*/) {
    Output& output = context.output();
    auto apps = context.engine().getInstalledAppsWithStorage();
    Json document = Json::array();
    for (const AppEntry& app : apps)
        setPath(document.emplace_back(sizedValue(app.path, app.size)), "name", app.name);
    output.document(document);

    std::ranges::stable_sort(apps, std::ranges::greater{}, &AppEntry::size);
    Table table = sizedTable();
    for (const AppEntry& app : apps)
        table.row({sizeText(app.size), app.path});
    output.note(translated(wording::kAboutBundles));
    output.note("");
    output.table(table);
}

void analyzeLarge(Context& context, Subject& subject) {
    Output& output = context.output();
    const auto files = subject.inFolder
                           ? subject.inFolder->largeFiles(subject.minSize)
                           : context.engine().findLargeFilesWithMinSize(subject.minSize);
    Json document = Json::array();
    Table table = sizedTable();
    for (const LargeFileEntry& file : files) {
        Json& value = document.emplace_back(sizedValue(file.path, file.size));
        setPath(value, "name", file.name);
        value["modifiedDate"] = platform::dateText(file.modifiedDate);
        table.row({sizeText(file.size), file.path});
    }
    output.document(document);
    showSubject(output, subject, wording::aboutLargeFiles(subject.minSize), wording::inOwnFiles);
    output.table(table);
}

void analyzeDuplicates(Context& context, Subject& subject) {
    Output& output = context.output();
    const auto found =
        subject.inFolder ? subject.inFolder->duplicates() : context.engine().findDuplicateFiles();
    Json groups = Json::array();
    Table table({{.title = wording::kGroup, .align = Align::Right},
                 {.title = wording::kSize, .align = Align::Right},
                 {.title = wording::kPath, .holds = Holds::OwnedPath}});
    std::size_t number = 0;
    for (const auto& group : found) {
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
    output.document(groups);
    showSubject(output, subject, wording::kAboutDuplicates, wording::inOwnFiles);
    output.table(table);
}

void analyzeExtensions(Context& context, Subject& subject) {
    Output& output = context.output();
    const ExtensionAnalysis analysis = subject.inFolder
                                           ? subject.inFolder->extensions()
                                           : context.engine().analyzeStorageByCategory();
    Json byExtension = Json::object();
    Table table({{.title = wording::kSize, .align = Align::Right},
                 {.title = wording::kExtension, .holds = Holds::Text}});
    for (const auto& [extension, size] : analysis.byExtension) {
        // A name's bytes need not be text; a key of a document must be.
        byExtension[replacingBadBytes(extension)] = size;
        table.row({sizeText(size), extension});
    }
    table.row({sizeText(analysis.totalAnalyzed), translated("total")});
    output.document(
        Json{{"byExtension", std::move(byExtension)}, {"totalAnalyzed", analysis.totalAnalyzed}});
    showSubject(output, subject, wording::kAboutExtensions, wording::inOwnFiles);
    output.table(table);
}

void analyzeUsage(Context& context, Subject& subject) {
    Output& output = context.output();
    const auto folders = subject.inFolder ? subject.inFolder->usage()
                                          : StorageAnalyzer::sharedAnalyzer().analyzeDirectoryUsage(
                                                unreadableTo(&context.failures()));
    Json document = Json::object();
    Table table({{.title = wording::kSize, .align = Align::Right},
                 {.title = wording::kFolder, .holds = Holds::Path}});
    for (const auto& [folder, usage] : folders) {
        document[replacingBadBytes(folder)] =
            Json{{"size", usage.size}, {"formatted", usage.formatted}};
        table.row({usage.formatted, folder});
    }
    output.document(document);
    showSubject(output, subject, wording::kAboutUsage, wording::inOwnFolders);
    output.table(table);
}

struct Kind {
    std::string_view word;
    void (*run)(Context& context, Subject& subject);
};
constexpr std::array<Kind, 5> kAnalyses{{{"apps", analyzeApps},
                                         {"large", analyzeLarge},
                                         {"duplicates", analyzeDuplicates},
                                         {"extensions", analyzeExtensions},
                                         {"usage", analyzeUsage}}};

std::expected<Subject, Failure> subjectOf(Context& context, const Call& call) {
    Subject subject{.minSize = call.number("--min-size").value_or(kLargeFile),
                    .folder = call.text("--folder")};
    if (!subject.folder) return subject;
    if (!subject.folder->starts_with('/'))
        return wrongWords(told("{}: a device path begins with \"/\"", *subject.folder));
    subject.inFolder = std::make_unique<FolderAnalysis>(EngineServices::shared(), *subject.folder,
                                                        &context.failures());
    if (auto ready = subject.inFolder->readiness(); !ready) return failed(ready.error());
    return subject;
}

Outcome analyze(Context& context, const Call& call) {
    const std::string& what = call.word("WHAT");
    if (call.has("--min-size") && what != "large")
        return wrongWords(translated("--min-size goes with: sweepctl analyze large"));
    if (call.has("--folder") && what == "apps")
        return wrongWords(translated("--folder does not go with: sweepctl analyze apps"));
    auto subject = subjectOf(context, call);
    if (!subject) return std::unexpected(subject.error());
    context.progress().update(what, 0);
    std::ranges::find(kAnalyses, what, &Kind::word)->run(context, *subject);
    context.progress().clear();
    return {};
}

std::vector<std::string> analysisWords() {
    std::vector<std::string> words(kAnalyses.size());
    std::ranges::transform(kAnalyses, words.begin(),
                           [](const Kind& kind) { return std::string(kind.word); });
    return words;
}

}  // namespace

void addAnalyzeCommands(Commands& commands) {
    commands.push_back(
        {.words = "analyze",
         .group = "Look",
         .summary = "look for what takes space; nothing is changed",
         .positionals = {{.name = "WHAT",
                          .help = "apps looks at all installed apps, the others look at the "
                                  "cleaner's own container; one of",
                          .choices = analysisWords()}},
         .options = {{.name = "--folder",
                      .value = "PATH",
                      .help = "look at this folder of the device instead; / is the whole device",
                      .isText = true,
                      .candidates = devicePaths},
                     {.name = "--min-size",
                      .value = "BYTES",
                      .help = "with large: files of at least this many bytes (52428800)"}},
         .examples = {"sweepctl analyze large --min-size 1000000",
                      "sweepctl analyze duplicates --folder /",
                      "sweepctl analyze usage --folder /var/mobile"},
         .run = analyze});
}

}  // namespace sweepwright::cli
