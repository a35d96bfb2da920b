#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/base/Error.h"
#include "platform/base/UniqueDescriptor.h"
#include "platform/files/Place.h"
#include "platform/text/PathText.h"

namespace sweepwright::platform {

enum class FileType : std::uint8_t { Unknown, Regular, Directory, SymbolicLink, Other };

struct FileAttributes {
    FileType type = FileType::Unknown;
    std::uint64_t size = 0;  ///< bytes; of a link, the length of its target's text
    std::chrono::system_clock::time_point modificationDate;
    std::uint64_t inode = 0;
    std::uint64_t device = 0;  ///< with the inode, the file's identity
    /// Something else is mounted there; told where the kernel tells it (Linux 5.8) only.
    bool isMountPoint = false;
};

/// Totals of the volume that holds a path, in bytes.
struct FileSystemAttributes {
    std::uint64_t size = 0;
    std::uint64_t freeSize = 0;  ///< free for ordinary users
};

/// One name of a directory. `name` points into the buffer it was read into. `type` is Unknown
/// where the file system does not tell it while listing.
struct DirectoryEntry {
    std::string_view name;
    FileType type = FileType::Unknown;
    std::uint64_t inode = 0;
};

/// What one readEntries() call filled; reused for the next call to spare allocations.
class EntryBuffer {
  public:
    static constexpr std::size_t kBytes = std::size_t{32} << 10U;

    std::vector<char> bytes;
    std::vector<DirectoryEntry> entries;
};

/// An open directory: a descriptor and the device path it was opened by. What is done through it
/// happens in that very directory, whatever is renamed or swapped for a link meanwhile.
class Directory {
  public:
    Directory() = default;
    Directory(UniqueDescriptor descriptor, std::string path)
        : Directory(std::move(descriptor), std::make_shared<const Place>(std::move(path))) {}
    Directory(UniqueDescriptor descriptor, PlacePointer place)
        : descriptor_(std::move(descriptor)), place_(std::move(place)) {}

    [[nodiscard]] int descriptor() const { return descriptor_.get(); }
    /// Device path; the bytes that it was opened by. Put together anew by every call.
    [[nodiscard]] std::string path() const { return place_ ? place_->path() : std::string(); }
    /// The device path of an entry.
    [[nodiscard]] std::string pathOf(std::string_view name) const;
    /// What the manager that opened this keeps between two readEntries() calls, if anything.
    [[nodiscard]] std::shared_ptr<void>& listing() { return listing_; }
    [[nodiscard]] const PlacePointer& place() const { return place_; }
    /// Gives it an equal place in exchange for its own, which need not be kept then.
    void setPlace(PlacePointer equal) { place_ = std::move(equal); }

  private:
    UniqueDescriptor descriptor_;
    PlacePointer place_;
    std::shared_ptr<void> listing_;
};

/// What an open may meet.
enum class LastLink { Follow, Refuse };  ///< a symbolic link as the path's last component
enum class Mounts { Cross, Refuse };     ///< a directory on which something else is mounted

/// An advisory lock between processes; released when destroyed.
class FileLock {
  public:
    explicit FileLock(UniqueDescriptor descriptor) : descriptor_(std::move(descriptor)) {}

  private:
    UniqueDescriptor descriptor_;
};

/// Every file-system call of the product. Paths are device paths: absolute, bytes, resolved beneath
/// the device root, which neither ".." nor an absolute link leaves. An empty path names nothing
/// (ENOENT), one with a zero byte is refused (EINVAL).
///
/// All operations are thread-safe. They are virtual so that a test can wrap them, count calls and
/// let the n-th fail; errors carry errno values in kPosixErrorDomain.
class FileManager {
  public:
    virtual ~FileManager() = default;

    /// The manager that setDefaultManager() was last given; asking before that ends the program.
    static FileManager& defaultManager();
    /// `files` must outlive the process's last use of it. Device::setCurrent() sets the device's.
    static void setDefaultManager(FileManager& files);

    // --- Directories by descriptor: measuring and removing are made of these. ---

