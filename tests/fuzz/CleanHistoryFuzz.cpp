// Any bytes as the user defaults: the history reads what can be read, repairs it, and neither
// loses an entry nor anything else that is stored, whatever is added to or taken from it.
#include <algorithm>
#include <chrono>
#include <string>

#include "fuzz/MemoryFiles.h"
#include "fuzz/Target.h"
#include "platform/device/UserDefaults.h"
#include "platform/plist/PropertyList.h"
#include "protection/CleanHistoryManager.h"

namespace {

using namespace sweepwright;
using fuzz::require;
using platform::PropertyList;
using Array = PropertyList::Array;
using Dictionary = PropertyList::Dictionary;

constexpr std::string_view kFile = "/defaults.plist";
constexpr std::string_view kKey = "CleanHistoryRecords";
constexpr CleanHistoryItem::Date kNow{std::chrono::seconds(1'700'000'000)};
constexpr std::uint64_t kBytes = 4096;

/// Compared as written: NaN is then equal to itself.
bool same(const PropertyList& one, const PropertyList& two) {
    return one.toBinary() == two.toBinary();
}

Array entriesIn(const Dictionary& defaults) {
    const PropertyList* stored = defaults.find(kKey);
    return stored != nullptr && stored->array() != nullptr ? *stored->array() : Array();
}

Dictionary withoutHistory(Dictionary defaults) {
    defaults.remove(kKey);
    return defaults;
}

Dictionary stored(fuzz::MemoryFiles& files) {
    const auto list = PropertyList::parse(files.files().at(std::string(kFile)));
    require(list && list->dictionary() != nullptr, "what is stored can be read");
    return *list->dictionary();
}

void checkItem(const CleanHistoryItem& item) {
    const Dictionary written = item.toDictionary();
    const auto again = CleanHistoryItem::initWithDictionary(&written, kNow);
    require(again.has_value(), "a written entry can be read");
    require(again->cleanType == item.cleanType, "the type survives");
    require(again->cleanedBytes == item.cleanedBytes, "the bytes survive");
    require(again->cleanDate == std::chrono::floor<std::chrono::seconds>(item.cleanDate),
            "the date survives to the second");
    require(
        item.identifier.empty() ? !again->identifier.empty() : again->identifier == item.identifier,
        "the identifier survives");
    require(item.cleanTypeName.empty() ? !again->cleanTypeName.empty()
                                       : again->cleanTypeName == item.cleanTypeName,
            "the name survives");
}

void checkReading(const CleanHistoryManager& history, const Array& entries) {
    const auto items = history.getAllCleanHistory();
    const auto readable = std::ranges::count_if(
        entries, [](const PropertyList& entry) { return entry.dictionary() != nullptr; });
    require(std::cmp_equal(items.size(), readable), "no entry is dropped in repair");
    require(std::ranges::is_sorted(items, std::ranges::greater{}, &CleanHistoryItem::cleanDate),
            "the newest is first");
    for (const CleanHistoryItem& item : items)
        checkItem(item);
    const auto statistics = history.getStatistics();
    std::uint64_t sum = 0;
    for (const CleanHistoryItem& item : items)
        sum += item.cleanedBytes;
    require(statistics.totalCleanedBytes == sum, "the statistics add the entries up");
    require(std::cmp_equal(statistics.totalCleanCount, items.size()), "the statistics count them");
    require(statistics.lastCleanDate.has_value() == !items.empty(), "the last date is an entry's");
}

/// Adds an entry to what `before` holds; what no file holds afterwards is the oldest beyond the
/// limit, and nothing else.
void checkAdding(fuzz::MemoryFiles& files, CleanHistoryManager& history, const Dictionary& before) {
    const std::string untouched = files.files().at(std::string(kFile));
    const auto added = history.saveCleanHistoryWithType(CleanType::Cache, kBytes);
    if (!added) {
        require(files.files().at(std::string(kFile)) == untouched, "what fails changes nothing");
        return;
    }
    const Dictionary after = stored(files);
    require(same(withoutHistory(after), withoutHistory(before)), "nothing else is changed");
    const Array then = entriesIn(before);
    const Array now = entriesIn(after);
    const std::size_t kept = std::min(then.size(), CleanHistoryManager::kMaxEntries - 1);
    require(now.size() == kept + 1, "one entry more, up to the limit");
    require(
        std::equal(then.end() - static_cast<std::ptrdiff_t>(kept), then.end(), now.begin(), same),
        "the newest entries are kept as they were");
    const auto item = CleanHistoryItem::initWithDictionary(now.back().dictionary(), kNow);
    require(item && item->cleanedBytes == kBytes && item->cleanDate == kNow, "the new one is last");
    checkReading(history, now);
}

/// Takes the newest entry out again.
void checkDeleting(fuzz::MemoryFiles& files, CleanHistoryManager& history) {
    const Dictionary before = stored(files);
    const auto items = history.getAllCleanHistory();
    if (items.empty()) return;
    const std::string& identifier = items.front().identifier;
    const bool deleted = history.deleteHistoryItem(items.front()).has_value();
    require(deleted, "a stored entry can be deleted");
    Array expected = entriesIn(before);
    std::erase_if(expected, [&](const PropertyList& entry) {
        const auto* dictionary = entry.dictionary();
        const auto* value = dictionary != nullptr ? dictionary->find("identifier") : nullptr;
        return value != nullptr && value->string() != nullptr && *value->string() == identifier;
    });
    const Dictionary after = stored(files);
    require(same(PropertyList(expected), PropertyList(entriesIn(after))),
            "only entries of the identifier go");
    require(same(withoutHistory(after), withoutHistory(before)), "nothing else is changed");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static fuzz::MemoryFiles files;
    const std::string bytes(fuzz::asText(data, size));
    files.clear();
    files.put(std::string(kFile), bytes);
    platform::UserDefaults defaults(files, std::string(kFile));
    CleanHistoryManager history(defaults, [] { return kNow; });

    const auto list = PropertyList::parse(bytes);
    if (list && list->dictionary() != nullptr) {
        checkReading(history, entriesIn(*list->dictionary()));
        checkAdding(files, history, *list->dictionary());
        checkDeleting(files, history);
        return 0;
    }
    // Damage is told, read as nothing, and set aside whole before anything is written.
    require(defaults.damage().has_value(), "damage is told");
    checkReading(history, {});
    require(history.saveCleanHistoryWithType(CleanType::Cache, kBytes).has_value(),
            "after damage a new file is begun");
    const bool aside = std::ranges::any_of(files.files(), [&](const auto& file) {
        return file.first != kFile && file.second == bytes;
    });
    require(aside, "the damaged file is kept");
    require(defaults.damage().has_value(), "damage is told as long as the file lies aside");
    require(entriesIn(stored(files)).size() == 1, "the new file holds the new entry");
    return 0;
}
