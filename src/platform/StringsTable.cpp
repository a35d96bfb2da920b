#include "platform/StringsTable.h"

#include <algorithm>
#include <expected>
#include <optional>

#include "platform/PropertyList.h"
#include "platform/Utf16.h"
#include "platform/Utf8.h"

namespace sweepwright::platform {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

using Why = std::string_view;

bool isSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '-' || c == '.' || c == '$' || c == ':' || c == '/';
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

/// Reads the written form, one entry at a time.
class Scanner {
  public:
    struct Entry {
        std::string key;
        std::string text;
    };

    explicit Scanner(std::string_view text) : text_(text) {}

    /// Goes to the next entry; false at the end.
    bool findEntry() {
        skipBlanks();
        entryStart_ = at_;
        return at_ < text_.size();
    }

    /// Reads the entry found.
    std::expected<Entry, Why> readEntry() {
        auto key = readToken();
        if (!key) return std::unexpected(key.error());
        skipBlanks();
        if (take(';')) return Entry{*key, *key};
        if (!take('=')) return std::unexpected("no \"=\" after the key");
        skipBlanks();
        auto text = readToken();
        if (!text) return std::unexpected(text.error());
        skipBlanks();
        if (!take(';')) return std::unexpected("no \";\" after the text");
        return Entry{std::move(*key), std::move(*text)};
    }

    /// Goes back to where the entry found begins, and from there to the next line.
    void skipLine() {
        at_ = entryStart_;
        while (at_ < text_.size() && text_[at_] != '\n' && text_[at_] != '\r')
            ++at_;
    }

    /// The line, from 1, on which the entry found begins.
    std::size_t line() {
        for (; counted_ < entryStart_; ++counted_) {
            const char c = text_[counted_];
            const bool pairGoesOn = c == '\r' && text_[counted_ + 1] == '\n';
            if ((c == '\n' || c == '\r') && !pairGoesOn) ++line_;
        }
        return line_;
    }

  private:
    [[nodiscard]] bool startsWith(std::string_view text) const {
        return text_.substr(at_).starts_with(text);
    }

    bool take(char c) {
        if (at_ >= text_.size() || text_[at_] != c) return false;
        ++at_;
        return true;
    }

    /// Skips space and comments, up to a comment that is not closed.
    void skipBlanks() {
        for (;;) {
            while (at_ < text_.size() && isSpace(text_[at_]))
                ++at_;
            std::size_t end = std::string_view::npos;
            if (startsWith("//")) {
                end = std::min(text_.find_first_of("\r\n", at_), text_.size());
            } else if (startsWith("/*")) {
                end = text_.find("*/", at_ + 2);
                if (end != std::string_view::npos) end += 2;
            }
            if (end == std::string_view::npos) return;
            at_ = end;
        }
    }

    std::expected<std::string, Why> readToken() {
        if (take('"')) return readQuoted();
        if (startsWith("/*")) return std::unexpected("a comment is not closed");
        const std::size_t start = at_;
        while (at_ < text_.size() && isPlain(text_[at_]) && !startsWith("//") &&
               !startsWith("/*")) {
            ++at_;
        }
        if (at_ == start) return std::unexpected("neither a quote nor a plain word");
        return std::string(text_.substr(start, at_ - start));
    }

    std::expected<std::string, Why> readQuoted() {
        std::string out;
        while (at_ < text_.size()) {
            const char c = text_[at_++];
            if (c == '"') {
                if (!isUtf8(out)) return std::unexpected("not UTF-8");
                return out;
            }
            if (c != '\\') {
                out += c;
            } else if (!readEscape(out)) {
                return std::unexpected("an escape without its four hexadecimal digits");
            }
        }
        return std::unexpected("a quote is not closed");
    }

    /// Reads what follows a backslash. An unknown escape is the character itself.
    bool readEscape(std::string& out) {
        if (at_ >= text_.size()) return true;
        const char c = text_[at_++];
        if (c == 'u' || c == 'U') return readCodePoint(out);
        constexpr std::string_view kLetters = "abfnrtv";
        constexpr std::string_view kControls = "\a\b\f\n\r\t\v";
        const std::size_t letter = kLetters.find(c);
        out += letter == std::string_view::npos ? c : kControls[letter];
        return true;
    }

