#pragma once

#include "platform/files/ForwardingFileManager.h"

namespace sweepwright::test {

/// Lists directories as a file system does that does not tell what an entry is.
class UntypedFileManager final : public platform::ForwardingFileManager {
  public:
    using ForwardingFileManager::ForwardingFileManager;

    platform::Result<std::span<const platform::DirectoryEntry>> readEntries(
        platform::Directory& directory, platform::EntryBuffer& buffer) override {
        auto entries = ForwardingFileManager::readEntries(directory, buffer);
        for (platform::DirectoryEntry& entry : buffer.entries)
            entry.type = platform::FileType::Unknown;
        return entries;
    }
};

}  // namespace sweepwright::test
