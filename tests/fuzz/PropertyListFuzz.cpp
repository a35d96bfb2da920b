// Any bytes as a property list: what reads keeps the limits, and reads back equal from both forms.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <string>

#include "fuzz/Target.h"
#include "platform/plist/PropertyList.h"
#include "platform/text/Utf8.h"

namespace {

using sweepwright::fuzz::require;
using sweepwright::platform::PropertyList;
using Array = PropertyList::Array;
using Data = PropertyList::Data;
using Date = PropertyList::Date;
using Dictionary = PropertyList::Dictionary;

/// Small, so that a run spends its time on many lists instead of on large ones.
constexpr PropertyList::Limits kLimits{.bytes = std::size_t{64} << 10U, .nodes = 2000, .depth = 64};

bool isText(const std::string& text) {
    return sweepwright::platform::isUtf8(text) && text.find('\0') == std::string::npos;
}

/// Whether XML holds `text` as it is.
bool isXmlText(const std::string& text) {
    if (text.contains("\xEF\xBF\xBE") || text.contains("\xEF\xBF\xBF")) return false;
    for (const char byte : text)
        if (static_cast<unsigned char>(byte) < ' ' && byte != '\t' && byte != '\n') return false;
    return true;
}

/// Counts what a list holds, and checks its texts.
struct Measure {
    std::size_t nodes = 0;
    std::size_t bytes = 0;
    std::size_t deepest = 0;

    void take(const PropertyList& list, std::size_t depth) {
        ++nodes;
        if (const std::string* held = list.bytes()) bytes += held->size();
        if (const std::string* text = list.string())
            require(isText(*text), "a string that was read is UTF-8 without a NUL");
        if (const Array* array = list.array()) {
            deepest = std::max(deepest, depth + 1);
            for (const PropertyList& item : *array)
                take(item, depth + 1);
        }
        if (const Dictionary* dictionary = list.dictionary()) {
            deepest = std::max(deepest, depth + 1);
            for (const auto& [key, value] : dictionary->entries()) {
                require(isText(key), "a key that was read is UTF-8 without a NUL");
                require(dictionary->find(key) == &value, "keys are unique");
                take(value, depth + 1);
            }
        }
    }
};

/// The list as XML can tell it.
PropertyList throughXml(const PropertyList& list) {
    if (const std::string* text = list.string()) {
        if (isXmlText(*text)) return list;
        return Data{*text};
    }
    if (const Date* date = list.date())
        return Date(std::chrono::floor<std::chrono::seconds>(*date));
    if (const Array* array = list.array()) {
        Array told;
        for (const PropertyList& item : *array)
            told.push_back(throughXml(item));
        return told;
    }
    if (const Dictionary* dictionary = list.dictionary()) {
        Dictionary told;
        for (const auto& [key, value] : dictionary->entries())
            if (isXmlText(key)) told.set(key, throughXml(value));
        return told;
    }
    return list;
}

bool same(const PropertyList& one, const PropertyList& two);

bool same(const Array& one, const Array& two) {
    return std::equal(one.begin(), one.end(), two.begin(), two.end(),
                      [](const PropertyList& a, const PropertyList& b) { return same(a, b); });
}

bool same(const Dictionary& one, const Dictionary& two) {
    return std::equal(one.entries().begin(), one.entries().end(), two.entries().begin(),
                      two.entries().end(), [](const auto& a, const auto& b) {
                          return a.first == b.first && same(a.second, b.second);
                      });
}

/// Equality that takes one NaN for another, and entries in their order.
bool same(const PropertyList& one, const PropertyList& two) {
    if (one.array() != nullptr && two.array() != nullptr) return same(*one.array(), *two.array());
    if (one.dictionary() != nullptr && two.dictionary() != nullptr)
        return same(*one.dictionary(), *two.dictionary());
    const bool oneIsNumber = one.real().has_value() && !one.integer() && !one.unsignedInteger();
    if (oneIsNumber && std::isnan(*one.real())) return two.real() && std::isnan(*two.real());
    return one == two;
}

void checkNumbers(const PropertyList& list) {
    const auto whole = list.integer();
    const auto natural = list.unsignedInteger();
    if (whole && natural)
        require(*whole >= 0 && static_cast<std::uint64_t>(*whole) == *natural,
                "a number reads equal as both kinds of integer");
    if (whole && list.real())
        require(static_cast<double>(*whole) == *list.real(), "a whole number reads equal as real");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto read = PropertyList::parse(sweepwright::fuzz::asText(data, size), kLimits);
    if (!read) return 0;
    Measure measure;
    measure.take(*read, 0);
    require(measure.nodes <= kLimits.nodes, "no more values than the limit");
    require(measure.bytes <= kLimits.bytes, "no more bytes than the limit");
    require(measure.deepest <= kLimits.depth, "no deeper than the limit");
    checkNumbers(*read);

    const auto again = PropertyList::parse(read->toBinary());
    require(again.has_value(), "a written binary list can be read");
    require(same(*again, *read), "a list survives a binary file");
    require(again->toBinary() == read->toBinary(), "a list is written the same way again");

    const auto told = PropertyList::parse(read->toXml());
    require(told.has_value(), "a written XML list can be read");
    require(same(*told, throughXml(*read)), "a list survives an XML file");
    return 0;
}
