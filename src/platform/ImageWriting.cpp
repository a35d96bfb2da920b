#include <algorithm>
#include <array>
#include <limits>

#include <zlib.h>

#include "platform/Failure.h"
#include "platform/Image.h"
#include "platform/PngFormat.h"

namespace sweepwright::platform {
namespace {

using Bytes = std::vector<std::uint8_t>;

void appendBig32(std::string& out, std::uint32_t value) {
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        out += static_cast<char>(static_cast<std::uint8_t>(value >> shift));
    }
}

void appendChunk(std::string& out, std::string_view type, std::string_view data) {
    appendBig32(out, static_cast<std::uint32_t>(data.size()));
    const std::size_t covered = out.size();
    out += type;
    out += data;
    const uLong sum =
        crc32_z(0, reinterpret_cast<const Bytef*>(out.data() + covered), out.size() - covered);
    appendBig32(out, static_cast<std::uint32_t>(sum));
}

std::string header(const Image& image) {
    std::string data;
    appendBig32(data, image.width);
    appendBig32(data, image.height);
    data += '\x08';  // bits a channel
    data += static_cast<char>(png::kColourRgba);
    data.append(3, '\0');  // deflate, the one set of filters, not interlaced
    return data;
}

/// The picture's pixels as the device's variant stores them.
Bytes deviceOrder(const Bytes& rgba) {
    Bytes out(rgba.size());
    for (std::size_t i = 0; i < rgba.size(); i += png::kPixelBytes) {
        const unsigned alpha = rgba[i + 3];
        const auto multiplied = [&](std::uint8_t value) {
            return static_cast<std::uint8_t>((value * alpha + 127U) / 255U);
        };
        out[i] = multiplied(rgba[i + 2]);
        out[i + 1] = multiplied(rgba[i + 1]);
        out[i + 2] = multiplied(rgba[i]);
        out[i + 3] = static_cast<std::uint8_t>(alpha);
    }
    return out;
}

/// One row through filter `type`, preceded by its number.
void filterRow(std::uint8_t type, std::span<const std::uint8_t> row,
               std::span<const std::uint8_t> above, Bytes& out) {
    out.clear();
    out.push_back(type);
    for (std::size_t i = 0; i < row.size(); ++i) {
        const bool first = i < png::kPixelBytes;
        const std::uint8_t left = first ? std::uint8_t{0} : row[i - png::kPixelBytes];
        const std::uint8_t up = above[i];
        const std::uint8_t corner = first ? std::uint8_t{0} : above[i - png::kPixelBytes];
        const std::array<unsigned, 5> predicted{0U, left, up, (unsigned{left} + up) / 2,
                                                png::paeth(left, up, corner)};
        out.push_back(static_cast<std::uint8_t>(row[i] - predicted[type]));
    }
}

/// How far a filtered row is from all zero; the smaller, the better it deflates as a rule.
std::uint64_t roughness(const Bytes& filtered) {
    std::uint64_t sum = 0;
    for (std::size_t i = 1; i < filtered.size(); ++i) {
        sum += std::min<unsigned>(filtered[i], 256U - filtered[i]);
    }
    return sum;
}

/// All rows, each through the filter that leaves the least.
Bytes filtered(const Image& image, std::span<const std::uint8_t> pixels) {
    const std::size_t rowBytes = image.width * png::kPixelBytes;
    const Bytes nothingAbove(rowBytes);
    std::span<const std::uint8_t> above = nothingAbove;
    Bytes out;
    out.reserve((rowBytes + 1) * image.height);
    Bytes candidate;
    Bytes best;
    for (std::uint32_t y = 0; y < image.height; ++y) {
        const auto row = pixels.subspan(y * rowBytes, rowBytes);
        std::uint64_t least = std::numeric_limits<std::uint64_t>::max();
        for (std::uint8_t type = 0; type <= 4; ++type) {
            filterRow(type, row, above, candidate);
            const std::uint64_t rough = roughness(candidate);
            if (rough >= least) continue;
            least = rough;
            best.swap(candidate);
        }
        out.insert(out.end(), best.begin(), best.end());
        above = row;
    }
    return out;
}

/// `data` deflated; with negative `windowBits` without zlib's frame. Empty when memory is short.
std::string deflated(Bytes& data, int windowBits) {
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, windowBits, 8,
                     Z_DEFAULT_STRATEGY) != Z_OK) {
        return {};
    }
    std::string out(deflateBound(&stream, static_cast<uLong>(data.size())), '\0');
    stream.next_in = data.data();
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    const int outcome = deflate(&stream, Z_FINISH);
    out.resize(outcome == Z_STREAM_END ? stream.total_out : 0);
    deflateEnd(&stream);
    return out;
}

enum class Variant { Standard, Device };

Result<std::string> encode(const Image& image, Variant variant) {
    if (image.empty() || image.width > kMaxImageSide || image.height > kMaxImageSide ||
        image.rgba.size() != std::size_t{image.width} * image.height * png::kPixelBytes) {
        return refuse("the picture's sides and bytes don't fit");
    }
    const bool device = variant == Variant::Device;
    Bytes data = device ? filtered(image, deviceOrder(image.rgba)) : filtered(image, image.rgba);
    const std::string stream = deflated(data, device ? -MAX_WBITS : MAX_WBITS);
    if (stream.empty()) return refuse("out of memory");

    std::string out(png::kSignature);
    // The mark's four bytes tell the device's graphics library: alpha first in a little-endian
    // word, colours multiplied by it.
    if (device) appendChunk(out, png::kDeviceMark, std::string_view("\x50\x00\x20\x02", 4));
    appendChunk(out, "IHDR", header(image));
    appendChunk(out, "IDAT", stream);
    appendChunk(out, "IEND", {});
    return out;
}

}  // namespace

Result<std::string> encodePng(const Image& image) {
    return encode(image, Variant::Standard);
}

Result<std::string> encodeDevicePng(const Image& image) {
    return encode(image, Variant::Device);
}

}  // namespace sweepwright::platform
