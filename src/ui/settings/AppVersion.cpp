#include "ui/settings/AppVersion.h"

#include <string_view>

#include "platform/log/Log.h"
#include "platform/plist/PropertyList.h"
#include "platform/system/ResourceBundle.h"

namespace sweepwright::ui {

using platform::PropertyList;

namespace {

void take(std::string& target, const PropertyList::Dictionary& info, std::string_view key) {
    const PropertyList* value = info.find(key);
    const std::string* text = value != nullptr ? value->string() : nullptr;
    if (text != nullptr && !text->empty()) target = *text;
}

}  // namespace

AppVersion appVersion(const platform::ResourceBundle& bundle) {
    AppVersion version;
    const auto bytes = bundle.readFile("Info.plist");
    const auto info = bytes ? PropertyList::parse(*bytes) : std::unexpected(bytes.error());
    if (!info) {
        platform::log("⚠️ 无法读取应用版本: {}", info.error().description);
        return version;
    }
    if (const PropertyList::Dictionary* entries = info->dictionary()) {
        take(version.shortVersion, *entries, "CFBundleShortVersionString");
        take(version.build, *entries, "CFBundleVersion");
    }
    return version;
}

}  // namespace sweepwright::ui
