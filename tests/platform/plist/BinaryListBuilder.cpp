#include "platform/plist/BinaryListBuilder.h"

namespace sweepwright::test {

std::size_t BinaryListBuilder::add(std::string object) {
    offsets_.push_back(objects_.size());
    objects_ += object;
    return offsets_.size() - 1;
}

std::size_t BinaryListBuilder::addAlias(std::size_t index) {
    offsets_.push_back(offsets_[index]);
    return offsets_.size() - 1;
}

std::string BinaryListBuilder::bigEndian(std::uint64_t value, std::size_t width) {
    std::string bytes(width, '\0');
    for (std::size_t at = width; at > 0; value >>= 8U) {
        bytes[--at] = static_cast<char>(value & 0xFFU);
    }
    return bytes;
}

std::string BinaryListBuilder::head(unsigned type, std::uint64_t length) {
    return std::string(1, static_cast<char>(type << 4U | 0xFU)) + "\x13" + bigEndian(length, 8);
}

std::string BinaryListBuilder::array(const std::vector<std::size_t>& items) {
    std::string object = head(0xA, items.size());
    for (const std::size_t item : items)
        object += bigEndian(item, 4);
    return object;
}

std::string BinaryListBuilder::dictionary(const std::vector<std::size_t>& keys,
                                          const std::vector<std::size_t>& values) {
    std::string object = head(0xD, keys.size());
    for (const std::size_t key : keys)
        object += bigEndian(key, 4);
    for (const std::size_t value : values)
        object += bigEndian(value, 4);
    return object;
}

std::string BinaryListBuilder::ascii(std::string_view text) {
    return head(0x5, text.size()) + std::string(text);
}

std::string BinaryListBuilder::utf16(std::u16string_view text) {
    std::string object = head(0x6, text.size());
    for (const char16_t unit : text)
        object += bigEndian(unit, 2);
    return object;
}

std::string BinaryListBuilder::build(const Trailer& trailer) const {
    std::string list = objects_;
    for (const std::size_t offset : offsets_)
        list += bigEndian(offset, 8);
    list.append(6, '\0');
    list += static_cast<char>(trailer.offsetWidth);
    list += static_cast<char>(trailer.referenceWidth);
    list += bigEndian(
        trailer.objects < 0 ? offsets_.size() : static_cast<std::uint64_t>(trailer.objects), 8);
    list += bigEndian(trailer.root, 8);
    list += bigEndian(
        trailer.table < 0 ? objects_.size() : static_cast<std::uint64_t>(trailer.table), 8);
    return list;
}

}  // namespace sweepwright::test
