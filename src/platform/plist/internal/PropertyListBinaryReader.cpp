#include <algorithm>
#include <bit>
#include <cmath>
#include <optional>
#include <vector>

#include "platform/base/Failure.h"
#include "platform/plist/internal/PropertyListFormats.h"
#include "platform/text/DateText.h"
#include "platform/text/Utf16.h"

namespace sweepwright::platform {

namespace {

constexpr std::size_t kTrailerBytes = 32;

/// The big-endian number in at most eight bytes.
std::uint64_t numberIn(std::string_view bytes) {
    std::uint64_t value = 0;
    for (const char byte : bytes)
        value = value << 8U | static_cast<unsigned char>(byte);
    return value;
}

/// The date `seconds` after the start of 2001, to the nearest microsecond.
PropertyList::Date dateSince2001(double seconds) {
    constexpr double kBeyondAnyDate = 1e11;
    if (std::isnan(seconds)) return {};
    const double within = std::clamp(seconds, -kBeyondAnyDate, kBeyondAnyDate);
    // In two parts: a double holds the microseconds of today's dates only just, and would move a
    // date a little each time it is read and written.
    const double whole = std::floor(within);
    const std::chrono::microseconds part(std::llround((within - whole) * 1e6));
    return nearestDate(kStartOf2001.count() + std::llround(whole)) + part;
}

/// Builds a list from its root, following every reference.
///
/// The objects of a binary list form a graph: shared references may expand to any size, lead in a
/// circle or nest as deep as there are objects, and every length is only a claim. So each length is
/// compared with what is left of the file, and each value counted against the limits, before memory
/// is taken for it. After the first failure everything reads as empty.
class BinaryReader {
  public:
    BinaryReader(std::string_view bytes, const PropertyList::Limits& limits)
        : bytes_(bytes), limits_(limits) {}

    Result<PropertyList> read() {
        const std::uint64_t root = readTrailer();
        claimValues(1);
        PropertyList list = valueAt(root);
        if (!why_.empty()) return refuse(why_);
        return list;
    }

  private:
    PropertyList fail(std::string_view why) {
        if (why_.empty()) why_ = why;
        return {};
    }

    bool claimValues(std::uint64_t count) {
        if (count > limits_.nodes) fail("a property list of too many values");
        if (!why_.empty()) return false;
        limits_.nodes -= count;
        return true;
    }

    void claimBytes(std::size_t count) {
        if (count > limits_.bytes) fail("a property list of too many bytes");
        if (why_.empty()) limits_.bytes -= count;
    }

    /// Cuts `count` elements of `width` bytes off the start of `rest`.
    std::string_view take(std::string_view& rest, std::uint64_t count, std::uint64_t width = 1) {
        if (count > rest.size() / width) {
            fail("a truncated binary property list");
            return {};
        }
        const std::string_view taken = rest.substr(0, count * width);
        rest.remove_prefix(taken.size());
        return taken;
    }

    /// Divides the file into objects and the table of their offsets; returns the root's number.
    std::uint64_t readTrailer() {
        if (!bytes_.starts_with(kBinaryHeader) ||
            bytes_.size() <= kBinaryHeader.size() + kTrailerBytes) {
            fail("not a whole binary property list");
            return 0;
        }
        const std::size_t end = bytes_.size() - kTrailerBytes;
        std::string_view trailer = bytes_.substr(end + 6);
        offsetWidth_ = numberIn(take(trailer, 1));
        referenceWidth_ = numberIn(take(trailer, 1));
        objects_ = numberIn(take(trailer, 8));
        const std::uint64_t root = numberIn(take(trailer, 8));
        const std::uint64_t table = numberIn(take(trailer, 8));
        const auto isWidth = [](std::uint64_t width) { return width >= 1 && width <= 8; };
        if (!isWidth(offsetWidth_) || !isWidth(referenceWidth_) || table > end ||
            objects_ > (end - table) / offsetWidth_ || root >= objects_) {
            fail("a binary property list with a damaged trailer");
            return 0;
        }
        offsets_ = bytes_.substr(table);
        bytes_ = bytes_.substr(0, table);
        return root;
    }

    PropertyList valueAt(std::uint64_t index) {
        if (!why_.empty()) return {};
        if (index >= objects_) {
            return fail("a binary property list with a reference outside of it");
        }
        const std::uint64_t offset = numberIn(offsets_.substr(index * offsetWidth_, offsetWidth_));
        if (offset < kBinaryHeader.size() || offset >= bytes_.size()) {
            return fail("a binary property list with an offset outside of it");
        }
        std::string_view rest = bytes_.substr(offset);
        const std::uint64_t marker = numberIn(take(rest, 1));
        const auto type = static_cast<BinaryKind>(marker >> 4U);
        const auto low = static_cast<unsigned>(marker & 0xFU);
        if (type != BinaryKind::Array && type != BinaryKind::Dictionary)
            return scalar(type, low, rest);

        if (std::ranges::find(open_, index) != open_.end()) {
            return fail("a property list that contains itself");
        }
        if (open_.size() >= limits_.depth) return fail("a property list nested too deep");
        open_.push_back(index);
        PropertyList container =
            type == BinaryKind::Array ? array(low, rest) : dictionary(low, rest);
        open_.pop_back();
        return container;
    }

