#include "localization/LocalizedFormat.h"

#include <optional>
#include <span>
#include <utility>

#include <fmt/format.h>

namespace sweepwright::localization {
namespace {

/// Neither a width nor a precision may be larger; a text that asks for more is not obeyed.
constexpr unsigned kMaxDigits = 99;

struct Specifier {
    std::size_t length = 0;    // of its text, "%" included
    std::size_t position = 0;  // from 1; 0 when it takes the next argument
    bool left = false;
    bool zeros = false;
    bool plus = false;
    unsigned width = 0;
    std::optional<unsigned> precision;
    char conversion = '\0';
};

/// Reads a specifier piece by piece.
class SpecifierReader {
  public:
    /// `text` begins with "%".
    explicit SpecifierReader(std::string_view text) : text_(text) {}

    /// None when what stands there is no specifier that we know.
    std::optional<Specifier> read() {
        if (!readPosition()) return std::nullopt;
        readFlags();
        const auto width = readNumber();
        if (!width) return std::nullopt;
        result_.width = *width;
        if (take('.')) {
            result_.precision = readNumber();
            if (!result_.precision) return std::nullopt;
        }
        while (at_ < text_.size() && std::string_view("hlqzjtL").contains(text_[at_]))
            ++at_;
        if (at_ >= text_.size()) return std::nullopt;
        result_.conversion = text_[at_++];
        if (!std::string_view("@sdDiuUxXfFeEgG").contains(result_.conversion)) return std::nullopt;
        result_.length = at_;
        return result_;
    }

  private:
    bool take(char c) {
        if (at_ >= text_.size() || text_[at_] != c) return false;
        ++at_;
        return true;
    }

    /// The number here, 0 when there is none; none when it is too large.
    std::optional<unsigned> readNumber() {
        unsigned number = 0;
        while (at_ < text_.size() && text_[at_] >= '0' && text_[at_] <= '9') {
            number = number * 10 + static_cast<unsigned>(text_[at_++] - '0');
            if (number > kMaxDigits) return std::nullopt;
        }
        return number;
    }

    bool readPosition() {
        const std::size_t start = at_;
        const auto number = readNumber();
        if (!number) return false;
        if (take('$')) {
            result_.position = *number;
            return *number > 0;
        }
        at_ = start;  // flags and width
        return true;
    }

    void readFlags() {
        for (;; ++at_) {
            const char c = at_ < text_.size() ? text_[at_] : '\0';
            if (c == '-') {
                result_.left = true;
            } else if (c == '0') {
                result_.zeros = true;
            } else if (c == '+') {
                result_.plus = true;
            } else {
                return;
            }
        }
    }

    std::string_view text_;
    std::size_t at_ = 1;
    Specifier result_;
};

bool isReal(char conversion) {
    return std::string_view("fFeEgG").contains(conversion);
}
bool isHexadecimal(char conversion) {
    return conversion == 'x' || conversion == 'X';
}

/// What fmt calls the specifier's type when the argument is a number of that kind.
template <class Number>
std::string typeOf(const Specifier& specifier) {
    if constexpr (std::floating_point<Number>) {
        if (!isReal(specifier.conversion)) return "";
        return fmt::format(".{}{}", specifier.precision.value_or(6), specifier.conversion);
    } else {
        return isHexadecimal(specifier.conversion) ? std::string(1, specifier.conversion) : "d";
    }
}

template <class Number>
std::string written(const Specifier& specifier, Number number) {
    const char* const align = specifier.left ? "<" : specifier.zeros ? "" : ">";
    const char* const zeros = specifier.zeros && !specifier.left ? "0" : "";
    const std::string width = specifier.width == 0 ? "" : fmt::format("{}", specifier.width);
    const char* const sign = specifier.plus && !std::same_as<Number, std::uint64_t> ? "+" : "";
    const std::string type = typeOf<Number>(specifier);
    return fmt::format(
        fmt::runtime(fmt::format("{{:{}{}{}{}{}}}", align, sign, zeros, width, type)), number);
}

std::string written(const Specifier& specifier, const std::string& text) {
    return specifier.left ? fmt::format("{:<{}}", text, specifier.width)
                          : fmt::format("{:>{}}", text, specifier.width);
}

std::string filled(const Specifier& specifier, const FormatArgument& argument) {
    return std::visit(
        [&](const auto& value) -> std::string {
            if constexpr (std::integral<std::decay_t<decltype(value)>>) {
                if (isReal(specifier.conversion)) {
                    return written(specifier, static_cast<double>(value));
                }
            }
            return written(specifier, value);
        },
        argument.value());
}

}  // namespace

std::string formatLocalized(std::string_view text,
                            std::initializer_list<FormatArgument> arguments) {
    const std::span given(arguments.begin(), arguments.size());
    std::string out;
    std::size_t next = 0;
    while (!text.empty()) {
        const std::size_t plain = std::min(text.find('%'), text.size());
        out += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.starts_with("%%")) {
            out += '%';
            text.remove_prefix(2);
        } else if (const auto specifier =
                       text.empty() ? std::nullopt : SpecifierReader(text).read()) {
            const std::size_t index = specifier->position == 0 ? next++ : specifier->position - 1;
            out += index < given.size() ? filled(*specifier, given[index])
                                        : std::string(text.substr(0, specifier->length));
            text.remove_prefix(specifier->length);
        } else if (!text.empty()) {
            out += '%';
            text.remove_prefix(1);
        }
    }
    return out;
}

}  // namespace sweepwright::localization
