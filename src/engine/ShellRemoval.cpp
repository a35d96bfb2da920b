// Emptying system directories through the shell, and accounting for what went.
#include <algorithm>
#include <functional>

#include "engine/FileCleanerEngine.h"
#include "platform/log/Log.h"

namespace sweepwright {

using platform::LastLink;
using platform::log;

/// The visible entries that a directory held, remembered at eight bytes each.
class FileCleanerEngine::VisibleNames {
  public:
    /// Remembers what `directory` holds from where it was last read.
    platform::Result<> read(platform::FileManager& files, platform::Directory& directory) {
        auto all = forEach(files, directory, [this](std::string_view name) {
            hashes_.push_back(std::hash<std::string_view>{}(name));
        });
        std::ranges::sort(hashes_);
        return all;
    }
    [[nodiscard]] bool contain(std::string_view name) const {
        return std::ranges::binary_search(hashes_, std::hash<std::string_view>{}(name));
    }

    template <class Visit>
    static platform::Result<> forEach(platform::FileManager& files, platform::Directory& directory,
                                      const Visit& visit) {
        platform::EntryBuffer buffer;
        for (;;) {
            const auto entries = files.readEntries(directory, buffer);
            if (!entries) return std::unexpected(entries.error());
            if (entries->empty()) return {};
            for (const platform::DirectoryEntry& entry : *entries)
                if (!entry.name.starts_with('.')) visit(entry.name);
        }
    }

  private:
    std::vector<std::size_t> hashes_;  // sorted
};

std::int32_t FileCleanerEngine::emptyByShell(const platform::Directory& directory,
                                             const std::string& hostFolder) {
    const std::string primary = "find '" + hostFolder +
                                "' -mindepth 1 -maxdepth 1 ! -name '.*' -exec rm -rf {} + "
                                "2>/dev/null; true";
    log("🔧 使用posix_spawn删除系统路径: {}", directory.path());
    log("🔧 执行命令 (find): {}", primary);
    const std::int32_t status = services_.eraser.runShellCommand(primary, directory);
    if (status == 0) return status;
    const std::string fallback = "cd '" + hostFolder + "' && rm -rf * 2>/dev/null; true";
    log("🔧 find命令失败，尝试使用cd+rm方式: {}", fallback);
    return services_.eraser.runShellCommand(fallback, directory);
}

std::uint64_t FileCleanerEngine::removeSystemPathWithSystemCommand(const std::string& directory,
                                                                   platform::Mounts mounts) {
    if (isPathInWhitelist(directory)) {
        log("🔒 白名单系统路径跳过删除: {}", directory);
        noteProtected(directory);
        return 0;
    }
    const std::uint64_t before = sizeToClean(directory);
    if (before == 0) return 0;
    // Opened before its name is put into a command, so that no link leads the command elsewhere.
    auto opened = openToEmpty(directory, mounts);
    if (!opened) return 0;
    const auto hostFolder = services_.files.hostPath(*opened);
    if (!hostFolder) {
        noteFailed(directory, hostFolder.error());
        return 0;
    }
    VisibleNames names;
    if (const auto read = names.read(services_.files, *opened); !read)
        noteUnreadable(directory, read.error(), cleanObserver());

    const std::int32_t status = emptyByShell(*opened, *hostFolder);
    services_.eraser.settle();
    const std::uint64_t after = sizeToClean(directory);
    const std::uint64_t freed = before - after;  // wraps should the directory have grown
    if (freed == 0) return accountUnmeasured(directory, before, after, status, names);
    log("{}: {}, 释放: {} 字节",
        status == 0 ? "✅ 成功使用posix_spawn删除系统路径"
                    : "✅ posix_spawn命令返回非0但部分删除成功",
        directory, freed);
    noteLeft(directory, names);
    return freed;
}

void FileCleanerEngine::noteLeft(const std::string& directory, const VisibleNames& before) {
    if (isStopped() || cleanObserver() == nullptr) return;
    auto opened = services_.files.openDirectory(directory, LastLink::Refuse);
    if (!opened) return noteUnreadable(directory, opened.error(), cleanObserver());
    // The command's own words are lost with its standard error.
    const std::string why = services_.files.isWritable(directory) ? ": rm could not remove it"
                                                                  : ": its folder can't be written";
    const auto tell = [&](std::string_view name) {
        if (!before.contain(name)) return;  // has come to be meanwhile
        const std::string path = opened->pathOf(name);
        noteKept(path, KeptReason::Failed, path + why);
    };
    if (const auto listed = VisibleNames::forEach(services_.files, *opened, tell); !listed)
        noteUnreadable(directory, listed.error(), cleanObserver());
}

std::uint64_t FileCleanerEngine::accountUnmeasured(const std::string& directory,
                                                   std::uint64_t before, std::uint64_t after,
                                                   std::int32_t status,
                                                   const VisibleNames& namesBefore) {
    auto opened = services_.files.openDirectory(directory, LastLink::Refuse);
    auto names = opened
                     ? services_.files.contentsOfDirectory(*opened)
                     : platform::Result<std::vector<std::string>>(std::unexpected(opened.error()));
    if (!names) {
        noteUnreadable(directory, names.error(), cleanObserver());
        const std::string& why = names.error().description;
        if (status != 0) {
            log("⚠️ posix_spawn删除失败且无法检查目录内容: {}, 返回码: {}, 错误: {}", directory,
                status, why);
            return 0;
        }
        log("⚠️ posix_spawn执行成功但无法检查目录内容: {}, 错误: {}", directory, why);
        return before;
    }
    std::erase_if(*names, [](const std::string& name) { return name.starts_with('.'); });
    if (names->empty()) {
        log("{}: {} (删除前: {} 字节)",
            status == 0 ? "✅ posix_spawn成功清空目录" : "✅ posix_spawn命令返回非0但目录已清空",
            directory, before);
        return before;
    }
    if (status == 0) {
        log("⚠️ posix_spawn执行成功但目录仍有 {} 个可见文件: {} (删除前: {}, 删除后: {})",
            names->size(), directory, before, after);
        noteLeft(directory, namesBefore);
        return 0;
    }
    log("⚠️ posix_spawn删除失败: {}, 返回码: {}, 目录仍有 {} 个可见文件", directory, status,
        names->size());
    return removeVisibleEntries(*opened, *names);
}

std::uint64_t FileCleanerEngine::removeVisibleEntries(const platform::Directory& directory,
                                                      const std::vector<std::string>& names) {
    std::uint64_t total = 0;
    for (const std::string& name : names) {
        if (isStopped()) break;
        const auto removal = services_.eraser.removeEntry(directory, name, cleanRules());
        total += removal.bytes;
        noteMountPoints(removal);
        if (!removal.error) {
            noteRemoved(directory.pathOf(name), removal.bytes);
        } else if (!removal.onlyMountPointsStay) {
            noteFailed(directory.pathOf(name), *removal.error);
        }
    }
    if (total > 0)
        log("✅ 使用NSFileManager作为fallback删除部分文件: {}, 释放: {} 字节", directory.path(),
            total);
    return total;
}

}  // namespace sweepwright