    /// How many elements the lower half of a marker tells.
    std::uint64_t lengthOf(unsigned low, std::string_view& rest) {
        if (low != kLengthFollows) return low;
        const std::uint64_t marker = numberIn(take(rest, 1));
        const std::uint64_t power = marker & 0xFU;
        if (static_cast<BinaryKind>(marker >> 4U) != BinaryKind::Integer || power > 3) {
            fail("a binary property list with a damaged length");
            return 0;
        }
        return numberIn(take(rest, std::uint64_t{1} << power));
    }

    /// The value that the first of `references` names.
    PropertyList nextValue(std::string_view& references) {
        return valueAt(numberIn(take(references, 1, referenceWidth_)));
    }

    PropertyList array(unsigned low, std::string_view rest) {
        const std::uint64_t length = lengthOf(low, rest);
        std::string_view references = take(rest, length, referenceWidth_);
        if (!claimValues(length)) return {};
        PropertyList::Array array;
        array.reserve(length);
        while (!references.empty())
            array.push_back(nextValue(references));
        return array;
    }

    PropertyList dictionary(unsigned low, std::string_view rest) {
        const std::uint64_t length = lengthOf(low, rest);
        std::string_view keys = take(rest, length, referenceWidth_);
        std::string_view values = take(rest, length, referenceWidth_);
        if (!claimValues(length) || !claimValues(length)) return {};
        std::vector<PropertyList::Dictionary::Entry> entries;
        entries.reserve(length);
        while (!keys.empty()) {
            const PropertyList key = nextValue(keys);
            if (key.string() == nullptr) {
                return fail("a property list with a key that is no string");
            }
            entries.emplace_back(*key.string(), nextValue(values));
        }
        return PropertyList::Dictionary(std::move(entries));
    }

    PropertyList scalar(BinaryKind type, unsigned low, std::string_view rest) {
        const std::uint64_t width = std::uint64_t{1} << low;
        if (type == BinaryKind::Simple && (low == kFalse || low == kTrue)) return low == kTrue;
        if (type == BinaryKind::Integer && width <= 16) return integer(take(rest, width));
        if (type == BinaryKind::Real && (width == 4 || width == 8)) return real(take(rest, width));
        if (type == BinaryKind::Date && width == 8) return dateSince2001(real(take(rest, width)));
        if (type == BinaryKind::Uid && (low == 0 || low == 1 || low == 3)) {
            return PropertyList::Uid{static_cast<std::uint32_t>(numberIn(take(rest, low + 1)))};
        }
        if (type == BinaryKind::Data) return PropertyList::Data{std::string(content(low, 1, rest))};
        if (type == BinaryKind::Ascii) return asciiText(content(low, 1, rest));
        if (type == BinaryKind::Utf16) return utf16Text(content(low, 2, rest));
        return fail("a binary property list with a value of an unknown type");
    }

    /// Those of less than eight bytes have no sign, and those of sixteen must fit in eight.
    PropertyList integer(std::string_view bytes) {
        if (bytes.size() == 8) return static_cast<std::int64_t>(numberIn(bytes));
        if (bytes.size() < 8) return numberIn(bytes);
        if (numberIn(bytes.substr(0, 8)) != 0) {
            return fail("a property list with an integer of more than 64 bits");
        }
        return numberIn(bytes.substr(8));
    }

    static double real(std::string_view bytes) {
        const std::uint64_t bits = numberIn(bytes);
        if (bytes.size() == 8) return std::bit_cast<double>(bits);
        return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
    }

    /// The bytes of data or of a string of elements `width` bytes wide.
    std::string_view content(unsigned low, std::uint64_t width, std::string_view rest) {
        const std::uint64_t length = lengthOf(low, rest);
        const std::string_view bytes = take(rest, length, width);
        claimBytes(bytes.size());
        return why_.empty() ? bytes : std::string_view();
    }

    PropertyList asciiText(std::string_view bytes) {
        if (!isPlainAscii(bytes)) return fail("a property list with a damaged string");
        return bytes;
    }

    PropertyList utf16Text(std::string_view bytes) {
        std::optional<std::string> text = utf8FromUtf16(bytes);
        if (!text || text->contains('\0')) return fail("a property list with a damaged string");
        if (text->size() > bytes.size()) claimBytes(text->size() - bytes.size());
        return *std::move(text);
    }

    std::string_view bytes_;  ///< up to the table, once the trailer is read
    std::string_view offsets_;
    PropertyList::Limits limits_;  ///< bytes and nodes: what is left of them
    std::uint64_t objects_ = 0;
    std::uint64_t offsetWidth_ = 0;
    std::uint64_t referenceWidth_ = 0;
    std::vector<std::uint64_t> open_;  ///< the containers from the root to the value in hand
    std::string_view why_;             ///< of the first failure
};

}  // namespace

Result<PropertyList> readBinaryPropertyList(std::string_view bytes,
                                            const PropertyList::Limits& limits) {
    return BinaryReader(bytes, limits).read();
}

}  // namespace sweepwright::platform
