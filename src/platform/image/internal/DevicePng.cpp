#include "platform/image/internal/DevicePng.h"

#include <optional>

#include <zlib.h>

#include "platform/base/Failure.h"

namespace sweepwright::platform::png {
namespace {

constexpr std::string_view kDeviceMark = "CgBI";
constexpr std::string_view kPixels = "IDAT";

/// Tells the device's graphics library: alpha first in a little-endian word, colours multiplied.
constexpr std::string_view kDeviceFormat("\x50\x00\x20\x02", 4);

// The frame of a zlib stream: a window of 32 KiB, and where the checksum of the pixels stands.
constexpr std::string_view kZlibHeader("\x78\x01", 2);
constexpr std::string_view kZlibTrailer("\0\0\0\0", 4);

constexpr std::size_t kChunkFrame = 12;  // length, type, checksum

std::uint32_t readBig32(std::string_view bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (const char byte : bytes.substr(at, 4))
        value = value << 8U | static_cast<unsigned char>(byte);
    return value;
}

void appendBig32(std::string& out, std::uint32_t value) {
    for (const unsigned shift : {24U, 16U, 8U, 0U})
        out += static_cast<char>(value >> shift & 0xFFU);
}

/// Of a chunk's type and data.
std::uint32_t checksum(std::string_view bytes) {
    const uLong sum = crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
    return static_cast<std::uint32_t>(sum);
}

struct Chunk {
    std::string_view bytes;  ///< all of it

    [[nodiscard]] std::string_view type() const { return bytes.substr(4, 4); }
    [[nodiscard]] std::string_view data() const {
        return bytes.substr(8, bytes.size() - kChunkFrame);
    }
};

/// Takes the next chunk off `rest`; none when it is cut short.
std::optional<Chunk> takeChunk(std::string_view& rest) {
    if (rest.size() < kChunkFrame) return std::nullopt;
    const std::size_t length = readBig32(rest, 0);
    if (length > rest.size() - kChunkFrame) return std::nullopt;
    const Chunk chunk{rest.substr(0, kChunkFrame + length)};
    rest.remove_prefix(chunk.bytes.size());
    return chunk;
}

void appendChunk(std::string& out, std::string_view type, std::string_view data) {
    appendBig32(out, static_cast<std::uint32_t>(data.size()));
    const std::size_t covered = out.size();
    out.append(type).append(data);
    appendBig32(out, checksum(std::string_view(out).substr(covered)));
}

}  // namespace

bool isDeviceVariant(std::string_view bytes) {
    constexpr std::size_t kFirstType = kSignature.size() + 4;
    return bytes.starts_with(kSignature) && bytes.size() >= kFirstType + kDeviceMark.size() &&
           bytes.substr(kFirstType).starts_with(kDeviceMark);
}

Result<std::string> standardFromDevice(std::string_view device) {
    std::string_view rest = device.substr(kSignature.size());
    const auto mark = takeChunk(rest);
    if (!mark) return refuse("the file is cut short");
    const std::size_t end = mark->bytes.size() - 4;
    if (checksum(mark->bytes.substr(4, end - 4)) != readBig32(mark->bytes, end)) {
        return refuse("a checksum is wrong");
    }
    std::string standard(kSignature);
    bool inPixels = false;
    while (const auto chunk = takeChunk(rest)) {
        const bool pixels = chunk->type() == kPixels;
        if (pixels && !inPixels) appendChunk(standard, kPixels, kZlibHeader);
        if (!pixels && inPixels) appendChunk(standard, kPixels, kZlibTrailer);
        standard += chunk->bytes;
        inPixels = pixels;
    }
    return standard;
}

std::string deviceFromStandard(std::string_view standard) {
    std::string_view rest = standard.substr(kSignature.size());
    std::string device(kSignature);
    appendChunk(device, kDeviceMark, kDeviceFormat);
    std::string stream;
    while (const auto chunk = takeChunk(rest)) {
        if (chunk->type() == "IHDR") device += chunk->bytes;
        if (chunk->type() == kPixels) stream += chunk->data();
    }
    stream.resize(stream.size() - kZlibTrailer.size());
    appendChunk(device, kPixels, std::string_view(stream).substr(kZlibHeader.size()));
    appendChunk(device, "IEND", {});
    return device;
}

}  // namespace sweepwright::platform::png
