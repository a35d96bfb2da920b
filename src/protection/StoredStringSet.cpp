#include "protection/StoredStringSet.h"

#include <utility>

namespace sweepwright {

using platform::Result;

StoredStringSet::StoredStringSet(platform::UserDefaults& defaults, std::string key)
    : stored_(defaults, std::move(key)) {
    reload();
}

void StoredStringSet::reload() {
    const std::scoped_lock lock(changing_);
    const auto strings = stored_.read();
    if (strings) members_.set(OrderedStringSet(*strings));
    readiness_.set(strings ? Result<>() : std::unexpected(strings.error()));
}

Result<> StoredStringSet::readiness() const {
    return *readiness_.get();
}

Result<> StoredStringSet::update(const std::function<void(OrderedStringSet&)>& change) {
    const std::scoped_lock lock(changing_);
    OrderedStringSet changed;
    const auto strings = stored_.update([&](StoredStrings::Strings& stored) {
        changed = OrderedStringSet(stored);
        change(changed);
        stored = changed.strings();
    });
    if (!strings) return std::unexpected(strings.error());
    members_.set(std::move(changed));
    readiness_.set({});
    return {};
}

Result<> StoredStringSet::add(const std::string& string) {
    return update([&](OrderedStringSet& set) { set.add(string); });
}

Result<> StoredStringSet::remove(std::string_view string) {
    return update([&](OrderedStringSet& set) { set.remove(string); });
}

Result<> StoredStringSet::clear() {
    return update([](OrderedStringSet& set) { set = OrderedStringSet(); });
}

}  // namespace sweepwright
