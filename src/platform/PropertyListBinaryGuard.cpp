#include "platform/PropertyListBinaryGuard.h"

#include <algorithm>
#include <limits>

#include "platform/Failure.h"

namespace sweepwright::platform {

namespace {

constexpr std::uint64_t kTrailerBytes = 32;
constexpr std::uint64_t kMaximumWidth = 8;

// The upper half of a marker.
constexpr unsigned kSimple = 0x0;
constexpr unsigned kInteger = 0x1;
constexpr unsigned kReal = 0x2;
constexpr unsigned kDate = 0x3;
constexpr unsigned kData = 0x4;
constexpr unsigned kAscii = 0x5;
constexpr unsigned kUtf16 = 0x6;
constexpr unsigned kUid = 0x8;
constexpr unsigned kArray = 0xA;
constexpr unsigned kDictionary = 0xD;

constexpr unsigned kFalse = 0x8;
constexpr unsigned kTrue = 0x9;
constexpr unsigned kLengthFollows = 0xF;
constexpr unsigned kWideInteger = 4;  // 2^4 bytes

bool isContainer(unsigned type) {
    return type == kArray || type == kDictionary;
}
bool isString(unsigned type) {
    return type == kAscii || type == kUtf16;
}

bool isPlainAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return c > '\0'; });
}

/// Whether big-endian UTF-16 holds no NUL and no half of a surrogate pair alone.
bool isPlainUtf16(std::string_view text) {
    bool expectLow = false;
    for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
        const auto high = static_cast<unsigned char>(text[i]);
        const bool low = high >= 0xDCU && high <= 0xDFU;
        if (low != expectLow) return false;
        if (high == 0 && text[i + 1] == '\0') return false;
        expectLow = high >= 0xD8U && high <= 0xDBU;
    }
    return !expectLow;
}

}  // namespace

PropertyListBinaryGuard::PropertyListBinaryGuard(std::string_view bytes,
                                                 const PropertyList::Limits& limits)
    : bytes_(bytes), limits_(limits) {
    limits_.nodes = std::min<std::size_t>(limits_.nodes, std::numeric_limits<std::int32_t>::max());
    limits_.depth = std::min<std::size_t>(limits_.depth, std::numeric_limits<std::int16_t>::max());
}

Result<> PropertyListBinaryGuard::check() {
    if (auto trailer = readTrailer(); !trailer) return trailer;
    if (auto entered = enter(root_); !entered) return entered;
    while (!open_.empty()) {
        if (open_.back().next == open_.back().count) {
            close();
        } else if (auto followed = followNext(); !followed) {
            return followed;
        }
    }
    return {};
}

std::uint64_t PropertyListBinaryGuard::number(std::uint64_t offset, std::uint64_t width) const {
    std::uint64_t value = 0;
    for (const char byte : bytes_.substr(offset, width)) {
        value = (value << 8U) | static_cast<unsigned char>(byte);
    }
    return value;
}

Result<> PropertyListBinaryGuard::readTrailer() {
    if (!bytes_.starts_with(kBinaryListHeader) ||
        bytes_.size() <= kBinaryListHeader.size() + kTrailerBytes) {
        return refuse("not a whole binary property list");
    }
    const std::uint64_t trailer = bytes_.size() - kTrailerBytes;
    offsetWidth_ = number(trailer + 6, 1);
    referenceWidth_ = number(trailer + 7, 1);
    const std::uint64_t objects = number(trailer + 8, 8);
    root_ = number(trailer + 16, 8);
    end_ = number(trailer + 24, 8);
    if (offsetWidth_ == 0 || offsetWidth_ > kMaximumWidth || referenceWidth_ == 0 ||
        referenceWidth_ > kMaximumWidth) {
        return refuse("a binary property list with a damaged trailer");
    }
    if (objects > limits_.nodes) return refuse("a property list of too many values");
    // The widths are at most 8 and the count is within a limit of 31 bits: no product overflows.
    if (end_ <= kBinaryListHeader.size() || end_ > trailer ||
        objects * offsetWidth_ > trailer - end_ || root_ >= objects) {
        return refuse("a binary property list with a damaged trailer");
    }
    costs_.assign(objects, Cost{});
    return {};
}

auto PropertyListBinaryGuard::readObject(std::uint64_t index) const -> Result<Object> {
    const std::uint64_t offset = number(end_ + index * offsetWidth_, offsetWidth_);
    if (offset < kBinaryListHeader.size() || !fits(offset, 1)) {
        return refuse("a binary property list with an offset outside of it");
    }
    const auto marker = static_cast<unsigned>(number(offset, 1));
    Object object{.type = marker >> 4U, .length = marker & 0xFU, .content = offset + 1};
    const bool counted = object.type == kData || isString(object.type) || isContainer(object.type);
    if (!counted || object.length != kLengthFollows) return object;
    // The length follows as an integer object.
    if (!fits(object.content, 1)) return refuse("a truncated binary property list");
    const auto lengthMarker = static_cast<unsigned>(number(object.content, 1));
    const std::uint64_t width = std::uint64_t{1} << (lengthMarker & 0xFU);
    if (lengthMarker >> 4U != kInteger || width > kMaximumWidth ||
        !fits(object.content + 1, width)) {
        return refuse("a binary property list with a damaged length");
    }
    object.length = number(object.content + 1, width);
    object.content += 1 + width;
    return object;
}

