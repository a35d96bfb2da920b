#include "protection/StoredStrings.h"

#include <utility>

#include <fmt/format.h>

#include "platform/log/Log.h"
#include "platform/plist/PropertyList.h"

namespace sweepwright {

using platform::PropertyList;
using platform::Result;

namespace {

PropertyList encoded(const StoredStrings::Strings& strings) {
    return PropertyList(PropertyList::Array(strings.begin(), strings.end()));
}

}  // namespace

StoredStrings::StoredStrings(platform::UserDefaults& defaults, std::string key)
    : defaults_(defaults), key_(std::move(key)) {}

Result<StoredStrings::Strings> StoredStrings::decoded(const PropertyList* stored) const {
    Strings strings;
    if (stored == nullptr) return strings;
    const auto wrong = [&] {
        return std::unexpected(platform::formatError(
            defaults_.file(), fmt::format("\"{}\" is not a list of texts", key_)));
    };
    const PropertyList::Array* elements = stored->array();
    if (elements == nullptr) return wrong();
    strings.reserve(elements->size());
    for (const PropertyList& element : *elements) {
        const std::string* bytes = element.bytes();
        if (bytes == nullptr) return wrong();
        strings.push_back(*bytes);
    }
    return strings;
}

Result<StoredStrings::Strings> StoredStrings::read() const {
    if (auto damage = defaults_.damage()) return std::unexpected(*std::move(damage));
    const auto stored = defaults_.read(key_);
    if (!stored) return std::unexpected(stored.error());
    return decoded(*stored ? &**stored : nullptr);
}

Result<StoredStrings::Strings> StoredStrings::update(const std::function<void(Strings&)>& change) {
    Result<Strings> strings;
    const auto changed = [&]() -> Result<> {
        // The store would set a damaged file aside and begin a new one, without this list.
        if (auto damage = defaults_.damage()) return std::unexpected(*std::move(damage));
        return defaults_.update(key_, [&](const PropertyList* stored) {
            strings = decoded(stored);
            if (!strings) return std::optional(*stored);
            change(*strings);
            return std::optional(encoded(*strings));
        });
    }();
    if (!changed) strings = std::unexpected(changed.error());
    if (!strings) platform::log("❌ 保存 {} 失败: {}", key_, strings.error().description);
    return strings;
}

}  // namespace sweepwright
