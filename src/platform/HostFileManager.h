#pragma once

#include <memory>
#include <string>

#include "platform/FileManager.h"

namespace sweepwright::platform {

/// The device root: the host folder that is the device's "/", opened once. Everything resolves
/// beneath this descriptor, so the folder may be renamed or its name reused without harm.
class DeviceRoot {
  public:
    /// Opens `hostFolder`. Fails when it is absent, no directory or unreadable, and, anywhere but on
    /// a device, when it is the host's own "/".
    static Result<std::shared_ptr<const DeviceRoot>> open(const std::string& hostFolder);

    ~DeviceRoot();
    DeviceRoot(const DeviceRoot&) = delete;
    DeviceRoot& operator=(const DeviceRoot&) = delete;

    [[nodiscard]] int descriptor() const { return descriptor_; }
    [[nodiscard]] const std::string& hostFolder() const { return hostFolder_; }

  private:
    DeviceRoot(int descriptor, std::string hostFolder);
    int descriptor_;
    std::string hostFolder_;
};

/// How HostFileManager talks to the kernel.
enum class Calls {
    Native,    ///< openat2, getdents64 and statx where the host has them
    Portable,  ///< openat component by component, readdir and fstatat: any POSIX host
};

/// Native on Linux unless the environment sets SWEEPWRIGHT_PORTABLE_CALLS, else Portable.
Calls defaultCalls();

/// The FileManager of a host folder.
class HostFileManager final : public FileManager {
  public:
    explicit HostFileManager(std::shared_ptr<const DeviceRoot> root, Calls calls = defaultCalls());

    Result<Directory> openDirectory(const std::string& path, LastLink lastLink) override;
    Result<Directory> openBeneath(const Directory& base, std::string_view relative,
                                  Mounts mounts) override;
    Result<std::span<const DirectoryEntry>> readEntries(Directory& directory,
                                                        EntryBuffer& buffer) override;
    Result<FileAttributes> attributesAt(const Directory& directory,
                                        std::string_view name) override;
    Result<> removeFileAt(const Directory& directory, std::string_view name) override;
    Result<> removeDirectoryAt(const Directory& directory, std::string_view name) override;
    Result<FileAttributes> attributes(const std::string& path, LastLink lastLink) override;
    bool isWritable(const std::string& path) override;
    Result<std::optional<FileSystemAttributes>> fileSystemAttributes(
        const std::string& path) override;
    Result<std::string> resolvedPath(const std::string& path) override;
    Result<std::string> hostPath(const Directory& directory) override;
    Result<std::string> readFile(const std::string& path, std::size_t maxBytes) override;
    Result<> writeFile(const std::string& path, std::string_view content) override;
    Result<> createSparseFile(const std::string& path, std::uint64_t size) override;
    Result<> createDirectories(const std::string& path) override;
    Result<> createSymbolicLink(const std::string& path, const std::string& target) override;
    Result<> setModificationDate(const std::string& path,
                                 std::chrono::system_clock::time_point date) override;
    Result<> rename(const std::string& from, const std::string& to) override;
    Result<FileLock> lock(const std::string& path) override;

  private:
    std::shared_ptr<const DeviceRoot> root_;
    Calls calls_;
};

}  // namespace sweepwright::platform
