#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <variant>

namespace sweepwright::localization {

/// A value to put into a text: a string, a whole number or a real number.
class FormatArgument {
  public:
    using Value = std::variant<std::string, std::int64_t, std::uint64_t, double>;

    FormatArgument(const char* text) : value_(std::string(text)) {}
    FormatArgument(std::string_view text) : value_(std::string(text)) {}
    FormatArgument(std::string text) : value_(std::move(text)) {}
    FormatArgument(std::signed_integral auto number) : value_(std::int64_t{number}) {}
    FormatArgument(std::unsigned_integral auto number) : value_(std::uint64_t{number}) {}
    FormatArgument(std::floating_point auto number) : value_(static_cast<double>(number)) {}

    [[nodiscard]] const Value& value() const { return value_; }

  private:
    Value value_;
};

/// `text` with its specifiers filled in from `arguments`.
///
/// A specifier is "%", perhaps flags ("-", "0", "+") with a width, a precision and a length
/// ("l", "ll", "z", …), and one of "@ s" (anything), "d i u x X" (whole numbers) and "f e g" (real
/// ones, also in capitals). They take the arguments in turn; "%2$@" takes the second one. "%%" is a
/// percent sign.
///
/// Texts come from translators, so that nothing about them is trusted: a specifier whose argument
/// is missing and one that is none of the above ("100% sure") stay as they stand, and an argument
/// of another kind than its specifier is written in its own form.
std::string formatLocalized(std::string_view text, std::initializer_list<FormatArgument> arguments);

}  // namespace sweepwright::localization
