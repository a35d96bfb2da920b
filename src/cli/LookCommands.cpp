// What a person looks at before a clean: lists and storage. Nothing is changed.
#include <string>
#include <vector>

#include <fmt/format.h>

#include "cli/Categories.h"
#include "cli/Command.h"
#include "cli/Context.h"
#include "cli/SizedRows.h"
#include "cli/Translation.h"
#include "cli/Wording.h"
#include "engine/FileCleanerEngine.h"
#include "platform/device/Device.h"
#include "platform/files/HostFileManager.h"

namespace sweepwright::cli {

namespace {

Outcome listCategory(Context& context, const Call& call) {
    FileCleanerEngine& engine = context.engine();
    const Category* category = categoryNamed(call.word("CATEGORY"));
    Output& output = context.output();
    const bool hasSizes = category->type == CleanType::Cache;
    if (category->list == nullptr && !hasSizes) {
        return wrongWords(told("{0} has no list of files; try: sweepctl size {0}", category->word));
    }
    context.progress().update(translated(category->label), 0);
    if (hasSizes) {
        Json document = Json::array();
        Table table = sizedTable();
        for (const CacheEntry& entry : engine.getCacheFileList()) {
            document.push_back(sizedValue(entry.path, entry.size));
            table.row({sizeText(entry.size), entry.path});
        }
        context.progress().clear();
        output.document(document);
        output.table(table);
        return {};
    }
    const auto paths = (engine.*category->list)();
    context.progress().clear();
    output.document(pathArray(paths));
    Table table({{.title = wording::kPath, .holds = Holds::OwnedPath}});
    for (const std::string& path : paths)
        table.row({path});
    output.table(table);
    return {};
}

/// The figures of a tree that was copied to a disk are not the device's.
void tellWhoseDisk(Output& output) {
    const platform::DeviceRoot& root = *platform::Device::current().root();
    const auto mount = root.mountAbove();
    if (!mount) return;
    output.line(told("of the disk mounted at {}, on which {} is a folder", Output::shown(*mount),
                     Output::shown(root.hostFolder())));
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
    Table table({{.title = wording::kSpace},
                 {.title = wording::kSize, .align = Align::Right},
                 {.title = wording::kShare, .align = Align::Right}});
    table.row({translated("total"), info->totalSpaceFormatted, ""});
    table.row({translated("used"), info->usedSpaceFormatted,
               fmt::format("{:.1f}%", info->usagePercentage)});
    table.row({translated("used-with-reserve"), info->userUsedSpaceFormatted,
               fmt::format("{:.1f}%", info->userUsagePercentage)});
    table.row({translated("free", "free space"), info->freeSpaceFormatted, ""});
    table.row({translated("available"), info->availableSpaceFormatted, ""});
    context.output().table(table);
    tellWhoseDisk(context.output());
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
}

}  // namespace sweepwright::cli
