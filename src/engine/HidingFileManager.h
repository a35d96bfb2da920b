#pragma once

#include <cerrno>
#include <set>
#include <string>
#include <string_view>

#include "platform/files/ForwardingFileManager.h"

namespace sweepwright {

/// Shows a device without the entries that were hidden, as if they had been removed. Entries are
/// hidden between, not during, other calls.
class HidingFileManager final : public platform::ForwardingFileManager {
  public:
    explicit HidingFileManager(platform::FileManager& target)
        : ForwardingFileManager(target), target_(target) {}

    void hide(const platform::Directory& parent, std::string_view name) {
        hidden_.insert(platform::joinPath(realPath(parent.path()), name));
    }

    platform::Result<platform::Directory> openDirectory(const std::string& path,
                                                        platform::LastLink lastLink) override {
        if (isHidden(path, lastLink)) return missing(path);
        return target_.openDirectory(path, lastLink);
    }
    platform::Result<std::span<const platform::DirectoryEntry>> readEntries(
        platform::Directory& directory, platform::EntryBuffer& buffer) override {
        for (;;) {
            const auto entries = target_.readEntries(directory, buffer);
            if (!entries || entries->empty() || hidden_.empty()) return entries;
            const std::string path = realPath(directory.path());
            std::erase_if(buffer.entries, [&](const platform::DirectoryEntry& entry) {
                return hidden_.contains(platform::joinPath(path, entry.name));
            });
            if (!buffer.entries.empty())
                return std::span<const platform::DirectoryEntry>(buffer.entries);
        }
    }
    platform::Result<platform::FileAttributes> attributesAt(const platform::Directory& directory,
                                                            std::string_view name) override {
        const std::string path = directory.pathOf(name);
        if (isHidden(path, platform::LastLink::Refuse)) return missing(path);
        return target_.attributesAt(directory, name);
    }
    platform::Result<platform::FileAttributes> attributes(const std::string& path,
                                                          platform::LastLink lastLink) override {
        if (isHidden(path, lastLink)) return missing(path);
        return target_.attributes(path, lastLink);
    }

  private:
    static std::unexpected<platform::Error> missing(const std::string& path) {
        return std::unexpected(platform::errorFromErrno(ENOENT, path));
    }

    [[nodiscard]] std::string realPath(const std::string& path) const {
        return target_.resolvedPath(path).value_or(path);
    }

    /// As realPath(), of a link itself and not of what it leads to.
    [[nodiscard]] std::string entryPath(const std::string& path) const {
        const std::string_view name = platform::lastPathComponent(path);
        return platform::joinPath(realPath(path.substr(0, path.rfind(name))), name);
    }

    /// Whether `path`, or a directory above it, is hidden.
    [[nodiscard]] bool isHidden(const std::string& path, platform::LastLink lastLink) const {
        if (hidden_.empty() || path.empty()) return false;
        std::string real =
            lastLink == platform::LastLink::Follow ? realPath(path) : entryPath(path);
        while (real.size() > 1) {
            if (hidden_.contains(real)) return true;
            real.erase(real.find_last_of('/') == std::string::npos ? 0 : real.find_last_of('/'));
        }
        return false;
    }

    platform::FileManager& target_;
    std::set<std::string> hidden_;
};

}  // namespace sweepwright
