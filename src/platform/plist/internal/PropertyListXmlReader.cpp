#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <expat.h>
#include <fmt/format.h>

#include "platform/base/Failure.h"
#include "platform/plist/internal/PropertyListFormats.h"
#include "platform/text/DateText.h"

namespace sweepwright::platform {

namespace {

using OptionalValue = std::optional<PropertyList>;

bool isXmlSpace(char byte) {
    return byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r';
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isXmlSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isXmlSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

bool skip(std::string_view& text, std::string_view what) {
    if (!text.starts_with(what)) return false;
    text.remove_prefix(what.size());
    return true;
}

/// The number that all of `text` is.
template <class Number, class... Base>
std::optional<Number> numberFrom(std::string_view text, Base... base) {
    Number value{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, base...);
    if (error != std::errc() || stop != end) return {};
    return value;
}

/// "-5", "18446744073709551615", "0x1F".
OptionalValue integerFrom(std::string_view text) {
    const bool negative = skip(text, "-");
    if (!negative) skip(text, "+");
    const bool hexadecimal = skip(text, "0x") || skip(text, "0X");
    const auto magnitude = numberFrom<std::uint64_t>(text, hexadecimal ? 16 : 10);
    if (!magnitude) return {};
    if (!negative) return *magnitude;
    if (*magnitude > std::uint64_t{1} << 63U) return {};
    return static_cast<std::int64_t>(0 - *magnitude);
}

/// "0.5", "-1e3", "nan", "+infinity".
OptionalValue realFrom(std::string_view text) {
    if (skip(text, "+") && text.starts_with('-')) return {};
    const auto value = numberFrom<double>(text);
    if (!value) return {};
    return *value;
}

/// "2024-02-29T12:00:00Z".
OptionalValue dateFrom(std::string_view text) {
    auto time = calendarTimeFrom(text, "0000-00-00T00:00:00Z");
    if (!time) return {};
    return nearestDate(timegm(&*time));
}

/// Base64 with white space anywhere.
OptionalValue dataFrom(std::string_view text) {
    static constexpr auto kValues = [] {
        std::array<std::int8_t, 256> values{};
        values.fill(-1);
        for (std::size_t i = 0; i < kBase64Digits.size(); ++i)
            values[static_cast<unsigned char>(kBase64Digits[i])] = static_cast<std::int8_t>(i);
        return values;
    }();
    PropertyList::Data data;
    std::uint32_t bits = 0;  // of which the lowest `count` are still to be written
    unsigned count = 0;
    bool ended = false;
    for (const char byte : text) {
        if (isXmlSpace(byte)) continue;
        const int value = kValues[static_cast<unsigned char>(byte)];
        ended = ended || byte == '=';
        if (ended ? byte != '=' : value < 0) return {};
        if (ended) continue;
        bits = bits << 6U | static_cast<std::uint32_t>(value);
        count += 6;
        if (count < 8) continue;
        count -= 8;
        data.bytes += static_cast<char>(bits >> count & 0xFFU);
    }
    // A single digit left over is no byte: something was cut off.
    if (count == 6) return {};
    return data;
}

/// What XML has no reference type for: a dictionary of one number under a fixed key.
PropertyList uidOrDictionary(PropertyList::Dictionary dictionary) {
    const PropertyList* uid = dictionary.size() == 1 ? dictionary.find(kUidKey) : nullptr;
    const auto value = uid != nullptr ? uid->unsignedInteger() : std::nullopt;
    if (!value || !std::in_range<std::uint32_t>(*value)) return dictionary;
    return PropertyList::Uid{static_cast<std::uint32_t>(*value)};
}

/// An element that is not closed yet, with what was read of it.
struct Element {
    std::string name;
    std::size_t depth = 0;  ///< how many arrays and dictionaries it lies in, itself included
    std::string text = {};
    PropertyList::Array values = {};
    std::vector<PropertyList::Dictionary::Entry> entries = {};
    std::optional<std::string> key = {};  ///< whose value comes next

    [[nodiscard]] bool isContainer() const { return name == "array" || name == "dict"; }
    [[nodiscard]] bool holdsElements() const { return isContainer() || name == "plist"; }

    /// None when it is damaged or no property list has such an element.
    OptionalValue value() && {
        if (name == "array") return PropertyList(std::move(values));
        if (name == "dict" && !key) {
            return uidOrDictionary(PropertyList::Dictionary(std::move(entries)));
        }
        if (name == "plist" && values.size() == 1) return std::move(values.front());
        if (name == "string") return PropertyList(std::move(text));
        if (name == "data") return dataFrom(text);
        if (name == "integer") return integerFrom(trimmed(text));
        if (name == "real") return realFrom(trimmed(text));
        if (name == "date") return dateFrom(trimmed(text));
        if ((name == "true" || name == "false") && text.empty()) return name == "true";
        return {};
    }
};

/// Builds a list from the elements that expat finds, and counts them against the limits before
/// anything is built. What is no well-formed XML in UTF-8 expat refuses.
class XmlReader {
  public:
    explicit XmlReader(const PropertyList::Limits& limits)
        : limits_(limits), parser_(XML_ParserCreate("UTF-8")) {
        open_.push_back({.name = "plist"});  // around the outermost element
    }

    Result<PropertyList> read(std::string_view text) {
        // expat keeps the names of all attributes, each of which has a "="; data may end in two.
        if (std::cmp_greater(std::ranges::count(text, '=') / 3, limits_.nodes)) {
            return refuse("a property list of too many values");
        }
        if (!std::in_range<int>(text.size())) return refuse("a property list of too many bytes");
        if (parser_ == nullptr) return refuse("out of memory");
        setHandlers();
        const auto status =
            XML_Parse(parser_.get(), text.data(), static_cast<int>(text.size()), XML_TRUE);
        if (!why_.empty()) return refuse(why_);
        if (status != XML_STATUS_OK) {
            return refuse(fmt::format("a damaged XML property list: {}",
                                      XML_ErrorString(XML_GetErrorCode(parser_.get()))));
        }
        return std::move(open_.front().values.front());
    }

  private:
    struct Free {
        void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
    };

    void setHandlers() {
        XML_Parser const parser = parser_.get();
        XML_SetUserData(parser, this);
        XML_SetElementHandler(
            parser,
            [](void* reader, const XML_Char* name, const XML_Char** attributes) {
                static_cast<XmlReader*>(reader)->begin(name, *attributes != nullptr);
            },
            [](void* reader, const XML_Char*) { static_cast<XmlReader*>(reader)->end(); });
        XML_SetCharacterDataHandler(parser, [](void* reader, const XML_Char* text, int length) {
            static_cast<XmlReader*>(reader)->add({text, static_cast<std::size_t>(length)});
        });
        XML_SetStartDoctypeDeclHandler(parser, [](void* reader, const XML_Char*, const XML_Char*,
                                                  const XML_Char*, int definesSomething) {
            if (definesSomething == 0) return;
            static_cast<XmlReader*>(reader)->fail(
                "an XML property list that defines a document type");
        });
        // Called for what the document type, which is not fetched, might have defined.
        XML_SetSkippedEntityHandler(parser, [](void* reader, const XML_Char*, int) {
            static_cast<XmlReader*>(reader)->fail("an XML property list with an unknown entity");
        });
    }

    void fail(std::string_view why) {
        if (why_.empty()) why_ = why;
        XML_StopParser(parser_.get(), XML_FALSE);
    }

    void begin(std::string_view name, bool hasAttributes) {
        if (!why_.empty()) return;
        const Element& parent = open_.back();
        const bool envelope = name == "plist";
        const bool keyIsNext = parent.name == "dict" && !parent.key;
        if (envelope ? open_.size() > 1 : hasAttributes) {
            return fail("a damaged XML property list");
        }
        if (!parent.holdsElements() || keyIsNext != (name == "key")) {
            return fail("an XML property list with a damaged value");
        }
        if (!envelope && limits_.nodes-- == 0) return fail("a property list of too many values");
        Element element{.name = std::string(name), .depth = parent.depth};
        if (element.isContainer()) ++element.depth;
        if (element.depth > limits_.depth) return fail("a property list nested too deep");
        open_.push_back(std::move(element));
    }

    /// expat hands a text out in pieces, without markup, its entities replaced.
    void add(std::string_view text) {
        if (!why_.empty()) return;
        Element& element = open_.back();
        if (!element.holdsElements()) {
            element.text += text;
        } else if (!std::ranges::all_of(text, isXmlSpace)) {
            fail("an XML property list with a damaged value");
        }
    }

    void end() {
        if (!why_.empty()) return;
        Element element = std::move(open_.back());
        open_.pop_back();
        Element& parent = open_.back();
        if (element.name == "key") {
            parent.key = std::move(element.text);
            return;
        }
        auto value = std::move(element).value();
        if (!value) return fail("an XML property list with a damaged value");
        if (parent.key) {
            parent.entries.emplace_back(*std::exchange(parent.key, {}), *std::move(value));
        } else {
            parent.values.push_back(*std::move(value));
        }
    }

    PropertyList::Limits limits_;  ///< nodes: how many more there may be
    std::unique_ptr<XML_ParserStruct, Free> parser_;
    std::vector<Element> open_;
    std::string_view why_;  ///< of the first failure
};

}  // namespace

Result<PropertyList> readXmlPropertyList(std::string_view text,
                                         const PropertyList::Limits& limits) {
    // Before an XML declaration XML has no white space; property lists may.
    while (!text.empty() && isXmlSpace(text.front()))
        text.remove_prefix(1);
    return XmlReader(limits).read(text);
}

}  // namespace sweepwright::platform
