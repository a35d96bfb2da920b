#pragma once

#include <atomic>
#include <cerrno>
#include <mutex>
#include <optional>
#include <set>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <utility>

#include "platform/files/ForwardingFileManager.h"

namespace sweepwright {

/// Shows a device without the entries that were hidden, as if they had been removed. Thread-safe.
///
/// Where an entry really lies is asked only if one of its name is hidden somewhere: a walk of what
/// nothing is hidden in costs no more than without this.
class HidingFileManager final : public platform::ForwardingFileManager {
  public:
    explicit HidingFileManager(platform::FileManager& target)
        : ForwardingFileManager(target), target_(target) {}

    void hide(const platform::Directory& parent, std::string_view name) {
        const std::lock_guard lock(mutex_);
        // Mostly one folder's entries are hidden one after the other.
        if (parent.place() != lastPlace_) {
            lastFolder_ = &*folders_.insert(realPath(parent.path())).first;
            lastPlace_ = parent.place();
        }
        hidden_.emplace(name, lastFolder_);
        hidesAny_ = true;
    }

    /// The device with all that is on it.
    [[nodiscard]] platform::FileManager& whole() { return target_; }

    platform::Result<platform::Directory> openDirectory(const std::string& path,
                                                        platform::LastLink lastLink) override {
        if (isHidden(path, lastLink)) return missing(path);
        return target_.openDirectory(path, lastLink);
    }
    platform::Result<std::span<const platform::DirectoryEntry>> readEntries(
        platform::Directory& directory, platform::EntryBuffer& buffer) override {
        for (;;) {
            const auto entries = target_.readEntries(directory, buffer);
            if (!entries || entries->empty()) return entries;
            std::optional<const std::string*> folder;
            std::erase_if(buffer.entries, [&](const platform::DirectoryEntry& entry) {
                if (!isNameHidden(entry.name)) return false;
                if (!folder) folder = folderAt(realPath(directory.path()));
                return isHiddenIn(*folder, entry.name);
            });
            if (!buffer.entries.empty())
                return std::span<const platform::DirectoryEntry>(buffer.entries);
        }
    }
    platform::Result<platform::FileAttributes> attributesAt(const platform::Directory& directory,
                                                            std::string_view name) override {
        if (isNameHidden(name) && isHiddenIn(folderAt(realPath(directory.path())), name))
            return missing(directory.pathOf(name));
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

    /// Which of folders_ that is, or none.
    [[nodiscard]] const std::string* folderAt(const std::string& real) const {
        const std::shared_lock lock(mutex_);
        const auto found = folders_.find(real);
        return found == folders_.end() ? nullptr : &*found;
    }

    [[nodiscard]] bool isNameHidden(std::string_view name) const {
        if (!hidesAny_) return false;
        const std::shared_lock lock(mutex_);
        const auto first = hidden_.lower_bound({std::string(name), nullptr});
        return first != hidden_.end() && first->first == name;
    }
    [[nodiscard]] bool isHiddenIn(const std::string* folder, std::string_view name) const {
        const std::shared_lock lock(mutex_);
        return hidden_.contains({std::string(name), folder});
    }

    /// Whether `path`, or a directory above it, is hidden.
    [[nodiscard]] bool isHidden(const std::string& path, platform::LastLink lastLink) const {
        if (path.empty() || !hidesAny_) return false;
        std::string real =
            lastLink == platform::LastLink::Follow ? realPath(path) : entryPath(path);
        while (real.size() > 1) {
            const std::size_t slash = real.find_last_of('/');
            if (slash == std::string::npos) return false;
            const std::string name = real.substr(slash + 1);
            real.erase(slash);
            if (isNameHidden(name) && isHiddenIn(folderAt(real.empty() ? "/" : real), name))
                return true;
        }
        return false;
    }

    platform::FileManager& target_;
    std::atomic<bool> hidesAny_{false};
    mutable std::shared_mutex mutex_;  ///< guards the following
    std::set<std::string> folders_;    ///< real paths of those that hold something hidden
    std::set<std::pair<std::string, const std::string*>> hidden_;  ///< names, each in its folder
    platform::PlacePointer lastPlace_;
    const std::string* lastFolder_ = nullptr;  ///< of folders_, which lies at lastPlace_
};

}  // namespace sweepwright
