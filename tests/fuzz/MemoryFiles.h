#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>

#include "platform/files/ForwardingFileManager.h"
#include "platform/files/HostFileManager.h"

namespace sweepwright::fuzz {

/// A device's files in memory, without the host's: whole files, the folders above them, and the
/// lists of those. Every other call fails, as on an empty device. For one thread.
class MemoryFiles final : public platform::ForwardingFileManager {
  public:
    MemoryFiles();

    void put(const std::string& path, std::string_view content) { files_[path] = content; }
    void clear() { files_.clear(); }
    [[nodiscard]] const std::map<std::string, std::string>& files() const { return files_; }

    platform::Result<platform::Directory> openDirectory(const std::string& path,
                                                        platform::LastLink lastLink) override;
    platform::Result<std::span<const platform::DirectoryEntry>> readEntries(
        platform::Directory& directory, platform::EntryBuffer& buffer) override;
    platform::Result<platform::FileAttributes> attributes(const std::string& path,
                                                          platform::LastLink lastLink) override;
    platform::Result<std::string> readFile(const std::string& path, std::size_t maxBytes) override;
    platform::Result<> writeFile(const std::string& path, std::string_view content) override;
    platform::Result<> createDirectories(const std::string& path) override;
    platform::Result<> rename(const std::string& from, const std::string& to) override;
    platform::Result<platform::FileLock> lock(const std::string& path) override;

  private:
    /// A host folder that is opened and then removed: nothing can be in it.
    explicit MemoryFiles(std::unique_ptr<platform::HostFileManager> nothing);
    static std::unique_ptr<platform::HostFileManager> nothing();

    [[nodiscard]] std::set<std::string> namesIn(const std::string& folder) const;

    std::unique_ptr<platform::HostFileManager> nothing_;
    std::map<std::string, std::string> files_;
    std::set<std::string> listed_;  // folders whose names were handed out since they were opened
};

}  // namespace sweepwright::fuzz
