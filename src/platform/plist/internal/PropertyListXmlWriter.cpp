#include <algorithm>
#include <iterator>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "platform/plist/internal/PropertyListFormats.h"

namespace sweepwright::platform {

namespace {

constexpr std::string_view kBegin =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";

/// Whether XML can hold `text`: it has no way to write control characters and U+FFFE and U+FFFF,
/// and turns a carriage return into a line feed.
bool isXmlText(std::string_view text) {
    return isPlainText(text) && !text.contains("\xEF\xBF\xBE") && !text.contains("\xEF\xBF\xBF") &&
           std::ranges::all_of(text, [](char byte) {
               return static_cast<unsigned char>(byte) >= ' ' || byte == '\t' || byte == '\n';
           });
}

std::string escaped(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '&') {
            out += "&amp;";
        } else if (c == '<') {
            out += "&lt;";
        } else if (c == '>') {
            out += "&gt;";
        } else {
            out += c;
        }
    }
    return out;
}

std::string base64(std::string_view bytes) {
    std::string text;
    std::uint32_t bits = 0;  // of which the lowest `count` are still to be written
    unsigned count = 0;
    for (const char byte : bytes) {
        bits = bits << 8U | static_cast<unsigned char>(byte);
        for (count += 8; count >= 6;) {
            count -= 6;
            text += kBase64Digits[bits >> count & 0x3FU];
        }
    }
    if (count > 0) text += kBase64Digits[bits << (6 - count) & 0x3FU];
    text.resize((text.size() + 3) / 4 * 4, '=');
    return text;
}

/// Visits the values of a list and writes an element for each.
class XmlWriter {
  public:
    std::string text = std::string(kBegin);

    void operator()(bool value) { text += value ? "<true/>\n" : "<false/>\n"; }
    void operator()(std::int64_t value) { element("integer", value); }
    void operator()(std::uint64_t value) { element("integer", value); }
    void operator()(double value) { element("real", value); }
    void operator()(const PropertyList::Data& data) { element("data", base64(data.bytes)); }
    void operator()(const std::string& string) {
        if (!isXmlText(string)) return element("data", base64(string));
        element("string", escaped(string));
    }
    void operator()(PropertyList::Date date) {
        const auto seconds = std::chrono::floor<std::chrono::seconds>(date);
        const std::tm utc = fmt::gmtime(PropertyList::Date::clock::to_time_t(seconds));
        element("date", fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", utc));
    }
    void operator()(PropertyList::Uid uid) {
        (*this)(PropertyList::Dictionary{{std::string(kUidKey), std::uint64_t{uid.value}}});
    }
    void operator()(const PropertyList::Array& array) {
        text += "<array>\n";
        for (const PropertyList& value : array)
            value.visit(*this);
        text += "</array>\n";
    }
    void operator()(const PropertyList::Dictionary& dictionary) {
        text += "<dict>\n";
        for (const auto& [key, value] : dictionary.entries()) {
            if (isXmlText(key)) {
                element("key", escaped(key));
                value.visit(*this);
            } else {
                logOmittedKey(key);
            }
        }
        text += "</dict>\n";
    }

  private:
    void element(std::string_view name, const auto& content) {
        fmt::format_to(std::back_inserter(text), "<{0}>{1}</{0}>\n", name, content);
    }
};

}  // namespace

std::string PropertyList::toXml() const {
    XmlWriter writer;
    visit(writer);
    return writer.text + "</plist>\n";
}

}  // namespace sweepwright::platform
