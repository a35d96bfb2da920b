#include "ui/apps/AppIconStore.h"

#include <algorithm>
#include <utility>

namespace sweepwright::ui {

const QString AppIconStore::kProvider = QStringLiteral("appicon");

QString AppIconStore::Icon::url() const {
    return QStringLiteral("image://%1/%2").arg(kProvider).arg(number);
}

AppIconStore::Handle AppIconStore::add(AppIcon icon) {
    const std::lock_guard lock(mutex_);
    const std::string* key = &icon.bytes();
    // While the handle lives so do the bytes, and their address is no other icon's.
    if (const auto known = byBytes_.find(key); known != byBytes_.end())
        if (Handle handle = known->second.lock()) return handle;
    Handle handle = insert({.bytes = std::move(icon)});
    byBytes_[key] = handle;
    return handle;
}

AppIconStore::Handle AppIconStore::add(std::string path) {
    const std::lock_guard lock(mutex_);
    return insert({.path = std::move(path)});
}

AppIconStore::Handle AppIconStore::insert(Icon icon) {
    // Now and then, so that what nobody holds any more takes no room for long.
    if (icons_.size() >= pruneAt_) {
        const auto expired = [](const auto& entry) { return entry.second.expired(); };
        std::erase_if(icons_, expired);
        std::erase_if(byBytes_, expired);
        pruneAt_ = std::max<std::size_t>(64, 2 * icons_.size());
    }
    icon.number = ++lastNumber_;
    auto handle = std::make_shared<const Icon>(std::move(icon));
    icons_[handle->number] = handle;
    return handle;
}

AppIconStore::Handle AppIconStore::find(std::uint64_t number) const {
    const std::lock_guard lock(mutex_);
    const auto found = icons_.find(number);
    return found == icons_.end() ? nullptr : found->second.lock();
}

platform::Result<platform::Image> AppIconStore::image(std::uint64_t number) const {
    const Handle icon = find(number);
    if (!icon) return std::unexpected(platform::formatError({}, "the icon is gone"));
    if (icon->bytes) return icon->bytes->image();
    const auto bytes = files_.readFile(icon->path, platform::kMaxImageBytes);
    if (!bytes) return std::unexpected(bytes.error());
    return platform::decode(*bytes);
}

std::size_t AppIconStore::count() const {
    const std::lock_guard lock(mutex_);
    return static_cast<std::size_t>(std::count_if(
        icons_.begin(), icons_.end(), [](const auto& entry) { return !entry.second.expired(); }));
}

}  // namespace sweepwright::ui
