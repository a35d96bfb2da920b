#include <bit>
#include <deque>
#include <map>
#include <vector>

#include "platform/plist/internal/PropertyListFormats.h"
#include "platform/text/Utf16.h"

namespace sweepwright::platform {

namespace {

std::string bigEndian(std::uint64_t value, std::size_t width) {
    std::string bytes(width, '\0');
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte, value >>= 8U)
        *byte = static_cast<char>(value & 0xFFU);
    return bytes;
}

/// The power of two of the narrowest width, in bytes, that holds `value`.
unsigned widthPower(std::uint64_t value) {
    if (value >> 32U != 0) return 3;
    if (value >> 16U != 0) return 2;
    return value >> 8U != 0 ? 1 : 0;
}

std::string marker(BinaryKind type, unsigned low) {
    return {static_cast<char>(static_cast<unsigned>(type) << 4U | low)};
}

/// An object of 2^`power` bytes.
std::string numberObject(BinaryKind type, unsigned power, std::uint64_t value) {
    return marker(type, power) + bigEndian(value, std::size_t{1} << power);
}

/// Readers take the highest bit of eight bytes as the sign: what has it set needs sixteen.
std::string unsignedObject(std::uint64_t value) {
    return numberObject(BinaryKind::Integer, value >> 63U != 0 ? 4 : widthPower(value), value);
}

/// What stands before `length` elements.
std::string lengthMarker(BinaryKind type, std::uint64_t length) {
    if (length < kLengthFollows) return marker(type, static_cast<unsigned>(length));
    return marker(type, kLengthFollows) + unsignedObject(length);
}

double secondsSince2001(PropertyList::Date date) {
    // In two parts: nanoseconds since 1970 are too many for a double to hold each.
    const auto whole = std::chrono::floor<std::chrono::seconds>(date);
    return static_cast<double>((whole.time_since_epoch() - kStartOf2001).count()) +
           std::chrono::duration<double>(date - whole).count();
}

/// Visits the values of a list and lays them out as objects; returns each one's number. Objects
/// that hold no others are written once, however often they occur.
class BinaryWriter {
  public:
    using Index = std::size_t;

    static std::string write(const PropertyList& list) {
        BinaryWriter writer;
        list.visit(writer);  // the root is number 0
        return writer.file();
    }

    Index operator()(bool value) {
        return shared(marker(BinaryKind::Simple, value ? kTrue : kFalse));
    }
    Index operator()(std::uint64_t value) { return shared(unsignedObject(value)); }
    Index operator()(std::int64_t value) {
        const auto bits = static_cast<std::uint64_t>(value);
        return shared(value < 0 ? numberObject(BinaryKind::Integer, 3, bits)
                                : unsignedObject(bits));
    }
    Index operator()(double value) {
        return shared(numberObject(BinaryKind::Real, 3, std::bit_cast<std::uint64_t>(value)));
    }
    Index operator()(PropertyList::Date date) {
        const auto bits = std::bit_cast<std::uint64_t>(secondsSince2001(date));
        return shared(numberObject(BinaryKind::Date, 3, bits));
    }
    Index operator()(PropertyList::Uid uid) {
        const unsigned width = 1U << widthPower(uid.value);
        return shared(marker(BinaryKind::Uid, width - 1) + bigEndian(uid.value, width));
    }
    Index operator()(const PropertyList::Data& data) {
        return shared(lengthMarker(BinaryKind::Data, data.bytes.size()) + data.bytes);
    }
    Index operator()(const std::string& text) {
        if (isPlainAscii(text)) return shared(lengthMarker(BinaryKind::Ascii, text.size()) + text);
        if (!isPlainText(text)) return shared(lengthMarker(BinaryKind::Data, text.size()) + text);
        const std::string units = utf16FromUtf8(text);
        return shared(lengthMarker(BinaryKind::Utf16, units.size() / 2) + units);
    }
    Index operator()(const PropertyList::Array& array) {
        Object& object = objects_.emplace_back(lengthMarker(BinaryKind::Array, array.size()));
        const Index index = objects_.size() - 1;
        for (const PropertyList& value : array)
            object.references.push_back(value.visit(*this));
        return index;
    }
    Index operator()(const PropertyList::Dictionary& dictionary) {
        Object& object = objects_.emplace_back();
        const Index index = objects_.size() - 1;
        std::vector<Index> values;
        for (const auto& [key, value] : dictionary.entries()) {
            if (!isPlainText(key)) {
                logOmittedKey(key);
                continue;
            }
            object.references.push_back((*this)(key));
            values.push_back(value.visit(*this));
        }
        object.bytes = lengthMarker(BinaryKind::Dictionary, values.size());
        object.references.insert(object.references.end(), values.begin(), values.end());
        return index;
    }

  private:
    struct Object {
        std::string bytes;
        std::vector<Index> references;  ///< of a container; they follow the bytes
    };

    Index shared(std::string bytes) {
        const auto known = shared_.find(bytes);
        if (known != shared_.end()) return known->second;
        objects_.push_back({std::move(bytes), {}});
        return shared_.emplace(objects_.back().bytes, objects_.size() - 1).first->second;
    }

    [[nodiscard]] std::string file() const {
        const std::size_t referenceWidth = std::size_t{1} << widthPower(objects_.size() - 1);
        std::string file(kBinaryHeader);
        std::vector<std::size_t> offsets;
        for (const Object& object : objects_) {
            offsets.push_back(file.size());
            file += object.bytes;
            for (const Index reference : object.references)
                file += bigEndian(reference, referenceWidth);
        }
        const std::size_t table = file.size();
        const std::size_t offsetWidth = std::size_t{1} << widthPower(table);
        for (const std::size_t offset : offsets)
            file += bigEndian(offset, offsetWidth);
        file += std::string(6, '\0') + bigEndian(offsetWidth, 1) + bigEndian(referenceWidth, 1);
        return file + bigEndian(objects_.size(), 8) + bigEndian(0, 8) + bigEndian(table, 8);
    }

    std::deque<Object> objects_;  // what stands in it stays where it is
    std::map<std::string_view, Index> shared_;
};

}  // namespace

std::string PropertyList::toBinary() const {
    return BinaryWriter::write(*this);
}

}  // namespace sweepwright::platform
