#include "protection/OrderedStringSet.h"

#include <algorithm>
#include <utility>

namespace sweepwright {

OrderedStringSet::OrderedStringSet(const std::vector<std::string>& strings) {
    for (const std::string& string : strings)
        add(string);
}

bool OrderedStringSet::add(std::string string) {
    if (!lookup_.insert(string).second) return false;
    strings_.push_back(std::move(string));
    return true;
}

bool OrderedStringSet::remove(std::string_view string) {
    const auto found = lookup_.find(string);
    if (found == lookup_.end()) return false;
    strings_.erase(std::ranges::find(strings_, string));
    lookup_.erase(found);
    return true;
}

}  // namespace sweepwright
