#include "platform/image/PngBuilder.h"

#include <array>
#include <cstdlib>

#include <zlib.h>

namespace sweepwright::test {
namespace {

std::string big32(std::uint32_t value) {
    std::string out;
    for (int shift = 24; shift >= 0; shift -= 8)
        out += static_cast<char>(value >> shift & 0xFFU);
    return out;
}

std::string deflated(std::string_view data, int windowBits) {
    z_stream stream{};
    if (deflateInit2(&stream, 9, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        std::abort();
    std::string in(data);
    std::string out(deflateBound(&stream, in.size()) + 64, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(in.data());
    stream.avail_in = static_cast<uInt>(in.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    if (deflate(&stream, Z_FINISH) != Z_STREAM_END) std::abort();
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

int predictor(int filter, int left, int above, int corner) {
    if (filter == 0) return 0;
    if (filter == 1) return left;
    if (filter == 2) return above;
    if (filter == 3) return (left + above) / 2;
    const int estimate = left + above - corner;
    const std::array<int, 3> far{std::abs(estimate - left), std::abs(estimate - above),
                                 std::abs(estimate - corner)};
    if (far[0] <= far[1] && far[0] <= far[2]) return left;
    return far[1] <= far[2] ? above : corner;
}

}  // namespace

PngBuilder::PngBuilder() : bytes_("\x89PNG\r\n\x1a\n", 8) {}

PngBuilder& PngBuilder::chunk(std::string_view type, std::string_view data) {
    std::string covered(type);
    covered += data;
    const uLong sum =
        crc32(0, reinterpret_cast<const Bytef*>(covered.data()), static_cast<uInt>(covered.size()));
    bytes_ += big32(static_cast<std::uint32_t>(data.size())) + covered +
              big32(static_cast<std::uint32_t>(sum));
    return *this;
}

PngBuilder& PngBuilder::header(std::uint32_t width, std::uint32_t height, int depth, int colour,
                               int interlaced) {
    std::string data = big32(width) + big32(height);
    for (const int value : {depth, colour, 0, 0, interlaced})
        data += static_cast<char>(value);
    return chunk("IHDR", data);
}

std::string zlibStream(std::string_view data) {
    return deflated(data, MAX_WBITS);
}
std::string rawStream(std::string_view data) {
    return deflated(data, -MAX_WBITS);
}

std::string filteredRows(std::string_view rows, std::size_t rowBytes, std::size_t pixelBytes,
                         const std::vector<int>& filters) {
    std::string out;
    const auto at = [&](std::size_t y, std::size_t x, std::size_t up, std::size_t left) {
        if (y < up || x < left) return 0;
        return static_cast<int>(static_cast<std::uint8_t>(rows[(y - up) * rowBytes + x - left]));
    };
    for (std::size_t y = 0; y * rowBytes < rows.size(); ++y) {
        const int filter = filters[y % filters.size()];
        out += static_cast<char>(filter);
        for (std::size_t x = 0; x < rowBytes; ++x) {
            const int guess =
                predictor(filter, at(y, x, 0, pixelBytes), at(y, x, 1, 0), at(y, x, 1, pixelBytes));
            out += static_cast<char>(static_cast<std::uint8_t>(at(y, x, 0, 0) - guess));
        }
    }
    return out;
}

std::string interlacedRows(std::string_view rows, std::size_t width, std::size_t pixelBytes,
                           int filter) {
    // Which of the seven grids sends a pixel, by its place in a square of eight.
    constexpr std::array<std::string_view, 8> kGridOfPixel{"16462646", "77777777", "56565656",
                                                           "77777777", "36463646", "77777777",
                                                           "56565656", "77777777"};
    const std::size_t height = rows.size() / (width * pixelBytes);
    std::string out;
    for (char grid = '1'; grid <= '7'; ++grid) {
        std::string sent;
        std::size_t rowBytes = 0;
        for (std::size_t y = 0; y < height; ++y) {
            std::string row;
            for (std::size_t x = 0; x < width; ++x) {
                if (kGridOfPixel[y % 8][x % 8] != grid) continue;
                row += rows.substr((y * width + x) * pixelBytes, pixelBytes);
            }
            if (!row.empty()) rowBytes = row.size();
            sent += row;
        }
        if (!sent.empty()) out += filteredRows(sent, rowBytes, pixelBytes, {filter});
    }
    return out;
}

}  // namespace sweepwright::test
