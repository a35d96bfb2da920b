#include "protection/CleanHistoryItem.h"

#include "platform/base/Uuid.h"
#include "platform/text/DateText.h"

namespace sweepwright {

using platform::PropertyList;

namespace {

const std::string* textUnder(const PropertyList::Dictionary& dictionary, std::string_view key) {
    const PropertyList* value = dictionary.find(key);
    return value != nullptr ? value->string() : nullptr;
}

CleanHistoryItem::Date dateUnder(const PropertyList::Dictionary& dictionary, std::string_view key,
                                 CleanHistoryItem::Date now) {
    const std::string* text = textUnder(dictionary, key);
    if (text == nullptr) return now;
    return platform::dateFromText(*text).value_or(now);
}

}  // namespace

std::optional<CleanHistoryItem> CleanHistoryItem::initWithDictionary(
    const PropertyList::Dictionary* dictionary, Date now) {
    if (dictionary == nullptr) return std::nullopt;
    CleanHistoryItem item;
    const std::string* identifier = textUnder(*dictionary, "identifier");
    item.identifier = identifier != nullptr ? *identifier : platform::newUuid();
    if (const PropertyList* type = dictionary->find("cleanType")) {
        item.cleanType = static_cast<CleanType>(type->integer().value_or(0));
    }
    const std::string* name = textUnder(*dictionary, "cleanTypeName");
    item.cleanTypeName = name != nullptr ? *name : std::string(kUnknownTypeName);
    if (const PropertyList* bytes = dictionary->find("cleanedBytes")) {
        item.cleanedBytes = bytes->unsignedInteger().value_or(0);
    }
    item.cleanDate = dateUnder(*dictionary, "cleanDate", now);
    return item;
}

PropertyList::Dictionary CleanHistoryItem::toDictionary() const {
    return {
        {"identifier", identifier.empty() ? platform::newUuid() : identifier},
        {"cleanType", static_cast<std::int64_t>(cleanType)},
        {"cleanTypeName", cleanTypeName.empty() ? std::string(kUnknownTypeName) : cleanTypeName},
        {"cleanedBytes", cleanedBytes},
        {"cleanDate", platform::dateText(cleanDate)}};
}

}  // namespace sweepwright
