#include "platform/plist/PropertyList.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "platform/base/Failure.h"
#include "platform/log/Log.h"
#include "platform/plist/internal/PropertyListFormats.h"
#include "platform/text/Utf8.h"

namespace sweepwright::platform {

namespace {

using Entry = PropertyList::Dictionary::Entry;

/// The deepest that any caller may allow: lists are read, compared and destroyed by recursion.
constexpr std::size_t kDeepest = 512;

constexpr double kTwoTo63 = 9'223'372'036'854'775'808.0;
constexpr double kTwoTo64 = 2 * kTwoTo63;

/// The entries in the order of their keys.
std::vector<const Entry*> sortedByKey(const std::vector<Entry>& entries) {
    std::vector<const Entry*> sorted;
    sorted.reserve(entries.size());
    for (const Entry& entry : entries)
        sorted.push_back(&entry);
    std::ranges::sort(sorted, {}, [](const Entry* entry) -> auto& { return entry->first; });
    return sorted;
}

template <class Number>
std::optional<double> exactReal(Number value) {
    const auto real = static_cast<double>(value);
    // 2^63 and 2^64 as reals are one above what the types hold: the way back would overflow.
    constexpr double kBeyond = std::is_signed_v<Number> ? kTwoTo63 : kTwoTo64;
    if (real >= kBeyond || static_cast<Number>(real) != value) return {};
    return real;
}

/// `value` as an integer, if it is one of at least `lowest` and below `beyond`.
template <class Integer>
std::optional<Integer> exactInteger(double value, double lowest, double beyond) {
    const bool within = value >= lowest && value < beyond;  // not so of what is no number
    if (!within || std::trunc(value) != value) return {};
    return static_cast<Integer>(value);
}

}  // namespace

bool isPlainText(std::string_view text) {
    return isUtf8(text) && !text.contains('\0');
}

bool isPlainAscii(std::string_view text) {
    return std::ranges::all_of(text, [](signed char c) { return c > 0; });
}

void logOmittedKey(std::string_view key) {
    log("⚠️ 属性列表的键不是文本，已略过: {}", key);
}

PropertyList::Dictionary::Dictionary(std::initializer_list<Entry> entries)
    : Dictionary(std::vector<Entry>(entries)) {}

PropertyList::Dictionary::Dictionary(std::vector<Entry> entries) {
    // By a map, not by set(): a list from outside may hold very many keys.
    entries_.reserve(entries.size());  // so that the views of the keys stay
    std::map<std::string_view, PropertyList*> values;
    for (auto& [key, value] : entries) {
        if (const auto known = values.find(key); known != values.end()) {
            *known->second = std::move(value);
        } else {
            auto& kept = entries_.emplace_back(std::move(key), std::move(value));
            values.emplace(kept.first, &kept.second);
        }
    }
}

const PropertyList* PropertyList::Dictionary::find(std::string_view key) const {
    const auto found = std::ranges::find(entries_, key, &Entry::first);
    return found == entries_.end() ? nullptr : &found->second;
}

void PropertyList::Dictionary::set(std::string key, PropertyList value) {
    const auto found = std::ranges::find(entries_, key, &Entry::first);
    if (found != entries_.end()) {
        found->second = std::move(value);
    } else {
        entries_.emplace_back(std::move(key), std::move(value));
    }
}

bool PropertyList::Dictionary::remove(std::string_view key) {
    return std::erase_if(entries_, [&](const Entry& entry) { return entry.first == key; }) != 0;
}

bool PropertyList::Dictionary::operator==(const Dictionary& other) const {
    if (size() != other.size()) return false;
    return std::ranges::equal(sortedByKey(entries_), sortedByKey(other.entries_),
                              [](const Entry* one, const Entry* two) { return *one == *two; });
}

Result<PropertyList> PropertyList::parse(std::string_view bytes) {
    return parse(bytes, Limits{});
}

Result<PropertyList> PropertyList::parse(std::string_view bytes, const Limits& limits) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (bytes.size() > limits.bytes) return refuse("a property list of too many bytes");
    if (bytes.starts_with(kByteOrderMark)) bytes.remove_prefix(kByteOrderMark.size());
    Limits kept = limits;
    kept.depth = std::min(limits.depth, kDeepest);
    return bytes.starts_with("bplist") ? readBinaryPropertyList(bytes, kept)
                                       : readXmlPropertyList(bytes, kept);
}

std::optional<std::int64_t> PropertyList::integer() const {
    if (const auto* value = std::get_if<std::int64_t>(&value_)) return *value;
    if (const auto* value = std::get_if<std::uint64_t>(&value_)) {
        if (std::in_range<std::int64_t>(*value)) return static_cast<std::int64_t>(*value);
        return {};
    }
    const auto* value = std::get_if<double>(&value_);
    if (value == nullptr) return {};
    return exactInteger<std::int64_t>(*value, -kTwoTo63, kTwoTo63);
}

std::optional<std::uint64_t> PropertyList::unsignedInteger() const {
    if (const auto* value = std::get_if<std::uint64_t>(&value_)) return *value;
    if (const auto* value = std::get_if<double>(&value_)) {
        return exactInteger<std::uint64_t>(*value, 0, kTwoTo64);
    }
    const auto* value = std::get_if<std::int64_t>(&value_);
    if (value == nullptr || *value < 0) return {};
    return static_cast<std::uint64_t>(*value);
}

std::optional<double> PropertyList::real() const {
    if (const auto* value = std::get_if<double>(&value_)) return *value;
    if (const auto* value = std::get_if<std::int64_t>(&value_)) return exactReal(*value);
    if (const auto* value = std::get_if<std::uint64_t>(&value_)) return exactReal(*value);
    return {};
}

const std::string* PropertyList::bytes() const {
    if (const std::string* text = string()) return text;
    const Data* held = data();
    return held != nullptr ? &held->bytes : nullptr;
}

bool PropertyList::operator==(const PropertyList& other) const {
    const auto isInteger = [](const PropertyList& list) {
        return std::holds_alternative<std::int64_t>(list.value_) ||
               std::holds_alternative<std::uint64_t>(list.value_);
    };
    if (isInteger(*this) && isInteger(other)) {
        return integer() == other.integer() && unsignedInteger() == other.unsignedInteger();
    }
    return value_ == other.value_;
}

}  // namespace sweepwright::platform
