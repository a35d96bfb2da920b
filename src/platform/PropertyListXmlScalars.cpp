#include "platform/PropertyListXmlScalars.h"

#include <charconv>
#include <chrono>
#include <limits>

#include "platform/PropertyListDate.h"

namespace sweepwright::platform {

namespace {

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isXmlSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isXmlSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

template <class Number, class... Options>
std::optional<Number> whole(std::string_view text, Options... options) {
    Number value{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, options...);
    if (text.empty() || error != std::errc() || stop != end) return {};
    return value;
}

/// The unsigned number of exactly `digits` digits at the start of `text`, which it is cut from.
std::optional<unsigned> takeDigits(std::string_view& text, std::size_t digits) {
    const std::string_view number = text.substr(0, digits);
    if (number.size() != digits) return {};
    text.remove_prefix(digits);
    return whole<unsigned>(number, 10);
}

bool take(std::string_view& text, std::string_view what) {
    if (!text.starts_with(what)) return false;
    text.remove_prefix(what.size());
    return true;
}

/// The value of a base64 digit, or -1.
int base64Digit(char digit) {
    if (digit >= 'A' && digit <= 'Z') return digit - 'A';
    if (digit >= 'a' && digit <= 'z') return digit - 'a' + 26;
    if (digit >= '0' && digit <= '9') return digit - '0' + 52;
    if (digit == '+') return 62;
    return digit == '/' ? 63 : -1;
}

}  // namespace

bool isXmlSpace(char byte) {
    return byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r';
}

std::optional<PropertyList> integerFromXml(std::string_view text) {
    text = trimmed(text);
    const bool negative = take(text, "-");
    if (!negative) take(text, "+");
    const bool hexadecimal = take(text, "0x") || take(text, "0X");
    const auto magnitude = whole<std::uint64_t>(text, hexadecimal ? 16 : 10);
    if (!magnitude) return {};
    constexpr std::uint64_t kTwoTo63 = std::uint64_t{1} << 63U;
    if (negative) {
        if (*magnitude > kTwoTo63) return {};
        return PropertyList(static_cast<std::int64_t>(0 - *magnitude));
    }
    if (*magnitude < kTwoTo63) return PropertyList(static_cast<std::int64_t>(*magnitude));
    return PropertyList(*magnitude);
}

std::optional<PropertyList> realFromXml(std::string_view text) {
    text = trimmed(text);
    if (take(text, "+") && text.starts_with('-')) return {};
    const auto value = whole<double>(text);
    if (!value) return {};
    return PropertyList(*value);
}

std::optional<PropertyList> dateFromXml(std::string_view text) {
    text = trimmed(text);
    const auto year = takeDigits(text, 4);
    const bool dash = take(text, "-");
    const auto month = takeDigits(text, 2);
    const bool secondDash = take(text, "-");
    const auto day = takeDigits(text, 2);
    const bool letter = take(text, "T");
    const auto hour = takeDigits(text, 2);
    const bool colon = take(text, ":");
    const auto minute = takeDigits(text, 2);
    const bool secondColon = take(text, ":");
    const auto second = takeDigits(text, 2);
    const bool punctuation = dash && secondDash && letter && colon && secondColon;
    if (!year || !month || !day || !hour || !minute || !second || !punctuation || text != "Z") {
        return {};
    }
    const std::chrono::year_month_day date(std::chrono::year(static_cast<int>(*year)),
                                           std::chrono::month(*month), std::chrono::day(*day));
    if (!date.ok() || *hour > 23 || *minute > 59 || *second > 60) return {};
    const std::int64_t days = std::chrono::sys_days(date).time_since_epoch().count();
    const std::int64_t seconds = ((days * 24 + *hour) * 60 + *minute) * 60 + *second;
    return PropertyList(dateSince({}, static_cast<double>(seconds)));
}

std::optional<PropertyList> dataFromXml(std::string_view text) {
    PropertyList::Data data;
    data.bytes.reserve(text.size() / 4 * 3);
    unsigned bits = 0;  // of which the lowest `count` are still to be written
    unsigned count = 0;
    bool ended = false;
    for (const char byte : text) {
        if (isXmlSpace(byte)) continue;
        if (byte == '=') {
            ended = true;
            continue;
        }
        const int digit = base64Digit(byte);
        if (digit < 0 || ended) return {};
        bits = (bits << 6U) | static_cast<unsigned>(digit);
        count += 6;
        if (count < 8) continue;
        count -= 8;
        data.bytes += static_cast<char>((bits >> count) & 0xFFU);
        bits &= (1U << count) - 1;
    }
    // A single digit left over is no byte: something was cut off.
    if (count == 6) return {};
    return PropertyList(std::move(data));
}

std::optional<char32_t> characterFromXmlEntity(std::string_view name) {
    if (name == "amp") return U'&';
    if (name == "lt") return U'<';
    if (name == "gt") return U'>';
    if (name == "quot") return U'"';
    if (name == "apos") return U'\'';
    if (!take(name, "#")) return {};
    const bool hexadecimal = take(name, "x");
    const auto value = whole<std::uint32_t>(name, hexadecimal ? 16 : 10);
    const bool surrogate = value && *value >= 0xD800 && *value <= 0xDFFF;
    if (!value || *value == 0 || *value > 0x10FFFF || surrogate) return {};
    return static_cast<char32_t>(*value);
}

}  // namespace sweepwright::platform
