// The database cleaner: side files that databases left in the library directory.
#include <chrono>

#include "engine/CategoryRules.h"
#include "engine/FileCleanerEngine.h"
#include "engine/KeepRule.h"
#include "engine/LinkProtection.h"
#include "platform/log/Log.h"

namespace sweepwright {

using platform::FileType;
using platform::LastLink;
using platform::log;

namespace {

/// The database that a side file belongs to. Of ".db-journal" nine characters are cut, which leaves
/// ".d" and hardly ever names a file: journals are not held back by their age.
std::string mainDatabaseOf(std::string_view sideFile) {
    const std::size_t cut = sideFile.ends_with(".db-journal") ? 9 : 4;
    return std::string(sideFile.substr(0, sideFile.size() - cut));
}

}  // namespace

bool FileCleanerEngine::isInUse(const platform::Directory& library, const std::string& name,
                                const platform::FileAttributes& attributes) {
    const std::string database = mainDatabaseOf(name);
    if (!existsToClean(library.pathOf(database)) && !attributesOf(library, database)) return false;
    const double age =
        std::chrono::duration<double>(services_.now() - attributes.modificationDate).count();
    if (age >= kRecentSeconds) return false;
    log("⚠️ 跳过可能正在使用的数据库临时文件: {} (最近修改: {:.1f}秒前)", library.pathOf(name), age);
    return true;
}

/// A side file is a plain, visible file; whatever else bears such a name stays.
bool FileCleanerEngine::isRemovableSideFile(const platform::Directory& library,
                                            const LinkProtection& protection,
                                            const std::string& name) {
    if (keepsEntry(library, protection, name, kKeptSideFiles)) return false;
    const auto attributes = attributesOf(library, name);
    if (!attributes) return true;
    if (attributes->type != FileType::Regular) return false;
    if (isInUse(library, name, *attributes)) {
        noteKept(library.pathOf(name), KeptReason::RecentSideFile);
        return false;
    }
    return true;
}

std::uint64_t FileCleanerEngine::cleanDatabaseFilesWithProgress(const Progress& /*progress*/,
                                                                ErrorSlot& /*error*/) {
    auto library =
        services_.files.openDirectory(services_.device.libraryDirectory(), LastLink::Refuse);
    const auto names =
        library ? services_.files.contentsOfDirectory(*library)
                : platform::Result<std::vector<std::string>>(std::unexpected(library.error()));
    if (!names) {
        noteUnreadable(services_.device.libraryDirectory(), names.error(), cleanObserver());
        return 0;
    }
    const LinkProtection protection = protectionOf(*library);
    std::uint64_t total = 0;
    for (const std::string& name : *names) {
        if (isStopped()) break;
        if (!rules::isDatabaseSideFile(name) || !isRemovableSideFile(*library, protection, name))
            continue;
        const std::string path = library->pathOf(name);
        const auto removal = services_.eraser.removeEntry(*library, name, cleanRules());
        if (removal.error) {
            log("⚠️ 无法删除数据库临时文件: {}, 错误: {}", path, removal.error->description);
            noteMountPoints(removal);
            if (!removal.onlyMountPointsStay) noteFailed(path, *removal.error);
            continue;
        }
        noteRemoved(path, removal.bytes);
        total += removal.bytes;
    }
    return total;
}

}  // namespace sweepwright
