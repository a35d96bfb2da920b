#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/FileManager.h"
#include "platform/tree/Unreadable.h"

namespace sweepwright {

/// One folder an app group; the relocated root file systems of rootless jailbreaks lie here too.
inline constexpr std::string_view kAppGroups = "/var/mobile/Containers/Shared/AppGroup";
inline constexpr std::string_view kHiddenRootPrefix = ".jbroot-";

/// The folders directly inside the device's hidden roots, as they stood when this was made. A root
/// or a folder that is a link is none: it may lead anywhere. Sizes are measured once each, however
/// many apps share a folder. Thread-safe.
class HiddenRoots {
  public:
    /// Bytes of what lies at `relative` beneath `root`, where no link is followed.
    using Measure =
        std::function<std::uint64_t(const std::string& root, std::string_view relative)>;

    /// A folder of a hidden root.
    struct Folder {
        std::string root;
        std::string name;
        std::optional<std::uint64_t> cacheSize;  ///< bytes, once measured
        std::optional<std::uint64_t> tmpSize;    ///< bytes, once measured

        /// Beneath the root.
        [[nodiscard]] std::string cacheRelative() const;
        [[nodiscard]] std::string tmpRelative() const;
        [[nodiscard]] std::string cachePath() const;
        [[nodiscard]] std::string tmpPath() const;
    };

    /// A root that can't be read has no folders and is told.
    explicit HiddenRoots(platform::FileManager& files,
                         const platform::UnreadableHandler& onUnreadable = {});

    /// The folders that hold data of this app: those named "var", and those with the identifier in
    /// their name.
    [[nodiscard]] std::vector<const Folder*> matching(const std::string& identifier) const;

    /// Bytes of a folder's caches and of its temporary files, by `measure`; none where there are
    /// none.
    std::optional<std::uint64_t> cacheSize(const Folder& folder, const Measure& measure);
    std::optional<std::uint64_t> tmpSize(const Folder& folder, const Measure& measure);

  private:
    void findFolders(const std::string& path, const platform::UnreadableHandler& onUnreadable);
    std::optional<std::uint64_t> measured(std::optional<std::uint64_t> Folder::* size,
                                          const Folder& folder, const std::string& relative,
                                          const Measure& measure);
    platform::FileManager& files_;
    std::mutex mutex_;
    std::vector<Folder> folders_;
};

}  // namespace sweepwright
