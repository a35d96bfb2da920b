// Emptying system directories through the shell, and accounting for what went.
#include <algorithm>

#include "engine/FileCleanerEngine.h"
#include "platform/Log.h"

namespace sweepwright {

using platform::LastLink;
using platform::log;

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
    const std::uint64_t before = sizeOfDirectoryAtPath(directory);
    if (before == 0) return 0;
    // Opened before its name is put into a command, so that no link leads the command elsewhere.
    const auto opened = openToEmpty(directory, mounts);
    if (!opened) return 0;
    const auto hostFolder = services_.files.hostPath(*opened);
    if (!hostFolder) return 0;

    const std::int32_t status = emptyByShell(*opened, *hostFolder);
    services_.eraser.settle();
    const std::uint64_t after = sizeOfDirectoryAtPath(directory);
    const std::uint64_t freed = before - after;  // wraps should the directory have grown
    if (freed == 0) return accountUnmeasured(directory, before, after, status);
    log("{}: {}, 释放: {} 字节",
        status == 0 ? "✅ 成功使用posix_spawn删除系统路径"
                    : "✅ posix_spawn命令返回非0但部分删除成功",
        directory, freed);
    return freed;
}

std::uint64_t FileCleanerEngine::accountUnmeasured(const std::string& directory,
                                                   std::uint64_t before, std::uint64_t after,
                                                   std::int32_t status) {
    auto opened = services_.files.openDirectory(directory, LastLink::Refuse);
    auto names = opened
                     ? services_.files.contentsOfDirectory(*opened)
                     : platform::Result<std::vector<std::string>>(std::unexpected(opened.error()));
    if (!names) {
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
        const auto removal = services_.eraser.removeEntry(directory, name, walkRules());
        total += removal.bytes;
        noteMountPoints(removal);
        if (!removal.error) noteRemoved(directory.pathOf(name), removal.bytes);
    }
    if (total > 0)
        log("✅ 使用NSFileManager作为fallback删除部分文件: {}, 释放: {} 字节", directory.path(),
            total);
    return total;
}

}  // namespace sweepwright
