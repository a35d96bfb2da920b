// Any bytes as a picture. An input is a file, or, when it begins with a byte that no picture begins
// with, the measures and filtered rows of one: those are put into files of both variants, so that
// what lies behind checksums and deflate is reached, too, and the variants are compared.
#include <algorithm>
#include <string>
#include <vector>

#include <zlib.h>

#include "fuzz/Target.h"
#include "platform/image/Image.h"
#include "platform/image/PngBuilder.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

using sweepwright::fuzz::require;
using namespace sweepwright;

constexpr std::size_t kSignatureBytes = 8;
constexpr std::size_t kFrameBytes = 12;  // of a chunk: length, type, checksum

void checkPicture(const platform::Image& image) {
    require(!image.empty(), "a picture has pixels");
    require(image.width <= platform::kMaxImageSide && image.height <= platform::kMaxImageSide,
            "a picture keeps the limits");
    require(image.rgba.size() == std::size_t{image.width} * image.height * 4,
            "a picture has four bytes a pixel");
}

void checkFile(std::string_view bytes) {
    const auto image = platform::decode(bytes);
    if (!image) return;
    checkPicture(*image);
    const auto standard = platform::encodePng(*image);
    require(standard.has_value(), "what was read can be written");
    require(platform::decode(*standard) == image, "a picture survives the standard file");
    const auto device = platform::encodeDevicePng(*image);
    require(device.has_value(), "what was read can be written for the device");
    const auto rounded = platform::decode(*device);
    require(rounded.has_value(), "a written device picture can be read");
    checkPicture(*rounded);
    const auto again = platform::encodeDevicePng(*rounded);
    require(again && platform::decode(*again) == rounded, "colours are rounded once only");
    for (std::size_t at = 0; at < image->rgba.size(); at += 4) {
        const std::uint8_t alpha = image->rgba[at + 3];
        require(rounded->rgba[at + 3] == alpha, "alpha survives the device's variant");
        if (alpha != 255) continue;
        require(std::equal(&image->rgba[at], &image->rgba[at] + 3, &rounded->rgba[at]),
                "an opaque pixel survives the device's variant");
    }
}

/// Bytes of all filtered rows of a picture of three bytes a pixel.
std::size_t filteredBytes(std::size_t width, std::size_t height, bool interlaced) {
    if (!interlaced) return height * (width * 3 + 1);
    struct Grid {
        std::size_t left, top, stepX, stepY;
    };
    constexpr Grid kGrids[] = {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4},
                               {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}};
    std::size_t bytes = 0;
    for (const Grid& grid : kGrids) {
        if (width <= grid.left || height <= grid.top) continue;
        const std::size_t columns = (width - grid.left + grid.stepX - 1) / grid.stepX;
        const std::size_t rows = (height - grid.top + grid.stepY - 1) / grid.stepY;
        bytes += rows * (columns * 3 + 1);
    }
    return bytes;
}

/// Both variants have the same filters; they differ in the order of colours only.
void checkRows(std::string_view input) {
    if (input.size() < 3) return;
    const auto byte = [&](std::size_t at) { return static_cast<std::uint8_t>(input[at]); };
    const std::uint32_t width = byte(0) % 20U + 1;
    const std::uint32_t height = byte(1) % 20U + 1;
    const bool interlaced = byte(2) % 2 == 1;
    std::string rows(input.substr(3));
    rows.resize(filteredBytes(width, height, interlaced));
    const std::string standard = test::PngBuilder()
                                     .header(width, height, 8, 2, interlaced ? 1 : 0)
                                     .chunk("IDAT", test::zlibStream(rows))
                                     .end()
                                     .bytes();
    const std::string device = test::PngBuilder()
                                   .deviceMark()
                                   .header(width, height, 8, 2, interlaced ? 1 : 0)
                                   .chunk("IDAT", test::rawStream(rows))
                                   .end()
                                   .bytes();
    const auto one = platform::decode(standard);
    auto two = platform::decode(device);
    require(one.has_value() == two.has_value(), "both variants take the same rows");
    if (!one) return;
    for (std::size_t at = 0; at < two->rgba.size(); at += 4)
        std::swap(two->rgba[at], two->rgba[at + 2]);
    require(*one == *two, "both variants show the same pixels");
    checkFile(device);
}

std::size_t big32(const std::uint8_t* bytes) {
    return std::size_t{bytes[0]} << 24U | std::size_t{bytes[1]} << 16U |
           std::size_t{bytes[2]} << 8U | bytes[3];
}

/// Sets the checksum of every whole chunk right.
void mendChecksums(std::uint8_t* data, std::size_t size) {
    for (std::size_t at = kSignatureBytes; at + kFrameBytes <= size;) {
        const std::size_t length = big32(data + at);
        if (length > size - at - kFrameBytes) return;
        const uLong sum = crc32(0, data + at + 4, static_cast<uInt>(length + 4));
        for (std::size_t i = 0; i < 4; ++i)
            data[at + 8 + length + i] = static_cast<std::uint8_t>(sum >> (24 - 8 * i));
        at += kFrameBytes + length;
    }
}

}  // namespace

/// Most changed files would only fail a checksum.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned int seed) {
    const std::size_t changed = LLVMFuzzerMutate(data, size, maxSize);
    if (seed % 8 != 0) mendChecksums(data, changed);
    return changed;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input = fuzz::asText(data, size);
    if (input.starts_with('R')) {
        checkRows(input.substr(1));
    } else {
        checkFile(input);
    }
    return 0;
}
