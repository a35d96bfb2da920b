#include "apps/BundleIndex.h"

#include <ranges>
#include <set>

#include "engine/CategoryRules.h"
#include "platform/plist/PropertyList.h"

namespace sweepwright {

using platform::joinPath;
using platform::PropertyList;

namespace {

std::optional<std::string> text(const PropertyList* value) {
    if (value == nullptr || value->string() == nullptr || value->string()->empty())
        return std::nullopt;
    return *value->string();
}

const PropertyList::Dictionary* dictionaryAt(const PropertyList::Dictionary& parent,
                                             std::string_view key) {
    const PropertyList* value = parent.find(key);
    return value == nullptr ? nullptr : value->dictionary();
}

std::optional<std::string> lastIconFile(const PropertyList::Dictionary* icon) {
    if (icon == nullptr) return std::nullopt;
    const PropertyList* files = icon->find("CFBundleIconFiles");
    if (files == nullptr || files->array() == nullptr || files->array()->empty())
        return std::nullopt;
    return text(&files->array()->back());
}

std::optional<std::string> iconFileOf(const PropertyList::Dictionary& info) {
    const auto* icons = dictionaryAt(info, "CFBundleIcons");
    auto primary =
        lastIconFile(icons == nullptr ? nullptr : dictionaryAt(*icons, "CFBundlePrimaryIcon"));
    return primary ? primary : lastIconFile(&info);
}

}  // namespace

std::optional<BundleInfo> readBundleInfo(platform::FileManager& files,
                                         const std::string& bundlePath) {
    const auto bytes =
        files.readFile(joinPath(bundlePath, "Info.plist"), PropertyList::Limits{}.bytes);
    if (!bytes) return std::nullopt;
    const auto list = PropertyList::parse(*bytes);
    if (!list || list->dictionary() == nullptr) return std::nullopt;
    const PropertyList::Dictionary& info = *list->dictionary();
    return BundleInfo{bundlePath,
                      text(info.find("CFBundleIdentifier")),
                      text(info.find("CFBundleDisplayName")),
                      text(info.find("CFBundleName")),
                      iconFileOf(info),
                      text(info.find("CFBundleIconFile"))};
}

BundleIndex::BundleIndex(platform::FileManager& files,
                         const platform::UnreadableHandler& onUnreadable) {
    const std::string bundles(rules::kInstalledBundles);
    const auto containers = files.contentsOfDirectory(bundles);
    if (!containers) {
        platform::tellUnreadable(files, bundles, containers.error(), onUnreadable);
        return;
    }
    for (const std::string& container : *containers)
        readContainer(files, joinPath(bundles, container), onUnreadable);
}

void BundleIndex::readContainer(platform::FileManager& files, const std::string& container,
                                const platform::UnreadableHandler& onUnreadable) {
    const auto names = files.contentsOfDirectory(container);
    if (!names) return platform::tellUnreadable(files, container, names.error(), onUnreadable);
    std::set<std::string> seen;
    for (const std::string& name : *names) {
        if (!name.ends_with(".app")) continue;
        auto info = readBundleInfo(files, joinPath(container, name));
        if (!info || !info->identifier || !seen.insert(*info->identifier).second) continue;
        byIdentifier_[*info->identifier].push_back(std::move(*info));
    }
}

const std::vector<BundleInfo>& BundleIndex::find(const std::string& identifier) const {
    static const std::vector<BundleInfo> kNone;
    const auto found = byIdentifier_.find(identifier);
    return found == byIdentifier_.end() ? kNone : found->second;
}

std::vector<std::string> BundleIndex::identifiers() const {
    const auto keys = std::views::keys(byIdentifier_);
    return {keys.begin(), keys.end()};
}

}  // namespace sweepwright