Result<> PropertyListBinaryGuard::enter(std::uint64_t index) {
    const auto object = readObject(index);
    if (!object) return std::unexpected(object.error());
    if (isContainer(object->type)) return enterContainer(index, *object);
    const auto bytes = contentBytes(*object);
    if (!bytes) return std::unexpected(bytes.error());
    if (auto checked = checkContent(*object, *bytes); !checked) return checked;
    const Cost cost{.bytes = *bytes, .nodes = 1, .height = 0, .state = State::Done};
    costs_[index] = cost;
    join(cost);
    return count(cost);
}

Result<> PropertyListBinaryGuard::enterContainer(std::uint64_t index, const Object& object) {
    if (open_.size() >= limits_.depth) return refuse("a property list nested too deep");
    const bool dictionary = object.type == kDictionary;
    if (object.length > limits_.nodes) return refuse("a property list of too many values");
    const std::uint64_t references = dictionary ? 2 * object.length : object.length;
    if (!fits(object.content, references * referenceWidth_)) {
        return refuse("a truncated binary property list");
    }
    costs_[index].state = State::Open;
    const Cost own{.bytes = 0, .nodes = 1, .height = 1, .state = State::Open};
    open_.push_back({.index = index,
                     .references = object.content,
                     .count = references,
                     .keys = dictionary ? object.length : 0,
                     .next = 0,
                     .cost = own});
    return count(own);
}

Result<> PropertyListBinaryGuard::followNext() {
    Frame& frame = open_.back();
    const bool key = frame.next < frame.keys;
    const std::uint64_t index =
        number(frame.references + frame.next * referenceWidth_, referenceWidth_);
    ++frame.next;
    if (index >= costs_.size()) {
        return refuse("a binary property list with a reference outside of it");
    }
    if (key) {
        const auto object = readObject(index);
        if (!object) return std::unexpected(object.error());
        if (!isString(object->type)) return refuse("a property list with a key that is no string");
    }
    switch (costs_[index].state) {
        case State::New:
            return enter(index);
        case State::Open:
            return refuse("a property list that contains itself");
        case State::Done:
            break;
    }
    const Cost& cost = costs_[index];
    if (open_.size() + cost.height > limits_.depth) {
        return refuse("a property list nested too deep");
    }
    join(cost);
    return count(cost);
}

/// Adds to the total, which no container gives back: what overlaps in the file is bounded, too.
Result<> PropertyListBinaryGuard::count(const Cost& cost) {
    total_.nodes += cost.nodes;
    total_.bytes += cost.bytes;
    if (total_.nodes > limits_.nodes) return refuse("a property list of too many values");
    if (total_.bytes > limits_.bytes) return refuse("a property list of too many bytes");
    return {};
}

/// Adds to the container in hand, so that it is known what further references to it cost.
void PropertyListBinaryGuard::join(const Cost& cost) {
    if (open_.empty()) return;
    Cost& sum = open_.back().cost;
    sum.nodes += cost.nodes;
    sum.bytes += cost.bytes;
    sum.height = std::max<std::uint16_t>(sum.height, static_cast<std::uint16_t>(cost.height + 1));
}

/// Ends the container in hand.
void PropertyListBinaryGuard::close() {
    const Frame done = open_.back();
    open_.pop_back();
    Cost& cost = costs_[done.index];
    cost = done.cost;
    cost.state = State::Done;
    join(cost);
}

/// How many bytes follow the marker and length of an object that is no container.
Result<std::uint64_t> PropertyListBinaryGuard::contentBytes(const Object& object) const {
    const std::uint64_t length = object.length;
    switch (object.type) {
        case kSimple:
            if (length == kFalse || length == kTrue) return 0;
            break;
        case kInteger:
            if (length <= kWideInteger) return std::uint64_t{1} << length;
            break;
        case kReal:
            if (length == 2 || length == 3) return std::uint64_t{1} << length;
            break;
        case kDate:
            if (length == 3) return 8;
            break;
        case kUid:
            if (length == 0 || length == 1 || length == 3) return length + 1;
            break;
        case kData:
        case kAscii:
            return length;
        case kUtf16:
            if (length <= end_) return 2 * length;
            return refuse("a truncated binary property list");
        default:
            break;
    }
    return refuse("a binary property list with a value of an unknown type");
}

Result<> PropertyListBinaryGuard::checkContent(const Object& object, std::uint64_t bytes) const {
    if (!fits(object.content, bytes)) return refuse("a truncated binary property list");
    const std::string_view content = bytes_.substr(object.content, bytes);
    if ((object.type == kAscii && !isPlainAscii(content)) ||
        (object.type == kUtf16 && !isPlainUtf16(content))) {
        return refuse("a property list with a damaged string");
    }
    if (object.type == kInteger && object.length == kWideInteger &&
        number(object.content, 8) != 0) {
        return refuse("a property list with an integer of more than 64 bits");
    }
    return {};
}

}  // namespace sweepwright::platform
