// The only source that knows libplist. What passes its calls damaged is put right here:
//
// - It makes every integer a signed one, though it reads and writes unsigned ones right.
// - It hands out dates in 32 bits and cuts them to whole seconds towards zero in XML.
// - It takes strings up to the first NUL and does not ask whether they are text.
//
// It is not used to read XML: its dictionaries take quadratic time for keys chosen to harm.

#include "platform/PropertyListBinary.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <memory>

#include <plist/plist.h>

#include "platform/Failure.h"
#include "platform/Log.h"
#include "platform/PropertyListBinaryGuard.h"
#include "platform/PropertyListDate.h"
#include "platform/Utf8.h"

namespace sweepwright::platform {

namespace {

struct FreeNode {
    void operator()(void* node) const { plist_free(node); }
};
/// A node with all beneath it that nothing else owns.
using Node = std::unique_ptr<void, FreeNode>;

struct FreeBytes {
    void operator()(void* bytes) const { std::free(bytes); }
};
using Bytes = std::unique_ptr<char, FreeBytes>;

constexpr std::uint8_t kDateMarker = 0x33;
constexpr std::uint8_t kWideIntegerMarker = 0x14;

void appendBigEndian(std::string& text, std::uint64_t value) {
    for (unsigned shift = 64; shift > 0;) {
        shift -= 8;
        text += static_cast<char>((value >> shift) & 0xFFU);
    }
}

std::uint64_t bigEndian(std::string_view text) {
    std::uint64_t value = 0;
    for (const char byte : text)
        value = (value << 8U) | static_cast<unsigned char>(byte);
    return value;
}

std::string binaryOf(plist_t node) {
    char* bytes = nullptr;
    std::uint32_t length = 0;
    plist_to_bin(node, &bytes, &length);
    const Bytes owned(bytes);
    return {bytes, length};
}

/// The node of a binary list whose one value is `object`, marker included.
Node nodeOfBinary(std::string_view object) {
    std::string list(kBinaryListHeader);
    list += object;
    const std::uint64_t table = list.size();
    list += static_cast<char>(kBinaryListHeader.size());  // the one object's offset
    list.append(6, '\0');
    list += '\1';  // bytes of an offset
    list += '\1';  // bytes of a reference
    appendBigEndian(list, 1);
    appendBigEndian(list, 0);
    appendBigEndian(list, table);
    plist_t node = nullptr;
    plist_from_bin(list.data(), static_cast<std::uint32_t>(list.size()), &node);
    return Node(node);
}

// --- Reading ---

PropertyList valueOf(plist_t node);

PropertyList integerOf(plist_t node) {
    std::uint64_t value = 0;
    plist_get_uint_val(node, &value);
    if (std::in_range<std::int64_t>(value)) return static_cast<std::int64_t>(value);
    // The bits of a negative number and of one above 2^63 may be the same; a comparison also
    // regards the width that was read, which is what tells them apart.
    const Node negative(plist_new_uint(value));
    if (plist_compare_node_value(node, negative.get()) != 0)
        return static_cast<std::int64_t>(value);
    return value;
}

PropertyList dateOf(plist_t node) {
    const std::string list = binaryOf(node);
    const std::uint64_t bits =
        bigEndian(std::string_view(list).substr(kBinaryListHeader.size() + 1, 8));
    return dateSince(kStartOf2001, std::bit_cast<double>(bits));
}

PropertyList arrayOf(plist_t node) {
    PropertyList::Array array;
    array.reserve(plist_array_get_size(node));
    plist_array_iter position = nullptr;
    plist_array_new_iter(node, &position);
    const Bytes owned(static_cast<char*>(position));
    for (;;) {
        plist_t item = nullptr;
        plist_array_next_item(node, position, &item);
        if (item == nullptr) return array;
        array.push_back(valueOf(item));
    }
}

PropertyList dictionaryOf(plist_t node) {
    std::vector<PropertyList::Dictionary::Entry> entries;
    entries.reserve(plist_dict_get_size(node));
    plist_dict_iter position = nullptr;
    plist_dict_new_iter(node, &position);
    const Bytes owned(static_cast<char*>(position));
    for (;;) {
        char* key = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, position, &key, &item);
        const Bytes ownedKey(key);
        if (item == nullptr) return PropertyList::Dictionary(std::move(entries));
        entries.emplace_back(key, valueOf(item));
    }
}

PropertyList valueOf(plist_t node) {
    std::uint64_t number = 0;
    switch (plist_get_node_type(node)) {
        case PLIST_BOOLEAN: {
            std::uint8_t value = 0;
            plist_get_bool_val(node, &value);
            return value != 0;
        }
        case PLIST_UINT:
            return integerOf(node);
        case PLIST_REAL: {
            double value = 0;
            plist_get_real_val(node, &value);
            return value;
        }
        case PLIST_STRING: {
            const char* text = plist_get_string_ptr(node, &number);
            return std::string(text, number);
        }
        case PLIST_DATA: {
            const char* bytes = plist_get_data_ptr(node, &number);
            return PropertyList::Data{number == 0 ? std::string() : std::string(bytes, number)};
        }
        case PLIST_UID:
            plist_get_uid_val(node, &number);
            return PropertyList::Uid{static_cast<std::uint32_t>(number)};
        case PLIST_DATE:
            return dateOf(node);
        case PLIST_ARRAY:
            return arrayOf(node);
        case PLIST_DICT:
            return dictionaryOf(node);
        default:
            return {};
    }
}

// --- Writing ---

enum class Format { Binary, Xml };

/// Whether a list of `format` holds `text` as a string.
bool isText(std::string_view text, Format format) {
    if (!isUtf8(text)) return false;
    if (format == Format::Binary) return text.find('\0') == std::string_view::npos;
    // XML has no way to write these; it turns a carriage return into a line feed.
    constexpr std::string_view kNoncharacters[] = {"\xEF\xBF\xBE", "\xEF\xBF\xBF"};
    for (const std::string_view nothing : kNoncharacters) {
        if (text.find(nothing) != std::string_view::npos) return false;
    }
    return std::ranges::all_of(text, [](char byte) {
        return static_cast<unsigned char>(byte) >= ' ' || byte == '\t' || byte == '\n';
    });
}

Node dataNode(const std::string& bytes) {
    return Node(plist_new_data(bytes.data(), bytes.size()));
}

/// Makes nodes of values, as a list of one format holds them.
class NodeMaker {
  public:
    explicit NodeMaker(Format format) : format_(format) {}

