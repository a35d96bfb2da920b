#pragma once

#include <QString>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

#include "apps/AppIcon.h"
#include "platform/files/FileManager.h"

namespace sweepwright::ui {

/// Where the views find the icons of the apps that are listed: an icon stays, still encoded, for as
/// long as somebody holds its handle. Thread-safe.
class AppIconStore {
  public:
    /// An icon's bytes, or the device path of its file.
    struct Icon {
        std::uint64_t number = 0;
        std::optional<AppIcon> bytes = std::nullopt;
        std::string path = {};

        /// Where an Image finds it.
        [[nodiscard]] QString url() const;
    };
    using Handle = std::shared_ptr<const Icon>;

    /// The name of the image provider that draws the store's icons.
    static const QString kProvider;

    /// `files` must outlive this.
    explicit AppIconStore(platform::FileManager& files) : files_(files) {}

    /// Icons that share their bytes share their handle.
    Handle add(AppIcon icon);
    /// The file's icon; read when it is drawn.
    Handle add(std::string path);

    /// The picture of the icon of this number. An error when nobody holds that any more or it does
    /// not decode. Reads and decodes on the caller's thread.
    [[nodiscard]] platform::Result<platform::Image> image(std::uint64_t number) const;

    /// How many icons somebody holds.
    [[nodiscard]] std::size_t count() const;

  private:
    Handle insert(Icon icon);
    [[nodiscard]] Handle find(std::uint64_t number) const;

    platform::FileManager& files_;
    mutable std::mutex mutex_;
    std::uint64_t lastNumber_ = 0;
    std::size_t pruneAt_ = 64;
    std::unordered_map<std::uint64_t, std::weak_ptr<const Icon>> icons_;
    std::unordered_map<const std::string*, std::weak_ptr<const Icon>> byBytes_;
};

}  // namespace sweepwright::ui
