#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sweepwright::test {

/// Puts binary property lists together object by object, wrong ones included. References are four
/// bytes wide, offsets eight.
class BinaryListBuilder {
  public:
    /// What the last 32 bytes say; what is left unset is told as it is.
    struct Trailer {
        std::uint8_t offsetWidth = 8;
        std::uint8_t referenceWidth = 4;
        std::int64_t objects = -1;
        std::uint64_t root = 0;
        std::int64_t table = -1;
    };

    /// Adds an object, marker included, and answers its index.
    std::size_t add(std::string object);
    /// Adds an object that lies where another does.
    std::size_t addAlias(std::size_t index);

    static std::string array(const std::vector<std::size_t>& items);
    static std::string dictionary(const std::vector<std::size_t>& keys,
                                  const std::vector<std::size_t>& values);
    static std::string ascii(std::string_view text);
    static std::string utf16(std::u16string_view text);
    /// A marker of `type` with a claimed length of eight bytes.
    static std::string head(unsigned type, std::uint64_t length);
    static std::string bigEndian(std::uint64_t value, std::size_t width);

    [[nodiscard]] std::string build() const { return build(Trailer()); }
    [[nodiscard]] std::string build(const Trailer& trailer) const;

  private:
    std::string objects_ = "bplist00";
    std::vector<std::size_t> offsets_;
};

}  // namespace sweepwright::test
