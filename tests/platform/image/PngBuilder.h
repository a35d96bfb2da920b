#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sweepwright::test {

/// Puts PNG files together piece by piece, right or wrong, independently of the product's writer.
class PngBuilder {
  public:
    /// Begins with the signature.
    PngBuilder();

    PngBuilder& chunk(std::string_view type, std::string_view data);
    /// The chunk that marks the device's variant.
    PngBuilder& deviceMark() { return chunk("CgBI", std::string_view("\x50\x00\x20\x02", 4)); }
    PngBuilder& header(std::uint32_t width, std::uint32_t height, int depth, int colour,
                       int interlaced = 0);
    PngBuilder& end() { return chunk("IEND", {}); }

    [[nodiscard]] const std::string& bytes() const { return bytes_; }

  private:
    std::string bytes_;
};

/// `data` deflated with zlib's frame, and without it.
std::string zlibStream(std::string_view data);
std::string rawStream(std::string_view data);

/// Rows of `rowBytes` bytes each, filtered: row y through filter filters[y % size].
std::string filteredRows(std::string_view rows, std::size_t rowBytes, std::size_t pixelBytes,
                         const std::vector<int>& filters);

/// The rows of the seven grids of an interlaced picture, every row through `filter`.
std::string interlacedRows(std::string_view rows, std::size_t width, std::size_t pixelBytes,
                           int filter);

}  // namespace sweepwright::test
