#include "protection/CleanHistoryManager.h"

#include <algorithm>
#include <ranges>
#include <utility>

#include "platform/base/Uuid.h"
#include "platform/log/Log.h"
#include "platform/plist/PropertyList.h"

namespace sweepwright {

using platform::PropertyList;
using platform::Result;

namespace {

constexpr std::string_view kKey = "CleanHistoryRecords";

bool hasIdentifier(const PropertyList& entry, const std::string& identifier) {
    const auto* dictionary = entry.dictionary();
    const auto* value = dictionary != nullptr ? dictionary->find("identifier") : nullptr;
    const auto* text = value != nullptr ? value->string() : nullptr;
    return text != nullptr && *text == identifier;
}

/// The stored entries; none when nothing, or something that is no list, is stored.
PropertyList::Array entriesOf(const PropertyList* stored) {
    const auto* entries = stored != nullptr ? stored->array() : nullptr;
    return entries != nullptr ? *entries : PropertyList::Array();
}

Result<> logged(Result<> result) {
    if (!result) platform::log("❌ 保存 {} 失败: {}", kKey, result.error().description);
    return result;
}

}  // namespace

CleanHistoryManager::CleanHistoryManager(platform::UserDefaults& defaults, Now now)
    : defaults_(defaults), now_(std::move(now)) {}

CleanHistoryManager& CleanHistoryManager::sharedManager() {
    static auto* const manager = new CleanHistoryManager(platform::UserDefaults::standard());
    return *manager;
}

std::string_view CleanHistoryManager::cleanTypeNameForType(CleanType type) {
    return nameOf(type).value_or(CleanHistoryItem::kUnknownTypeName);
}

Result<> CleanHistoryManager::saveCleanHistoryWithType(CleanType type, std::uint64_t cleanedBytes,
                                                       std::string_view cleanTypeName) {
    if (cleanedBytes == 0) return {};
    const std::string_view name =
        cleanTypeName.empty() ? cleanTypeNameForType(type) : cleanTypeName;
    const CleanHistoryItem item{.identifier = platform::newUuid(),
                                .cleanDate = now_(),
                                .cleanType = type,
                                .cleanTypeName = std::string(name),
                                .cleanedBytes = cleanedBytes};
    return logged(defaults_.update(kKey, [&](const PropertyList* stored) {
        PropertyList::Array entries = entriesOf(stored);
        entries.emplace_back(item.toDictionary());
        if (entries.size() > kMaxEntries) {
            const auto surplus = static_cast<std::ptrdiff_t>(entries.size() - kMaxEntries);
            entries.erase(entries.begin(), entries.begin() + surplus);
        }
        return PropertyList(std::move(entries));
    }));
}

std::vector<CleanHistoryItem> CleanHistoryManager::getAllCleanHistory() const {
    const auto stored = defaults_.object(kKey);
    const PropertyList::Array entries = entriesOf(stored ? &*stored : nullptr);
    const auto now = now_();
    std::vector<CleanHistoryItem> items;
    // From the end, so that the stable sort leaves the last added of one second first.
    for (const PropertyList& entry : std::views::reverse(entries)) {
        auto item = CleanHistoryItem::initWithDictionary(entry.dictionary(), now);
        if (item) items.push_back(*std::move(item));
    }
    std::ranges::stable_sort(items, std::ranges::greater{}, &CleanHistoryItem::cleanDate);
    return items;
}

std::vector<CleanHistoryItem> CleanHistoryManager::getRecentCleanHistory(std::size_t limit) const {
    auto items = getAllCleanHistory();
    if (items.size() > limit) items.resize(limit);
    return items;
}

Result<> CleanHistoryManager::deleteHistoryItem(const CleanHistoryItem& item) {
    return logged(defaults_.update(kKey, [&](const PropertyList* stored) {
        if (stored == nullptr || stored->array() == nullptr) {
            return stored != nullptr ? std::optional(*stored) : std::nullopt;
        }
        PropertyList::Array entries = *stored->array();
        std::erase_if(entries, [&](const PropertyList& entry) {
            return hasIdentifier(entry, item.identifier);
        });
        return std::optional(PropertyList(std::move(entries)));
    }));
}

Result<> CleanHistoryManager::clearAllHistory() {
    return logged(defaults_.remove(kKey));
}

CleanHistoryStatistics CleanHistoryManager::getStatistics() const {
    const auto items = getAllCleanHistory();
    CleanHistoryStatistics statistics;
    for (const CleanHistoryItem& item : items)
        statistics.totalCleanedBytes += item.cleanedBytes;
    statistics.totalCleanCount = static_cast<std::int64_t>(items.size());
    if (!items.empty()) {
        statistics.firstCleanDate = items.back().cleanDate;
        statistics.lastCleanDate = items.front().cleanDate;
    }
    return statistics;
}

}  // namespace sweepwright
