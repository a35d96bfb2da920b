#include "apps/AppIcon.h"

#include <array>
#include <string_view>

namespace sweepwright {

namespace {

constexpr std::array<std::string_view, 2> kExtensions = {"png", "PNG"};
constexpr std::array<std::string_view, 3> kScaleSuffixes = {"@3x", "@2x", ""};
constexpr std::array<std::string_view, 10> kUsualNames = {
    "AppIcon60x60@2x", "AppIcon60x60@3x", "Icon-60@2x", "Icon-60@3x", "AppIcon@2x",
    "AppIcon@3x",      "icon@2x",         "icon@3x",    "AppIcon",    "icon"};

std::optional<AppIcon> load(platform::FileManager& files, const std::string& bundlePath,
                            std::string_view name, std::string_view extension) {
    std::string file(name);
    file.append(".").append(extension);
    auto bytes = files.readFile(platform::joinPath(bundlePath, file), platform::kMaxImageBytes);
    if (!bytes) return std::nullopt;
    return AppIcon::fromBytes(std::move(*bytes));
}

}  // namespace

std::optional<AppIcon> AppIcon::fromBytes(std::string bytes) {
    const auto image = platform::decode(bytes);
    if (!image || image->empty()) return std::nullopt;
    return AppIcon(std::move(bytes));
}

std::optional<AppIcon> findBundleIcon(platform::FileManager& files, const std::string& bundlePath,
                                      const std::optional<std::string>& name) {
    if (name) {
        for (const std::string_view extension : kExtensions)
            for (const std::string_view suffix : kScaleSuffixes)
                if (auto icon = load(files, bundlePath, *name + std::string(suffix), extension))
                    return icon;
    }
    for (const std::string_view usual : kUsualNames)
        for (const std::string_view extension : kExtensions)
            if (auto icon = load(files, bundlePath, usual, extension)) return icon;
    return std::nullopt;
}

std::optional<AppIcon> ownIcon(const platform::ResourceBundle& resources) {
    auto bytes = resources.readFile("icon/icon1.png");
    if (!bytes) return std::nullopt;
    return AppIcon::fromBytes(std::move(*bytes));
}

}  // namespace sweepwright
