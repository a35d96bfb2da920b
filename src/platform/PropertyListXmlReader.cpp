#include "platform/PropertyListXmlReader.h"

#include <algorithm>
#include <limits>

#include "platform/Failure.h"
#include "platform/PropertyListXmlScalars.h"
#include "platform/Utf8.h"

namespace sweepwright::platform {

namespace {

constexpr std::string_view kUidKey = "CF$UID";

std::unexpected<Error> truncated() {
    return refuse("a truncated XML property list");
}

/// An entity's name is never longer: "#x10FFFF" and room for leading zeros.
constexpr std::size_t kLongestEntity = 16;

/// What XML has no reference type for: a dictionary of one number under a fixed key.
PropertyList uidOrDictionary(PropertyList::Dictionary dictionary) {
    const PropertyList* uid = dictionary.size() == 1 ? dictionary.find(kUidKey) : nullptr;
    const auto value = uid != nullptr ? uid->unsignedInteger() : std::nullopt;
    if (!value || !std::in_range<std::uint32_t>(*value)) return dictionary;
    return PropertyList::Uid{static_cast<std::uint32_t>(*value)};
}

}  // namespace

Result<PropertyList> PropertyListXmlReader::read() {
    if (auto checked = checkText(); !checked) return std::unexpected(checked.error());
    auto list = readDocument();
    if (!list) return list;
    if (auto skipped = skipToMarkup(); !skipped) return std::unexpected(skipped.error());
    if (position_ != text_.size()) return refuse("an XML property list with something after it");
    return list;
}

/// Judges the whole text before anything is built from it.
Result<> PropertyListXmlReader::checkText() const {
    if (text_.find('\0') != std::string_view::npos || !isUtf8(text_)) {
        return refuse("not a property list");
    }
    std::size_t nodes = 0;
    for (std::size_t at = text_.find('<'); at != std::string_view::npos;
         at = text_.find('<', at + 1)) {
        const char next = at + 1 < text_.size() ? text_[at + 1] : '\0';
        if (next != '/' && next != '!' && next != '?' && ++nodes > limits_.nodes + 1) {
            return refuse("a property list of too many values");
        }
    }
    return {};
}

Result<PropertyList> PropertyListXmlReader::readDocument() {
    auto tag = readTag();
    if (!tag) return std::unexpected(tag.error());
    if (tag->name != "plist") return readValue(*tag, 0);
    if (tag->form != Form::Opening) return refuse("a property list without a value");
    tag = readTag();
    if (!tag) return std::unexpected(tag.error());
    auto list = readValue(*tag, 0);
    if (!list) return list;
    if (auto closed = readClosingTag("plist"); !closed) return std::unexpected(closed.error());
    return list;
}

/// Skips white space, comments and what stands outside of the list, up to a tag or the end.
Result<> PropertyListXmlReader::skipToMarkup() {
    for (;;) {
        while (position_ < text_.size() && isXmlSpace(text_[position_]))
            ++position_;
        const std::string_view next = rest();
        Result<> skipped;
        if (next.starts_with("<!--")) {
            skipped = skipPast("<!--", "-->");
        } else if (next.starts_with("<?")) {
            skipped = skipPast("<?", "?>");
        } else if (next.starts_with("<!DOCTYPE")) {
            skipped = skipDocumentType();
        } else if (next.empty() || next.front() == '<') {
            return {};
        } else {
            return refuse("not a property list");
        }
        if (!skipped) return skipped;
    }
}

Result<> PropertyListXmlReader::skipPast(std::string_view opening, std::string_view closing) {
    const std::size_t end = text_.find(closing, position_ + opening.size());
    if (end == std::string_view::npos) return truncated();
    position_ = end + closing.size();
    return {};
}

Result<> PropertyListXmlReader::skipDocumentType() {
    const std::size_t end = text_.find('>', position_);
    if (end == std::string_view::npos) return truncated();
    const std::string_view type = text_.substr(position_, end - position_);
    if (nodes_ != 0 || type.contains('[')) {
        return refuse("an XML property list that defines a document type");
    }
    position_ = end + 1;
    return {};
}

auto PropertyListXmlReader::readTag() -> Result<Tag> {
    if (auto skipped = skipToMarkup(); !skipped) return std::unexpected(skipped.error());
    const std::size_t end = text_.find('>', position_);
    if (end == std::string_view::npos) return truncated();
    std::string_view body = text_.substr(position_ + 1, end - position_ - 1);
    position_ = end + 1;
    Tag tag;
    if (body.starts_with('/')) {
        tag.form = Form::Closing;
        body.remove_prefix(1);
    } else if (body.ends_with('/')) {
        tag.form = Form::Empty;
        body.remove_suffix(1);
    }
    const auto space = std::ranges::find_if(body, isXmlSpace);
    tag.name = body.substr(0, static_cast<std::size_t>(space - body.begin()));
    // An attribute's text could hide a ">" or a "<".
    const bool quoteOpen = std::ranges::count(body, '"') % 2 != 0;
    if (tag.name.empty() || quoteOpen || body.contains('<')) {
        return refuse("a damaged XML property list");
    }
    if (tag.form != Form::Closing && tag.name != "plist" && ++nodes_ > limits_.nodes) {
        return refuse("a property list of too many values");
    }
    return tag;
}

Result<> PropertyListXmlReader::readClosingTag(std::string_view name) {
    const auto tag = readTag();
    if (!tag) return std::unexpected(tag.error());
    if (tag->form != Form::Closing || tag->name != name) {
        return refuse("a damaged XML property list");
    }
    return {};
}

/// Reads the value that `tag`, just read, begins. `depth` counts the containers around it.
Result<PropertyList> PropertyListXmlReader::readValue(const Tag& tag, std::size_t depth) {
    if (tag.form == Form::Closing) return refuse("a damaged XML property list");
    if (tag.name == "array") return readArray(tag, depth + 1);
    if (tag.name == "dict") return readDictionary(tag, depth + 1);
    auto text = readText(tag);
    if (!text) return std::unexpected(text.error());
    if (tag.name == "string") return PropertyList(std::move(*text));
    std::optional<PropertyList> value;
    if (tag.name == "integer") value = integerFromXml(*text);
    if (tag.name == "real") value = realFromXml(*text);
    if (tag.name == "date") value = dateFromXml(*text);
    if (tag.name == "data") value = dataFromXml(*text);
    if (text->empty() && tag.name == "true") value = PropertyList(true);
    if (text->empty() && tag.name == "false") value = PropertyList(false);
    if (!value) return refuse("an XML property list with a damaged value");
    return *std::move(value);
}

Result<PropertyList> PropertyListXmlReader::readArray(const Tag& tag, std::size_t depth) {
    if (depth > limits_.depth) return refuse("a property list nested too deep");
    PropertyList::Array array;
    if (tag.form == Form::Empty) return array;
    for (;;) {
        const auto next = readTag();
        if (!next) return std::unexpected(next.error());
        if (next->form == Form::Closing && next->name == tag.name) return array;
        auto value = readValue(*next, depth);
        if (!value) return value;
        array.push_back(*std::move(value));
    }
}

Result<PropertyList> PropertyListXmlReader::readDictionary(const Tag& tag, std::size_t depth) {
    if (depth > limits_.depth) return refuse("a property list nested too deep");
    std::vector<PropertyList::Dictionary::Entry> entries;
    if (tag.form == Form::Empty) return PropertyList(PropertyList::Dictionary());
    for (;;) {
        auto next = readTag();
        if (!next) return std::unexpected(next.error());
        if (next->form == Form::Closing && next->name == tag.name) break;
        if (next->form == Form::Closing || next->name != "key") {
            return refuse("an XML property list with a value that has no key");
        }
        auto key = readText(*next);
        if (!key) return std::unexpected(key.error());
        next = readTag();
        if (!next) return std::unexpected(next.error());
        auto value = readValue(*next, depth);
        if (!value) return value;
        entries.emplace_back(*std::move(key), *std::move(value));
    }
    return uidOrDictionary(PropertyList::Dictionary(std::move(entries)));
}

/// Reads up to the closing tag of `tag`, just read, which holds text only.
Result<std::string> PropertyListXmlReader::readText(const Tag& tag) {
    constexpr std::string_view kCharacterData = "<![CDATA[";
    constexpr std::string_view kCharacterDataEnd = "]]>";
    std::string text;
    if (tag.form == Form::Empty) return text;
    for (;;) {
        const std::size_t markup = text_.find('<', position_);
        if (markup == std::string_view::npos) return truncated();
        const auto appended = appendCharacters(text, text_.substr(position_, markup - position_));
        if (!appended) return std::unexpected(appended.error());
        position_ = markup;
        Result<> skipped;
        if (rest().starts_with("<!--")) {
            skipped = skipPast("<!--", "-->");
        } else if (rest().starts_with(kCharacterData)) {
            skipped = skipPast(kCharacterData, kCharacterDataEnd);
            const std::size_t start = markup + kCharacterData.size();
            if (skipped) {
                text += text_.substr(start, position_ - kCharacterDataEnd.size() - start);
            }
        } else {
            if (auto closed = readClosingTag(tag.name); !closed) {
                return std::unexpected(closed.error());
            }
            return text;
        }
        if (!skipped) return std::unexpected(skipped.error());
    }
}

/// Appends `raw` with its entities replaced and its line ends as line feeds.
Result<> PropertyListXmlReader::appendCharacters(std::string& text, std::string_view raw) const {
    while (!raw.empty()) {
        const std::size_t special = std::min(raw.find_first_of("&\r"), raw.size());
        text += raw.substr(0, special);
        raw.remove_prefix(special);
        if (raw.starts_with('\r')) {
            raw.remove_prefix(raw.starts_with("\r\n") ? 2 : 1);
            text += '\n';
        } else if (raw.starts_with('&')) {
            const std::size_t end = raw.substr(0, kLongestEntity).find(';');
            const auto character = end == std::string_view::npos
                                       ? std::nullopt
                                       : characterFromXmlEntity(raw.substr(1, end - 1));
            if (!character) return refuse("an XML property list with an unknown entity");
            appendUtf8(text, *character);
            raw.remove_prefix(end + 1);
        }
    }
    return {};
}

}  // namespace sweepwright::platform