    bool readCodePoint(std::string& out) {
        const auto unit = readHex();
        if (!unit) return false;
        const std::size_t after = at_;
        if (isHighSurrogate(*unit) && (startsWith("\\u") || startsWith("\\U"))) {
            at_ += 2;
            const auto low = readHex();
            if (low && isLowSurrogate(*low)) {
                appendUtf8(out, joinedSurrogates(*unit, *low));
                return true;
            }
            at_ = after;
        }
        appendUtf8(out, codePointOf(*unit));
        return true;
    }

    std::optional<char32_t> readHex() {
        if (text_.size() - at_ < 4) return std::nullopt;
        char32_t value = 0;
        for (int i = 0; i < 4; ++i) {
            const int digit = hexDigit(text_[at_]);
            if (digit < 0) return std::nullopt;
            ++at_;
            value = value << 4U | static_cast<char32_t>(digit);
        }
        return value;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::size_t entryStart_ = 0;
    std::size_t counted_ = 0;
    std::size_t line_ = 1;
};

/// The byte order of UTF-16 with a byte-order mark, or without one but beginning with an ASCII
/// character, as every table does.
std::optional<ByteOrder> utf16Order(std::string_view bytes) {
    if (bytes.size() < 2) return std::nullopt;
    if (bytes.starts_with("\xFF\xFE")) return ByteOrder::LittleEndian;
    if (bytes.starts_with("\xFE\xFF")) return ByteOrder::BigEndian;
    if (bytes[1] == '\0' && bytes[0] != '\0') return ByteOrder::LittleEndian;
    if (bytes[0] == '\0' && bytes[1] != '\0') return ByteOrder::BigEndian;
    return std::nullopt;
}

bool isPropertyList(std::string_view bytes) {
    if (bytes.starts_with("bplist")) return true;
    if (bytes.starts_with(kUtf8Mark)) bytes.remove_prefix(kUtf8Mark.size());
    while (!bytes.empty() && isSpace(bytes.front()))
        bytes.remove_prefix(1);
    // No table in the written form begins with "<".
    return bytes.starts_with('<');
}

}  // namespace

Result<StringsTable> StringsTable::parse(std::string_view bytes) {
    if (bytes.size() > kMaxBytes) {
        return std::unexpected(formatError("", "the string table is too long"));
    }
    if (isPropertyList(bytes)) return fromPropertyList(bytes);
    StringsTable table;
    if (const auto order = utf16Order(bytes)) {
        std::string text = utf8FromUtf16(bytes, *order);
        table.readWritten(text);
    } else {
        table.readWritten(bytes);
    }
    return table;
}

Result<StringsTable> StringsTable::fromPropertyList(std::string_view bytes) {
    const auto list = PropertyList::parse(bytes);
    if (!list) return std::unexpected(list.error());
    const auto* dictionary = list->dictionary();
    if (dictionary == nullptr) {
        return std::unexpected(formatError("", "the compiled string table is no dictionary"));
    }
    StringsTable table;
    for (const auto& [key, value] : dictionary->entries()) {
        if (const std::string* text = value.string()) {
            table.entries_.insert_or_assign(key, *text);
        } else {
            table.problems_.push_back({0, "a value is no text"});
        }
    }
    return table;
}

void StringsTable::readWritten(std::string_view utf8) {
    if (utf8.starts_with(kUtf8Mark)) utf8.remove_prefix(kUtf8Mark.size());
    Scanner scanner(utf8);
    while (scanner.findEntry()) {
        if (problems_.size() == kMaxProblems) {
            problems_.push_back({scanner.line(), "too many problems; the rest is not read"});
            return;
        }
        auto entry = scanner.readEntry();
        if (!entry) {
            problems_.push_back({scanner.line(), entry.error()});
            scanner.skipLine();
        } else if (!entries_.insert_or_assign(std::move(entry->key), std::move(entry->text))
                        .second) {
            problems_.push_back({scanner.line(), "the key stands twice; this text holds"});
        }
    }
}

const std::string* StringsTable::find(std::string_view key) const {
    const auto found = entries_.find(key);
    return found == entries_.end() ? nullptr : &found->second;
}

}  // namespace sweepwright::platform
