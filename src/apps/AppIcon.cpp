#include "apps/AppIcon.h"

#include <array>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace sweepwright {

namespace {

constexpr std::array<std::string_view, 2> kExtensions = {"png", "PNG"};
constexpr std::array<std::string_view, 3> kScaleSuffixes = {"@3x", "@2x", ""};
constexpr std::array<std::string_view, 10> kUsualNames = {
    "AppIcon60x60@2x", "AppIcon60x60@3x", "Icon-60@2x", "Icon-60@3x", "AppIcon@2x",
    "AppIcon@3x",      "icon@2x",         "icon@3x",    "AppIcon",    "icon"};

/// A bundle's files. It is listed once, since most of the names that an icon may have are not
/// there.
class BundleFiles {
  public:
    BundleFiles(platform::FileManager& files, const std::string& bundle)
        : files_(files), bundle_(bundle) {
        auto names = files.contentsOfDirectory(bundle);
        if (names) names_.emplace(names->begin(), names->end());
    }

    std::optional<AppIcon> icon(std::string_view name, std::string_view extension) {
        std::string file(name);
        file.append(".").append(extension);
        // A name with "/" leads further down; and a folder that can't be listed may be read.
        if (names_ && !file.contains('/') && !names_->contains(file)) return std::nullopt;
        auto bytes = files_.readFile(platform::joinPath(bundle_, file), platform::kMaxImageBytes);
        if (!bytes) return std::nullopt;
        return AppIcon::fromBytes(std::move(*bytes));
    }

  private:
    platform::FileManager& files_;
    const std::string& bundle_;
    std::optional<std::unordered_set<std::string>> names_;
};

}  // namespace

std::optional<AppIcon> AppIcon::fromBytes(std::string bytes) {
    const auto image = platform::decode(bytes);
    if (!image || image->empty()) return std::nullopt;
    return AppIcon(std::move(bytes));
}

std::optional<AppIcon> findBundleIcon(platform::FileManager& files, const std::string& bundlePath,
                                      const std::optional<std::string>& name) {
    BundleFiles bundle(files, bundlePath);
    if (name) {
        for (const std::string_view extension : kExtensions)
            for (const std::string_view suffix : kScaleSuffixes)
                if (auto icon = bundle.icon(*name + std::string(suffix), extension)) return icon;
    }
    for (const std::string_view usual : kUsualNames)
        for (const std::string_view extension : kExtensions)
            if (auto icon = bundle.icon(usual, extension)) return icon;
    return std::nullopt;
}

std::optional<AppIcon> ownIcon(const platform::ResourceBundle& resources) {
    auto bytes = resources.readFile("icon/icon1.png");
    if (!bytes) return std::nullopt;
    return AppIcon::fromBytes(std::move(*bytes));
}

}  // namespace sweepwright
