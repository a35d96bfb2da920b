#include "platform/files/HostFileManager.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#ifdef __linux__
#include <sys/syscall.h>
#endif

#include "platform/base/Failure.h"
#include "platform/files/internal/BeneathRoot.h"

namespace sweepwright::platform {

namespace {

// An open that asks about a file and neither reads it nor needs the right to.
#ifdef O_PATH
constexpr int kAsk = O_PATH | O_CLOEXEC | O_NOFOLLOW;
#else
constexpr int kAsk = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW;
#endif

FileType typeFromMode(unsigned mode) {
    if (S_ISREG(mode)) return FileType::Regular;
    if (S_ISDIR(mode)) return FileType::Directory;
    if (S_ISLNK(mode)) return FileType::SymbolicLink;
    return FileType::Other;
}

FileType typeFromEntry(unsigned char type) {
    switch (type) {
        case DT_REG:
            return FileType::Regular;
        case DT_DIR:
            return FileType::Directory;
        case DT_LNK:
            return FileType::SymbolicLink;
        case DT_UNKNOWN:
            return FileType::Unknown;
        default:
            return FileType::Other;
    }
}

/// A date that the clock can't tell, which any file may bear, becomes the last or first it can.
std::chrono::system_clock::time_point timePoint(std::int64_t seconds, std::int64_t nanoseconds) {
    using Date = std::chrono::system_clock::time_point;
    constexpr std::int64_t kLast =
        std::chrono::floor<std::chrono::seconds>(std::chrono::nanoseconds::max()).count();
    if (seconds >= kLast) return Date::max();
    if (seconds <= -kLast) return Date::min();
    return Date(std::chrono::duration_cast<std::chrono::system_clock::duration>(
        std::chrono::seconds(seconds) + std::chrono::nanoseconds(nanoseconds)));
}

#ifdef __linux__
bool isMountRoot([[maybe_unused]] const struct statx& status) {
#ifdef STATX_ATTR_MOUNT_ROOT
    return (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
#else
    return false;
#endif
}
#endif

/// Attributes by one system call; 0 or an errno value.
int readAttributes(int directory, const char* name, Calls calls, FileAttributes& out) {
#ifdef __linux__
    if (calls == Calls::Native) {
        struct statx status{};
        constexpr unsigned kMask = STATX_TYPE | STATX_SIZE | STATX_MTIME | STATX_INO;
        if (statx(directory, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, kMask, &status) == 0) {
            out = {typeFromMode(status.stx_mode),
                   status.stx_size,
                   timePoint(status.stx_mtime.tv_sec, status.stx_mtime.tv_nsec),
                   status.stx_ino,
                   (std::uint64_t{status.stx_dev_major} << 32U) | status.stx_dev_minor,
                   isMountRoot(status)};
            return 0;
        }
        if (errno != ENOSYS && errno != EPERM) return errno;
    }
#else
    (void)calls;
#endif
    struct stat status{};
    if (fstatat(directory, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return errno;
#ifdef __APPLE__
    const timespec modified = status.st_mtimespec;
#else
    const timespec modified = status.st_mtim;
#endif
    out = {typeFromMode(status.st_mode),
           static_cast<std::uint64_t>(status.st_size),
           timePoint(modified.tv_sec, modified.tv_nsec),
           status.st_ino,
           status.st_dev,
           false};
    return 0;
}

/// A name as the system calls want it, without an allocation.
class CName {
  public:
    // Filling what the name does not need would cost more than the rest.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
    explicit CName(std::string_view name) {
        if (name.size() < fixed_.size()) {
            std::memcpy(fixed_.data(), name.data(), name.size());
            fixed_[name.size()] = '\0';
        } else {
            long_ = name;
        }
    }
    [[nodiscard]] const char* get() const { return long_.empty() ? fixed_.data() : long_.c_str(); }

  private:
    std::array<char, NAME_MAX + 1> fixed_;
    std::string long_;
};

bool isDotOrDotDot(std::string_view name) {
    return name == "." || name == "..";
}

Result<> removeAt(const Directory& directory, std::string_view name, int flags) {
    if (!isEntryName(name)) return failed(EINVAL, directory.pathOf(name));
    if (unlinkat(directory.descriptor(), CName(name).get(), flags) != 0)
        return failed(errno, directory.pathOf(name));
    return {};
}

int readPortable(DIR* stream, EntryBuffer& buffer) {
    buffer.bytes.clear();
    buffer.bytes.reserve(EntryBuffer::kBytes);
    // Names point into the bytes, which must not move. Some file systems have names longer than
    // NAME_MAX; none has one longer than a path.
    while (buffer.bytes.size() + PATH_MAX <= EntryBuffer::kBytes) {
        errno = 0;
        const dirent* entry = readdir(stream);
        if (entry == nullptr) return errno;
        const std::string_view name = entry->d_name;
        if (isDotOrDotDot(name)) continue;
        const std::size_t at = buffer.bytes.size();
        buffer.bytes.insert(buffer.bytes.end(), entry->d_name, entry->d_name + name.size() + 1);
        buffer.entries.push_back(
            {{buffer.bytes.data() + at, name.size()}, typeFromEntry(entry->d_type), entry->d_ino});
    }
    return 0;
}

#ifdef __linux__
// The kernel's record of a directory entry, as getdents64 fills them.
struct KernelEntry {
    std::uint64_t inode;
    std::int64_t offset;
    unsigned short length;
    unsigned char type;
    char name[1];  // NOLINT(modernize-avoid-c-arrays): the name goes on behind the record
};

int readNative(int descriptor, EntryBuffer& buffer) {
    buffer.bytes.resize(EntryBuffer::kBytes);
    while (buffer.entries.empty()) {
        const long filled =
            syscall(SYS_getdents64, descriptor, buffer.bytes.data(), buffer.bytes.size());
        if (filled < 0) return errno;
        if (filled == 0) return 0;
        for (long at = 0; at < filled;) {
            const auto* entry = reinterpret_cast<const KernelEntry*>(buffer.bytes.data() + at);
            const char* name = buffer.bytes.data() + at + offsetof(KernelEntry, name);
            at += entry->length;
            const std::string_view text = name;
            if (isDotOrDotDot(text)) continue;
            buffer.entries.push_back({text, typeFromEntry(entry->type), entry->inode});
        }
    }
    return 0;
}
#endif

}  // namespace

Result<std::shared_ptr<const DeviceRoot>> DeviceRoot::open(const std::string& hostFolder) {
    UniqueDescriptor descriptor(
        ::open(hostFolder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK));
    if (!descriptor.valid()) return failed(errno, hostFolder);
#ifndef __APPLE__
    struct stat opened{};
    struct stat host{};
    if (fstat(descriptor.get(), &opened) != 0 || stat("/", &host) != 0)
        return failed(errno, hostFolder);
    if (opened.st_dev == host.st_dev && opened.st_ino == host.st_ino) {
        return std::unexpected(Error{std::string(kPosixErrorDomain), EPERM,
                                     hostFolder + ": is this computer's own root folder; a device "
                                                  "root must be the folder of a device"});
    }
#endif
    return std::shared_ptr<const DeviceRoot>(new DeviceRoot(std::move(descriptor), hostFolder));
}

std::optional<std::string> DeviceRoot::mountAbove() const {
    namespace fs = std::filesystem;
    std::error_code unknown;
    const fs::path root = fs::canonical(hostFolder_, unknown);
    struct stat own{};
    if (unknown || fstat(descriptor(), &own) != 0) return std::nullopt;
    fs::path folder = root;
    for (; folder.has_relative_path(); folder = folder.parent_path()) {
        struct stat above{};
        if (stat(folder.parent_path().c_str(), &above) != 0 || above.st_dev != own.st_dev) break;
    }
    if (folder == root) return std::nullopt;
    return folder.string();
}

HostFileManager::HostFileManager(std::shared_ptr<const DeviceRoot> root, Calls calls)
    : root_(std::move(root)),
      beneath_(std::make_unique<BeneathRoot>(root_->descriptor(), calls)),
      calls_(calls) {}

HostFileManager::~HostFileManager() = default;

Result<Directory> HostFileManager::openDirectory(const std::string& path, LastLink lastLink) {
    auto opened = beneath_->openDirectory(path, lastLink);
    if (!opened) return failed(opened.error(), path);
    return Directory(std::move(*opened), path);
}

Result<Directory> HostFileManager::openBeneath(const Directory& base, std::string_view relative,
                                               Mounts mounts) {
    auto opened = beneath_->openBeneath(base.descriptor(), relative, mounts);
    if (!opened)
        return failed(opened.error(), relative.empty() ? base.path() : base.pathOf(relative));
    if (relative.empty()) return Directory(std::move(*opened), base.place());
    return Directory(std::move(*opened), std::make_shared<const Place>(base.place(), relative));
}

Result<std::span<const DirectoryEntry>> HostFileManager::readEntries(Directory& directory,
                                                                     EntryBuffer& buffer) {
    buffer.entries.clear();
#ifdef __linux__
    if (calls_ == Calls::Native) {
        const int number = readNative(directory.descriptor(), buffer);
        if (number != 0) return failed(number, directory.path());
        return std::span<const DirectoryEntry>(buffer.entries);
    }
#endif
    if (!directory.listing()) {
        const int copy = fcntl(directory.descriptor(), F_DUPFD_CLOEXEC, 0);
        DIR* stream = copy < 0 ? nullptr : fdopendir(copy);
        if (stream == nullptr) {
            const int number = errno;
            if (copy >= 0) close(copy);
            return failed(number, directory.path());
        }
        directory.listing() =
            std::shared_ptr<void>(stream, [](void* open) { closedir(static_cast<DIR*>(open)); });
    }
    const int number = readPortable(static_cast<DIR*>(directory.listing().get()), buffer);
    if (number != 0) return failed(number, directory.path());
    // Whoever keeps a directory that has been read keeps one descriptor, not two.
    if (buffer.entries.empty()) directory.listing().reset();
    return std::span<const DirectoryEntry>(buffer.entries);
}

Result<FileAttributes> HostFileManager::attributesAt(const Directory& directory,
                                                     std::string_view name) {
    FileAttributes found;
    const int number = readAttributes(directory.descriptor(), CName(name).get(), calls_, found);
    if (number != 0) return failed(number, directory.pathOf(name));
    return found;
}

Result<> HostFileManager::removeFileAt(const Directory& directory, std::string_view name) {
    return removeAt(directory, name, 0);
}

Result<> HostFileManager::removeDirectoryAt(const Directory& directory, std::string_view name) {
    return removeAt(directory, name, AT_REMOVEDIR);
}

Result<FileAttributes> HostFileManager::attributes(const std::string& path, LastLink lastLink) {
    // Most are no link, which costs no question of its own this way.
    for (const LastLink last : {LastLink::Refuse, lastLink}) {
        const auto entry = beneath_->locate(path, last);
        if (!entry) return failed(entry.error(), path);
        FileAttributes found;
        const int number = readAttributes(entry->parent.get(), entry->name.c_str(), calls_, found);
        if (number != 0) return failed(number, path);
        if (last == lastLink || found.type != FileType::SymbolicLink) return found;
    }
    return failed(ELOOP, path);
}

bool HostFileManager::isWritable(const std::string& path) {
    const auto entry = beneath_->locate(path, LastLink::Follow);
    return entry && faccessat(entry->parent.get(), entry->name.c_str(), W_OK, 0) == 0;
}

Result<std::optional<FileSystemAttributes>> HostFileManager::fileSystemAttributes(
    const std::string& path) {
    const auto entry = beneath_->locate(path, LastLink::Follow);
    if (!entry) return failed(entry.error(), path);
    UniqueDescriptor opened(openat(entry->parent.get(), entry->name.c_str(), kAsk));
    if (!opened.valid()) return failed(errno, path);
    struct statvfs totals{};
    if (fstatvfs(opened.get(), &totals) != 0) return failed(errno, path);
    if (totals.f_blocks == 0) return std::nullopt;
    return FileSystemAttributes{std::uint64_t{totals.f_blocks} * totals.f_frsize,
                                std::uint64_t{totals.f_bavail} * totals.f_frsize};
}

Result<std::string> HostFileManager::resolvedPath(const std::string& path) {
    const auto entry = beneath_->resolve(path, LastLink::Follow);
    if (!entry) return failed(entry.error(), path);
    FileAttributes found;
    const int number = readAttributes(entry->parent.get(), entry->name.c_str(), calls_, found);
    if (number != 0) return failed(number, path);
    return entry->path;
}

Result<std::string> HostFileManager::hostPath(const Directory& directory) {
    std::array<char, PATH_MAX> buffer{};
#ifdef __APPLE__
    if (fcntl(directory.descriptor(), F_GETPATH, buffer.data()) != 0)
        return failed(errno, directory.path());
    std::string path(buffer.data());
#else
    const std::string self = "/proc/self/fd/" + std::to_string(directory.descriptor());
    const ssize_t length = readlink(self.c_str(), buffer.data(), buffer.size());
    if (length < 0) return failed(errno, directory.path());
    std::string path(buffer.data(), static_cast<std::size_t>(length));
#endif
    // The text of a directory that is gone, or too long to be told whole, names something else.
    struct stat opened{};
    struct stat named{};
    if (fstat(directory.descriptor(), &opened) != 0 || lstat(path.c_str(), &named) != 0)
        return failed(errno, directory.path());
    if (opened.st_dev != named.st_dev || opened.st_ino != named.st_ino)
        return failed(ENOENT, directory.path());
    return path;
}

}  // namespace sweepwright::platform
