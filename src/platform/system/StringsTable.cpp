#include "platform/system/StringsTable.h"

#include <algorithm>
#include <charconv>
#include <expected>
#include <optional>

#include "platform/base/Failure.h"
#include "platform/text/Utf16.h"
#include "platform/text/Utf8.h"

namespace sweepwright::platform {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// Stands for half a surrogate pair.
constexpr char32_t kReplacementCharacter = 0xFFFD;

using Why = std::string_view;

bool isSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '-' || c == '.' || c == '$' || c == ':' || c == '/';
}

/// Reads one entry at a time.
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
        const bool alone = isHighSurrogate(*unit) || isLowSurrogate(*unit);
        appendUtf8(out, alone ? kReplacementCharacter : *unit);
        return true;
    }

    /// Reads four hexadecimal digits.
    std::optional<char32_t> readHex() {
        const std::string_view digits = text_.substr(at_, 4);
        std::uint32_t value = 0;
        const char* const end = digits.data() + digits.size();
        if (digits.size() < 4 || std::from_chars(digits.data(), end, value, 16).ptr != end) {
            return std::nullopt;
        }
        at_ += digits.size();
        return value;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::size_t entryStart_ = 0;
    std::size_t counted_ = 0;
    std::size_t line_ = 1;
};

}  // namespace

Result<StringsTable> StringsTable::parse(std::string_view bytes) {
    if (bytes.size() > kMaxBytes) return refuse("the string table is too long");
    if (bytes.starts_with(kByteOrderMark)) bytes.remove_prefix(kByteOrderMark.size());
    StringsTable table;
    Scanner scanner(bytes);
    const auto report = [&](Why why) { table.problems_.push_back({scanner.line(), why}); };
    while (scanner.findEntry()) {
        if (table.problems_.size() == kMaxProblems) {
            report("too many problems; the rest is not read");
            break;
        }
        auto entry = scanner.readEntry();
        if (!entry) {
            report(entry.error());
            scanner.skipLine();
            continue;
        }
        auto& [key, text] = *entry;
        const bool isNew = table.entries_.insert_or_assign(std::move(key), std::move(text)).second;
        if (!isNew) report("the key stands twice; this text holds");
    }
    return table;
}

const std::string* StringsTable::find(std::string_view key) const {
    const auto found = entries_.find(key);
    return found == entries_.end() ? nullptr : &found->second;
}

}  // namespace sweepwright::platform