    Node make(const PropertyList& list) const { return list.visit(*this); }

    Node operator()(bool value) const { return Node(plist_new_bool(value ? 1 : 0)); }
    Node operator()(std::int64_t value) const {
        return Node(plist_new_uint(static_cast<std::uint64_t>(value)));
    }
    Node operator()(std::uint64_t value) const {
        if (std::in_range<std::int64_t>(value)) return Node(plist_new_uint(value));
        std::string object(1, static_cast<char>(kWideIntegerMarker));
        appendBigEndian(object, 0);
        appendBigEndian(object, value);
        return nodeOfBinary(object);
    }
    Node operator()(double value) const { return Node(plist_new_real(value)); }
    Node operator()(const std::string& text) const {
        return isText(text, format_) ? Node(plist_new_string(text.c_str())) : dataNode(text);
    }
    Node operator()(const PropertyList::Data& data) const { return dataNode(data.bytes); }
    Node operator()(PropertyList::Uid uid) const { return Node(plist_new_uid(uid.value)); }
    Node operator()(PropertyList::Date date) const {
        // In two parts: nanoseconds since 1970 are too many for a double to hold each.
        const auto whole = std::chrono::floor<std::chrono::seconds>(date);
        auto seconds = static_cast<double>((whole.time_since_epoch() - kStartOf2001).count());
        if (format_ == Format::Binary)
            seconds += std::chrono::duration<double>(date - whole).count();
        std::string object(1, static_cast<char>(kDateMarker));
        appendBigEndian(object, std::bit_cast<std::uint64_t>(seconds));
        return nodeOfBinary(object);
    }
    Node operator()(const PropertyList::Array& array) const {
        Node node(plist_new_array());
        for (const PropertyList& value : array) {
            plist_array_append_item(node.get(), make(value).release());
        }
        return node;
    }
    Node operator()(const PropertyList::Dictionary& dictionary) const {
        Node node(plist_new_dict());
        for (const auto& [key, value] : dictionary.entries()) {
            if (isText(key, format_)) {
                plist_dict_set_item(node.get(), key.c_str(), make(value).release());
            } else {
                log("⚠️ 属性列表的键不是文本，已略过: {}", key);
            }
        }
        return node;
    }

  private:
    Format format_;
};

}  // namespace

bool isBinaryPropertyList(std::string_view bytes) {
    return bytes.starts_with("bplist");
}

Result<PropertyList> readBinaryPropertyList(std::string_view bytes,
                                            const PropertyList::Limits& limits) {
    if (!std::in_range<std::uint32_t>(bytes.size())) {
        return refuse("a property list of too many bytes");
    }
    if (auto judged = PropertyListBinaryGuard(bytes, limits).check(); !judged) {
        return std::unexpected(judged.error());
    }
    plist_t root = nullptr;
    plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
    const Node owned(root);
    if (root == nullptr) {
        return refuse("a damaged binary property list");
    }
    return valueOf(root);
}

std::string PropertyList::toBinary() const {
    return binaryOf(NodeMaker(Format::Binary).make(*this).get());
}

std::string PropertyList::toXml() const {
    const Node node = NodeMaker(Format::Xml).make(*this);
    char* bytes = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(node.get(), &bytes, &length);
    const Bytes owned(bytes);
    return {bytes, length};
}

}  // namespace sweepwright::platform
