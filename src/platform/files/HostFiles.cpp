// HostFileManager's work on whole files: reading, replacing, making.
#include <cerrno>
#include <climits>
#include <cstdio>
#include <functional>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/base/Failure.h"
#include "platform/files/HostFileManager.h"
#include "platform/files/internal/BeneathRoot.h"

namespace sweepwright::platform {

namespace {

constexpr mode_t kFileMode = 0644;
constexpr mode_t kDirectoryMode = 0755;

int writeAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = write(descriptor, content.data(), content.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

/// Gives a new entry of `directory` the directory's owner: what an administrator makes there must
/// stay the app's own. Best effort.
void inheritOwner(int directory, const std::string& name) {
    struct stat model{};
    if (fstat(directory, &model) != 0) return;
    if (fchownat(directory, name.c_str(), model.st_uid, model.st_gid, AT_SYMLINK_NOFOLLOW) != 0)
        return;
}

/// Gives the new file `fresh` the owner and permissions of the one it will replace, if there is
/// one. Best effort.
void inheritFrom(int directory, const std::string& replaced, const std::string& fresh, int file) {
    struct stat model{};
    if (fstatat(directory, replaced.c_str(), &model, AT_SYMLINK_NOFOLLOW) != 0 ||
        !S_ISREG(model.st_mode))
        return inheritOwner(directory, fresh);
    if (fchmod(file, model.st_mode & 0777U) != 0) return;
    if (fchown(file, model.st_uid, model.st_gid) != 0) return;
}

/// The name under which the new content of `name` is written. It is the same each time, so that
/// what a crash leaves behind is found by the next writer and nothing piles up.
std::string freshNameFor(const std::string& name) {
    constexpr std::string_view kSuffix = ".new";
    if (name.size() + 1 + kSuffix.size() <= NAME_MAX) return "." + name + std::string(kSuffix);
    return "." + std::to_string(std::hash<std::string>{}(name)) + std::string(kSuffix);
}

/// Writes and syncs `content` as a new file `name` of `directory`; 0 or an errno value.
int writeNew(int directory, const std::string& name, const std::string& replaces,
             std::string_view content) {
    if (unlinkat(directory, name.c_str(), 0) != 0 && errno != ENOENT) return errno;
    const UniqueDescriptor file(openat(
        directory, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, kFileMode));
    if (!file.valid()) return errno;
    inheritFrom(directory, replaces, name, file.get());
    const int number = writeAll(file.get(), content);
    if (number != 0) return number;
    return fsync(file.get()) == 0 ? 0 : errno;
}

}  // namespace

std::expected<UniqueDescriptor, int> HostFileManager::openToRead(const std::string& path,
                                                                 LastLink lastLink) {
    const auto entry = beneath_->locate(path, lastLink);
    if (!entry) return std::unexpected(entry.error());
    UniqueDescriptor file(openat(entry->parent.get(), entry->name.c_str(),
                                 O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
    if (!file.valid()) return std::unexpected(errno);
    return file;
}

Result<std::string> HostFileManager::readFile(const std::string& path, std::size_t maxBytes) {
    // Most are no link, which costs no question of its own this way.
    auto opened = openToRead(path, LastLink::Refuse);
    if (!opened && opened.error() == ELOOP) opened = openToRead(path, LastLink::Follow);
    if (!opened) return failed(opened.error(), path);
    const UniqueDescriptor file = *std::move(opened);
    struct stat status{};
    if (fstat(file.get(), &status) != 0) return failed(errno, path);
    if (!S_ISREG(status.st_mode)) return failed(EINVAL, path);
    if (static_cast<std::uint64_t>(status.st_size) > maxBytes) return failed(EFBIG, path);

    std::string content(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t filled = 0;
    while (filled < content.size()) {
        const ssize_t got = read(file.get(), content.data() + filled, content.size() - filled);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return failed(errno, path);
        if (got == 0) break;
        filled += static_cast<std::size_t>(got);
    }
    content.resize(filled);
    return content;
}

Result<> HostFileManager::writeFile(const std::string& path, std::string_view content) {
    const auto entry = beneath_->locate(path, LastLink::Refuse);
    if (!entry) return failed(entry.error(), path);
    const int directory = entry->parent.get();
    const std::string fresh = freshNameFor(entry->name);
    int number = writeNew(directory, fresh, entry->name, content);
    if (number == 0 && renameat(directory, fresh.c_str(), directory, entry->name.c_str()) != 0)
        number = errno;
    if (number != 0) {
        unlinkat(directory, fresh.c_str(), 0);
        return failed(number, path);
    }
    // The rename must be on the disk too; what was opened for searching only can't be synced.
    const UniqueDescriptor parent(openat(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (parent.valid() && fsync(parent.get()) != 0 && errno != EINVAL && errno != EROFS)
        return failed(errno, path);
    return {};
}

Result<> HostFileManager::createFile(const std::string& path, std::string_view content) {
    const auto entry = beneath_->locate(path, LastLink::Refuse);
    if (!entry) return failed(entry.error(), path);
    const int directory = entry->parent.get();
    const UniqueDescriptor file(openat(directory, entry->name.c_str(),
                                       O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW,
                                       kFileMode));
    if (!file.valid()) return failed(errno, path);
    const int number = writeAll(file.get(), content);
    if (number == 0) return {};
    unlinkat(directory, entry->name.c_str(), 0);
    return failed(number, path);
}

Result<> HostFileManager::createSparseFile(const std::string& path, std::uint64_t size) {
    const auto entry = beneath_->locate(path, LastLink::Refuse);
    if (!entry) return failed(entry.error(), path);
    const UniqueDescriptor file(openat(entry->parent.get(), entry->name.c_str(),
                                       O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK,
                                       kFileMode));
    if (!file.valid()) return failed(errno, path);
    struct stat status{};
    if (fstat(file.get(), &status) != 0) return failed(errno, path);
    if (!S_ISREG(status.st_mode)) return failed(EINVAL, path);
    if (ftruncate(file.get(), 0) != 0) return failed(errno, path);
    if (ftruncate(file.get(), static_cast<off_t>(size)) != 0) return failed(errno, path);
    return {};
}

Result<> HostFileManager::createDirectories(const std::string& path) {
    // Asked once: between two questions another may make the very directory.
    if (const auto found = attributes(path, LastLink::Follow)) {
        if (found->type == FileType::Directory) return {};
        return failed(ENOTDIR, path);
    }
    const std::string_view name = lastPathComponent(path);
    const std::size_t above = path.rfind(name);
    if (above > 1) {
        const auto made = createDirectories(path.substr(0, above - 1));
        if (!made) return made;
    }
    const auto entry = beneath_->locate(path, LastLink::Refuse);
    if (!entry) return failed(entry.error(), path);
    if (mkdirat(entry->parent.get(), entry->name.c_str(), kDirectoryMode) == 0) {
        inheritOwner(entry->parent.get(), entry->name);
        return {};
    }
    const int number = errno;
    // Another may have made it meanwhile; a link to nothing is in the way.
    if (number == EEXIST && isDirectory(path)) return {};
    return failed(number, path);
}

Result<> HostFileManager::createSymbolicLink(const std::string& path, const std::string& target) {
    const auto entry = beneath_->locate(path, LastLink::Refuse);
    if (!entry) return failed(entry.error(), path);
    if (symlinkat(target.c_str(), entry->parent.get(), entry->name.c_str()) != 0)
        return failed(errno, path);
    return {};
}

Result<> HostFileManager::setModificationDate(const std::string& path,
                                              std::chrono::system_clock::time_point date) {
    const auto entry = beneath_->locate(path, LastLink::Refuse);
    if (!entry) return failed(entry.error(), path);
    const auto since = date.time_since_epoch();
    const auto seconds = std::chrono::floor<std::chrono::seconds>(since);
    const timespec time{
        static_cast<time_t>(seconds.count()),
        static_cast<long>(
            std::chrono::duration_cast<std::chrono::nanoseconds>(since - seconds).count())};
    const timespec times[] = {time, time};  // NOLINT(modernize-avoid-c-arrays): as utimensat asks
    if (utimensat(entry->parent.get(), entry->name.c_str(), times, AT_SYMLINK_NOFOLLOW) != 0)
        return failed(errno, path);
    return {};
}

Result<> HostFileManager::rename(const std::string& from, const std::string& to) {
    const auto source = beneath_->locate(from, LastLink::Refuse);
    if (!source) return failed(source.error(), from);
    const auto target = beneath_->locate(to, LastLink::Refuse);
    if (!target) return failed(target.error(), to);
#ifdef __linux__
    if (calls_ == Calls::Native) {
        if (renameat2(source->parent.get(), source->name.c_str(), target->parent.get(),
                      target->name.c_str(), RENAME_NOREPLACE) == 0)
            return {};
        if (errno != EINVAL && errno != ENOSYS) return failed(errno, errno == EEXIST ? to : from);
    }
#endif
    struct stat there{};
    if (fstatat(target->parent.get(), target->name.c_str(), &there, AT_SYMLINK_NOFOLLOW) == 0)
        return failed(EEXIST, to);
    if (renameat(source->parent.get(), source->name.c_str(), target->parent.get(),
                 target->name.c_str()) != 0)
        return failed(errno, from);
    return {};
}

/// Opens the file of a lock, which is made if absent.
Result<UniqueDescriptor> HostFileManager::openLock(const std::string& path) {
    const auto entry = beneath_->locate(path, LastLink::Refuse);
    if (!entry) return failed(entry.error(), path);
    const int directory = entry->parent.get();
    const char* name = entry->name.c_str();
    constexpr int kFlags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    UniqueDescriptor opened(openat(directory, name, O_RDWR | O_CREAT | O_EXCL | kFlags, kFileMode));
    if (opened.valid())
        inheritOwner(directory, entry->name);
    else if (errno == EEXIST)
        opened = UniqueDescriptor(openat(directory, name, O_RDWR | kFlags));
    if (opened.valid()) return opened;
    const int number = errno;
    // Reading suffices for a lock where the file is another's. Where there is none, that it can't
    // be read is not why.
    if (number == EACCES) opened = UniqueDescriptor(openat(directory, name, O_RDONLY | kFlags));
    if (!opened.valid()) return failed(number, path);
    return opened;
}

Result<FileLock> HostFileManager::lock(const std::string& path) {
    auto opened = openLock(path);
    if (!opened) return std::unexpected(opened.error());
    while (flock(opened->get(), LOCK_EX) != 0)
        if (errno != EINTR) return failed(errno, path);
    return FileLock(std::move(*opened));
}

Result<FileLock> HostFileManager::tryLock(const std::string& path, std::string_view note) {
    auto opened = openLock(path);
    if (!opened) return std::unexpected(opened.error());
    while (flock(opened->get(), LOCK_EX | LOCK_NB) != 0)
        if (errno != EINTR) return failed(errno, path);
    // The lock holds whether or not the note can be written: a full disk is no reason to refuse.
    if (ftruncate(opened->get(), 0) == 0) static_cast<void>(writeAll(opened->get(), note));
    return FileLock(std::move(*opened));
}

}  // namespace sweepwright::platform
