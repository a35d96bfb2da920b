#pragma once

#include <expected>
#include <memory>
#include <optional>
#include <string>

#include "platform/files/Calls.h"
#include "platform/files/FileMaker.h"
#include "platform/files/FileManager.h"

namespace sweepwright::platform {

/// The device root: the host folder that is the device's "/", opened once. Everything resolves
/// beneath this descriptor, so the folder may be renamed or its name reused without harm.
class DeviceRoot {
  public:
    /// Opens `hostFolder`. Fails when it is absent, no directory or unreadable, and, anywhere but
    /// on a device, when it is the host's own "/".
    static Result<std::shared_ptr<const DeviceRoot>> open(const std::string& hostFolder);

    [[nodiscard]] int descriptor() const { return descriptor_.get(); }
    [[nodiscard]] const std::string& hostFolder() const { return hostFolder_; }
    /// Where the disk is mounted on which the root is a mere folder, as a copied tree is; a host
    /// path. None when the root is mounted itself.
    [[nodiscard]] std::optional<std::string> mountAbove() const;

  private:
    DeviceRoot(UniqueDescriptor descriptor, std::string hostFolder)
        : descriptor_(std::move(descriptor)), hostFolder_(std::move(hostFolder)) {}
    UniqueDescriptor descriptor_;
    std::string hostFolder_;
};

class BeneathRoot;

/// The FileManager of a host folder.
class HostFileManager final : public FileManager, public FileMaker {
  public:
    explicit HostFileManager(std::shared_ptr<const DeviceRoot> root, Calls calls = defaultCalls());
    ~HostFileManager() override;

    Result<Directory> openDirectory(const std::string& path, LastLink lastLink) override;
    Result<Directory> openBeneath(const Directory& base, std::string_view relative,
                                  Mounts mounts) override;
    Result<std::span<const DirectoryEntry>> readEntries(Directory& directory,
                                                        EntryBuffer& buffer) override;
    Result<FileAttributes> attributesAt(const Directory& directory, std::string_view name) override;
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
    Result<> createFile(const std::string& path, std::string_view content) override;
    Result<> createSparseFile(const std::string& path, std::uint64_t size) override;
    Result<> createDirectories(const std::string& path) override;
    Result<> createSymbolicLink(const std::string& path, const std::string& target) override;
    Result<> setModificationDate(const std::string& path,
                                 std::chrono::system_clock::time_point date) override;
    Result<> rename(const std::string& from, const std::string& to) override;
    Result<FileLock> lock(const std::string& path) override;
    Result<FileLock> tryLock(const std::string& path, std::string_view note) override;

  private:
    /// For reading; ELOOP when it is a link that was not to be followed.
    std::expected<UniqueDescriptor, int> openToRead(const std::string& path, LastLink lastLink);
    Result<UniqueDescriptor> openLock(const std::string& path);

    std::shared_ptr<const DeviceRoot> root_;
    std::unique_ptr<const BeneathRoot> beneath_;
    Calls calls_;
};

}  // namespace sweepwright::platform
