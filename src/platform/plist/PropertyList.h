#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/base/Error.h"

namespace sweepwright::platform {

/// A property list as a plain value: what the device's own files (preferences, container
/// metadata, Info.plist) and compiled string tables are made of.
///
/// Reading takes binary and XML lists, with or without a UTF-8 byte-order mark. What would nest,
/// expand or claim more than the limits allow is refused before memory is taken for it, so that a
/// file of an app that means harm costs no more than the limits, whatever it holds.
///
/// The format's strings are text, but a device's paths are bytes. A string that a list can't hold
/// as a string (it is not UTF-8, holds a NUL or, in XML, another control character) is therefore
/// written as data, so that nothing is lost; bytes() reads both back. A string that was read is
/// always UTF-8 without a NUL.
///
/// Keys have no such way out: a key that is not UTF-8 or holds a NUL is left out when a list is
/// written, and logged. Use texts of the program as keys.
class PropertyList {
  public:
    struct Data {
        std::string bytes;
        bool operator==(const Data&) const = default;
    };
    /// A reference of a keyed archive; the format's makers hold it in 32 bits.
    struct Uid {
        std::uint32_t value = 0;
        bool operator==(const Uid&) const = default;
    };
    /// Kept to the microsecond in binary lists and to the second in XML. One that was read from
    /// beyond the range of the type (years 1678 to 2261) is the nearest that it holds.
    using Date = std::chrono::system_clock::time_point;
    using Array = std::vector<PropertyList>;

    /// A dictionary that keeps the order in which keys were added; keys are unique.
    class Dictionary {
      public:
        using Entry = std::pair<std::string, PropertyList>;

        Dictionary() = default;
        Dictionary(std::initializer_list<Entry> entries);
        /// Of entries with equal keys the first keeps its place and the last its value.
        explicit Dictionary(std::vector<Entry> entries);

        /// The value under `key`, or nullptr.
        [[nodiscard]] const PropertyList* find(std::string_view key) const;
        /// Sets `key`, replacing what stood there.
        void set(std::string key, PropertyList value);
        /// Removes `key`; true if it was there.
        bool remove(std::string_view key);

        [[nodiscard]] const std::vector<Entry>& entries() const { return entries_; }
        [[nodiscard]] std::size_t size() const { return entries_.size(); }
        [[nodiscard]] bool empty() const { return entries_.empty(); }

        /// Equal when both hold the same keys with equal values, in whatever order.
        bool operator==(const Dictionary& other) const;

      private:
        std::vector<Entry> entries_;
    };

    /// What a list may cost before it is refused. The defaults hold any file of a real device many
    /// times over.
    struct Limits {
        /// Of the file, and of its strings and data after shared references are expanded.
        std::size_t bytes = std::size_t{16} << 20U;
        std::size_t nodes = 200'000;  ///< after shared references are expanded
        std::size_t depth = 64;       ///< of nested containers; 512 at most
    };

    PropertyList() : value_(Dictionary{}) {}
    PropertyList(bool value) : value_(value) {}
    PropertyList(int value) : value_(std::int64_t{value}) {}
    PropertyList(std::int64_t value) : value_(value) {}
    PropertyList(std::uint64_t value) : value_(value) {}
    PropertyList(double value) : value_(value) {}
    PropertyList(const char* value) : value_(std::string(value)) {}
    PropertyList(std::string value) : value_(std::move(value)) {}
    PropertyList(std::string_view value) : value_(std::string(value)) {}
    PropertyList(Data value) : value_(std::move(value)) {}
    PropertyList(Uid value) : value_(value) {}
    PropertyList(Date value) : value_(value) {}
    PropertyList(Array value) : value_(std::move(value)) {}
    PropertyList(Dictionary value) : value_(std::move(value)) {}

    /// Reads a list. Error domain kFormatErrorDomain: damaged, truncated, hostile or over a limit.
    static Result<PropertyList> parse(std::string_view bytes, const Limits& limits);
    static Result<PropertyList> parse(std::string_view bytes);

    /// The list as a binary file. Integers of 2^63 and above are written so that every reader of
    /// the format reads them back as unsigned (16 bytes wide).
    [[nodiscard]] std::string toBinary() const;
    /// The list as an XML file.
    [[nodiscard]] std::string toXml() const;

    /// Typed views: nullptr (or none) when the value is of another type. A number is handed out as
    /// any number type that holds it exactly; a boolean is no number.
    [[nodiscard]] const bool* boolean() const { return std::get_if<bool>(&value_); }
    [[nodiscard]] std::optional<std::int64_t> integer() const;
    [[nodiscard]] std::optional<std::uint64_t> unsignedInteger() const;
    [[nodiscard]] std::optional<double> real() const;
    [[nodiscard]] const std::string* string() const { return std::get_if<std::string>(&value_); }
    [[nodiscard]] const Data* data() const { return std::get_if<Data>(&value_); }
    /// The bytes of a string or of data: how to read what need not be UTF-8, such as a path.
    [[nodiscard]] const std::string* bytes() const;
    [[nodiscard]] const Uid* uid() const { return std::get_if<Uid>(&value_); }
    [[nodiscard]] const Date* date() const { return std::get_if<Date>(&value_); }
    [[nodiscard]] const Array* array() const { return std::get_if<Array>(&value_); }
    [[nodiscard]] const Dictionary* dictionary() const { return std::get_if<Dictionary>(&value_); }
    [[nodiscard]] Array* array() { return std::get_if<Array>(&value_); }
    [[nodiscard]] Dictionary* dictionary() { return std::get_if<Dictionary>(&value_); }

    /// Equal values; 5 as signed and 5 as unsigned are equal.
    bool operator==(const PropertyList& other) const;

    /// Calls `visitor` with the value held: for what must treat every type.
    template <class Visitor>
    auto visit(Visitor&& visitor) const {
        return std::visit(std::forward<Visitor>(visitor), value_);
    }

  private:
    std::variant<bool, std::int64_t, std::uint64_t, double, std::string, Data, Uid, Date, Array,
                 Dictionary>
        value_;
};

}  // namespace sweepwright::platform
