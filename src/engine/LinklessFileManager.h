#pragma once

#include <vector>

#include "platform/files/ForwardingFileManager.h"

namespace sweepwright {

/// Shows a device whose folders hold no symbolic links, so that whoever follows links reads each
/// folder once. A path that itself leads by a link still does.
class LinklessFileManager final : public platform::ForwardingFileManager {
  public:
    explicit LinklessFileManager(platform::FileManager& target)
        : ForwardingFileManager(target), target_(target) {}

    platform::Result<std::span<const platform::DirectoryEntry>> readEntries(
        platform::Directory& directory, platform::EntryBuffer& buffer) override {
        for (;;) {
            const auto entries = target_.readEntries(directory, buffer);
            if (!entries || entries->empty()) return entries;
            std::erase_if(buffer.entries, [&](const platform::DirectoryEntry& entry) {
                return isLink(directory, entry);
            });
            if (!buffer.entries.empty())
                return std::span<const platform::DirectoryEntry>(buffer.entries);
        }
    }

  private:
    bool isLink(const platform::Directory& directory, const platform::DirectoryEntry& entry) {
        if (entry.type != platform::FileType::Unknown)
            return entry.type == platform::FileType::SymbolicLink;
        const auto attributes = target_.attributesAt(directory, entry.name);
        return attributes && attributes->type == platform::FileType::SymbolicLink;
    }

    platform::FileManager& target_;
};

}  // namespace sweepwright
