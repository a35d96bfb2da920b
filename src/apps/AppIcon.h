#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/files/FileManager.h"
#include "platform/image/Image.h"
#include "platform/system/ResourceBundle.h"

namespace sweepwright {

/// A picture of an app: the bytes of a file that decodes. They are kept encoded, a few KiB where
/// the pixels would be a hundred times that, and decoded by whoever draws them. Copies are cheap.
class AppIcon {
  public:
    /// The icon in `bytes`, none when they don't decode to a picture.
    static std::optional<AppIcon> fromBytes(std::string bytes);

    [[nodiscard]] platform::Result<platform::Image> image() const {
        return platform::decode(*bytes_);
    }
    [[nodiscard]] const std::string& bytes() const { return *bytes_; }

  private:
    explicit AppIcon(std::string bytes)
        : bytes_(std::make_shared<const std::string>(std::move(bytes))) {}
    std::shared_ptr<const std::string> bytes_;
};

/// An icon file of an app's bundle: the first of the names that Info.plist gives, in all sizes, and
/// of the usual names that is there and decodes. `name` is the icon's name by Info.plist, if any.
std::optional<AppIcon> findBundleIcon(platform::FileManager& files, const std::string& bundlePath,
                                      const std::optional<std::string>& name);

/// The product's own icon, which stands in where an app has none; none when its resource is
/// missing.
std::optional<AppIcon> ownIcon(const platform::ResourceBundle& resources);

}  // namespace sweepwright