    /// Opens a directory for the calls below. Links on the way are followed beneath the root;
    /// `lastLink` says whether the last component may be one.
    virtual Result<Directory> openDirectory(const std::string& path, LastLink lastLink) = 0;

    /// Opens `relative` ("a/b/c"; no "." or "..") beneath `base`. No component may be a link; with
    /// Mounts::Refuse a mount point on the way is EXDEV.
    virtual Result<Directory> openBeneath(const Directory& base, std::string_view relative,
                                          Mounts mounts) = 0;

    /// Reads the next names of `directory` into `buffer`, "." and ".." left out; an empty span is
    /// the end. The first call starts at the beginning.
    virtual Result<std::span<const DirectoryEntry>> readEntries(Directory& directory,
                                                                EntryBuffer& buffer) = 0;

    /// Attributes of an entry, links not followed.
    virtual Result<FileAttributes> attributesAt(const Directory& directory,
                                                std::string_view name) = 0;

    /// Removes an entry that is no directory. Links are removed, not followed. EINVAL here and
    /// below for what is no entry's name.
    virtual Result<> removeFileAt(const Directory& directory, std::string_view name) = 0;

    /// Removes an empty directory that is an entry of `directory`.
    virtual Result<> removeDirectoryAt(const Directory& directory, std::string_view name) = 0;

    // --- Queries by path. ---

    /// Attributes of `path`; `lastLink` Refuse describes a link itself, Follow what it leads to.
    virtual Result<FileAttributes> attributes(const std::string& path, LastLink lastLink) = 0;
    virtual bool isWritable(const std::string& path) = 0;
    /// Totals of the volume that holds `path`; none when the volume does not tell.
    virtual Result<std::optional<FileSystemAttributes>> fileSystemAttributes(
        const std::string& path) = 0;
    /// The device path of an existing `path` with every link on it resolved.
    virtual Result<std::string> resolvedPath(const std::string& path) = 0;
    /// The host path of an open directory, for a command that runs on the host; ENOENT when it has
    /// none any more.
    virtual Result<std::string> hostPath(const Directory& directory) = 0;

    // --- Whole files. ---

    /// The content of a regular file of at most `maxBytes`; EFBIG if it is larger, EINVAL if it is
    /// no regular file.
    virtual Result<std::string> readFile(const std::string& path, std::size_t maxBytes) = 0;
    /// Replaces `path` by a file with `content`, atomically and durably: after a crash at any
    /// moment the old or the new content is there. Its directory must exist. Two writers of one
    /// path must hold its lock(). Owner and permissions of the old file, else the owner of the
    /// directory, are kept where the process may.
    virtual Result<> writeFile(const std::string& path, std::string_view content) = 0;
    /// Creates `path` and the directories above it that are missing; not an error if all are there.
    /// They get the owner of the directory they are made in, where the process may.
    virtual Result<> createDirectories(const std::string& path) = 0;
    /// Renames within the device; an existing `to` is not replaced (EEXIST).
    virtual Result<> rename(const std::string& from, const std::string& to) = 0;
    /// Waits for the exclusive lock on `path`, a file that is made if absent, with the owner of its
    /// directory where the process may, and stays.
    virtual Result<FileLock> lock(const std::string& path) = 0;
    /// The same without waiting: EWOULDBLOCK when it is held, by this process or another. The file
    /// then holds `note`, which tells others who holds it, where the process may write it.
    virtual Result<FileLock> tryLock(const std::string& path, std::string_view note) = 0;

    // --- Conveniences over the operations above. ---

    /// The names in `path` in listing order, a link as last component followed.
    Result<std::vector<std::string>> contentsOfDirectory(const std::string& path);
    /// The names in an open directory from where it was last read.
    Result<std::vector<std::string>> contentsOfDirectory(Directory& directory);
    /// Whether something is there; a link counts by what it leads to.
    bool fileExists(const std::string& path);
    /// Whether a directory is there; a link counts by what it leads to.
    bool isDirectory(const std::string& path);
};

}  // namespace sweepwright::platform
