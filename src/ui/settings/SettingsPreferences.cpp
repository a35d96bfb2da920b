#include "ui/settings/SettingsPreferences.h"

#include <string>
#include <utility>

#include "platform/log/Log.h"

namespace sweepwright::ui {

using platform::PropertyList;
using platform::Result;

namespace {

Result<> logged(std::string_view what, Result<> stored) {
    if (!stored) platform::log("❌ 保存 {} 失败: {}", what, stored.error().description);
    return stored;
}

}  // namespace

// The store would set a damaged file aside for the first change, and with it what a person still
// hopes to restore. For a preference that is not worth it.
Result<> SettingsPreferences::readable() const {
    const auto stored = defaults_.read(kLargeFileThreshold);
    if (!stored) return std::unexpected(stored.error());
    return {};
}

Result<> SettingsPreferences::store(std::string_view key, PropertyList value) {
    const Result<> before = readable();
    return logged(key, before ? defaults_.set(key, std::move(value)) : before);
}

Result<> SettingsPreferences::storeMissing() {
    const bool wantsThreshold = defaults_.unsignedInteger(kLargeFileThreshold) == 0;
    const bool wantsScanDepth = !defaults_.object(kScanDepth);
    if (!wantsThreshold && !wantsScanDepth) return {};
    const auto fill = [](PropertyList::Dictionary& all) {
        const PropertyList* threshold = all.find(kLargeFileThreshold);
        if (threshold == nullptr || threshold->unsignedInteger().value_or(0) == 0) {
            all.set(std::string(kLargeFileThreshold), kDefaultThreshold);
        }
        if (all.find(kScanDepth) == nullptr) all.set(std::string(kScanDepth), kDefaultScanDepth);
    };
    const Result<> before = readable();
    return logged("默认设置", before ? defaults_.updateAll(fill) : before);
}

std::uint64_t SettingsPreferences::largeFileThreshold() const {
    const std::uint64_t stored = defaults_.unsignedInteger(kLargeFileThreshold);
    return stored > 0 ? stored : kDefaultThreshold;
}

Result<> SettingsPreferences::setLargeFileThreshold(std::uint64_t bytes) {
    return store(kLargeFileThreshold, bytes);
}

bool SettingsPreferences::isOn(std::string_view key, bool fallback) const {
    const auto stored = defaults_.object(key);
    if (!stored) return fallback;
    const bool* on = stored->boolean();
    return on != nullptr && *on;
}

Result<> SettingsPreferences::setOn(std::string_view key, bool on) {
    return store(key, on);
}

}  // namespace sweepwright::ui
