#pragma once

#include "platform/files/FileManager.h"

namespace sweepwright::platform {

/// Forwards every call to another manager. Override one call to change just that one: faults in
/// tests, removals that are only noted in a preview.
class ForwardingFileManager : public FileManager {
  public:
    /// `target` must outlive this.
    explicit ForwardingFileManager(FileManager& target) : target_(target) {}

    Result<Directory> openDirectory(const std::string& path, LastLink lastLink) override {
        return target_.openDirectory(path, lastLink);
    }
    Result<Directory> openBeneath(const Directory& base, std::string_view relative,
                                  Mounts mounts) override {
        return target_.openBeneath(base, relative, mounts);
    }
    Result<std::span<const DirectoryEntry>> readEntries(Directory& directory,
                                                        EntryBuffer& buffer) override {
        return target_.readEntries(directory, buffer);
    }
    Result<FileAttributes> attributesAt(const Directory& directory,
                                        std::string_view name) override {
        return target_.attributesAt(directory, name);
    }
    Result<> removeFileAt(const Directory& directory, std::string_view name) override {
        return target_.removeFileAt(directory, name);
    }
    Result<> removeDirectoryAt(const Directory& directory, std::string_view name) override {
        return target_.removeDirectoryAt(directory, name);
    }
    Result<FileAttributes> attributes(const std::string& path, LastLink lastLink) override {
        return target_.attributes(path, lastLink);
    }
    bool isWritable(const std::string& path) override { return target_.isWritable(path); }
    Result<std::optional<FileSystemAttributes>> fileSystemAttributes(
        const std::string& path) override {
        return target_.fileSystemAttributes(path);
    }
    Result<std::string> resolvedPath(const std::string& path) override {
        return target_.resolvedPath(path);
    }
    Result<std::string> hostPath(const Directory& directory) override {
        return target_.hostPath(directory);
    }
    Result<std::string> readFile(const std::string& path, std::size_t maxBytes) override {
        return target_.readFile(path, maxBytes);
    }
    Result<> writeFile(const std::string& path, std::string_view content) override {
        return target_.writeFile(path, content);
    }
    Result<> createDirectories(const std::string& path) override {
        return target_.createDirectories(path);
    }
    Result<> rename(const std::string& from, const std::string& to) override {
        return target_.rename(from, to);
    }
    Result<FileLock> lock(const std::string& path) override { return target_.lock(path); }
    Result<FileLock> tryLock(const std::string& path, std::string_view note) override {
        return target_.tryLock(path, note);
    }

  private:
    FileManager& target_;
};

}  // namespace sweepwright::platform
