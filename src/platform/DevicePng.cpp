#include <algorithm>
#include <array>
#include <optional>

#include <zlib.h>

#include "platform/Failure.h"
#include "platform/PngFormat.h"

namespace sweepwright::platform::png {
namespace {

constexpr std::size_t kHeaderBytes = 13;
constexpr std::size_t kChunkFrame = 12;  // length, type, checksum

struct Chunk {
    std::string_view type;
    std::string_view data;
};

/// Takes the next chunk off `rest`; an error when it is cut short or its checksum is wrong.
Result<Chunk> takeChunk(std::string_view& rest) {
    if (rest.size() < kChunkFrame) return refuse("the file is cut short");
    const std::size_t length = readBig32(rest, 0);
    if (length > rest.size() - kChunkFrame) return refuse("the file is cut short");
    const std::string_view covered = rest.substr(4, 4 + length);
    const uLong sum = crc32_z(0, reinterpret_cast<const Bytef*>(covered.data()), covered.size());
    if (sum != readBig32(rest, 8 + length)) return refuse("a checksum is wrong");
    rest.remove_prefix(kChunkFrame + length);
    return Chunk{covered.substr(0, 4), covered.substr(4)};
}

struct Header {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::size_t channels = 0;
    bool interlaced = false;
};

Result<Header> readHeader(const Chunk& chunk, std::size_t fileBytes) {
    if (chunk.type != "IHDR" || chunk.data.size() != kHeaderBytes) return refuse("no header");
    const auto byte = [&](std::size_t at) { return static_cast<std::uint8_t>(chunk.data[at]); };
    const std::uint8_t colour = byte(9);
    if (byte(8) != 8 || (colour != kColourRgb && colour != kColourRgba)) {
        return refuse("the device's variant holds RGB or RGBA of 8 bits only");
    }
    if (byte(10) != 0 || byte(11) != 0 || byte(12) > 1) return refuse("unknown coding");
    const Header header{readBig32(chunk.data, 0), readBig32(chunk.data, 4),
                        colour == kColourRgba ? std::size_t{4} : std::size_t{3}, byte(12) == 1};
    const auto bits = static_cast<unsigned>(header.channels * 8);
    if (const auto why = refusal(header.width, header.height, bits, fileBytes); !why.empty()) {
        return refuse(why);
    }
    return header;
}

/// One of the grids of pixels a picture is sent in: a single one, or the seven of an interlaced
/// file.
struct Grid {
    std::uint32_t left = 0;
    std::uint32_t top = 0;
    std::uint32_t stepX = 1;
    std::uint32_t stepY = 1;

    [[nodiscard]] std::size_t columns(const Header& header) const {
        return header.width <= left ? 0 : (header.width - left + stepX - 1) / stepX;
    }
    [[nodiscard]] std::size_t rows(const Header& header) const {
        return header.height <= top ? 0 : (header.height - top + stepY - 1) / stepY;
    }
    /// Bytes of a row, its leading filter type not counted.
    [[nodiscard]] std::size_t rowBytes(const Header& header) const {
        return columns(header) * header.channels;
    }
    [[nodiscard]] std::size_t bytes(const Header& header) const {
        return columns(header) == 0 ? 0 : rows(header) * (rowBytes(header) + 1);
    }
};

constexpr std::array<Grid, 1> kWhole{{{0, 0, 1, 1}}};
constexpr std::array<Grid, 7> kInterlaced{{{0, 0, 8, 8},
                                           {4, 0, 8, 8},
                                           {0, 4, 4, 8},
                                           {2, 0, 4, 4},
                                           {0, 2, 2, 4},
                                           {1, 0, 2, 2},
                                           {0, 1, 1, 2}}};

std::span<const Grid> gridsOf(const Header& header) {
    if (header.interlaced) return kInterlaced;
    return kWhole;
}

/// Inflates a raw deflate stream that is handed over in pieces into a buffer of fixed size.
class RawInflater {
  public:
    explicit RawInflater(std::span<std::uint8_t> out)
        : ready_(inflateInit2(&stream_, -MAX_WBITS) == Z_OK) {
        stream_.next_out = out.data();
        stream_.avail_out = static_cast<uInt>(out.size());
    }
    ~RawInflater() { inflateEnd(&stream_); }
    RawInflater(const RawInflater&) = delete;
    RawInflater& operator=(const RawInflater&) = delete;

    /// False when the stream is damaged. What follows the stream's or the buffer's end is ignored.
    bool take(std::string_view piece) {
        if (!ready_) return false;
        if (ended_ || full()) return true;
        // zlib's field lacks the const that its contract keeps.
        stream_.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(piece.data()));
        stream_.avail_in = static_cast<uInt>(piece.size());
        const int outcome = inflate(&stream_, Z_NO_FLUSH);
        ended_ = outcome == Z_STREAM_END;
        return ended_ || outcome == Z_OK || outcome == Z_BUF_ERROR;
    }
    [[nodiscard]] bool full() const { return stream_.avail_out == 0; }

  private:
    z_stream stream_{};
    bool ready_;
    bool ended_ = false;
};

using Row = std::span<std::uint8_t>;
using RowAbove = std::span<const std::uint8_t>;

/// Adds to each byte of a row what `predict` foretells from its left, upper and upper left
/// neighbours, which are 0 beyond the edge.
template <class Predict>
void addPredicted(Row row, RowAbove above, std::size_t channels, Predict predict) {
    constexpr std::uint8_t kNone = 0;
    for (std::size_t i = 0; i < channels; ++i) {
        row[i] = static_cast<std::uint8_t>(row[i] + predict(kNone, above[i], kNone));
    }
    for (std::size_t i = channels; i < row.size(); ++i) {
        row[i] = static_cast<std::uint8_t>(
            row[i] + predict(row[i - channels], above[i], above[i - channels]));
    }
}

/// Undoes one row's filter in place; false when there is no such filter. `above` is the row above,
/// already undone, or as many zeros.
bool unfilter(std::uint8_t filter, Row row, RowAbove above, std::size_t channels) {
    using Byte = std::uint8_t;
    switch (filter) {
        case 0:
            return true;
        case 1:
            addPredicted(row, above, channels, [](Byte left, Byte, Byte) { return left; });
            return true;
        case 2:
            addPredicted(row, above, channels, [](Byte, Byte up, Byte) { return up; });
            return true;
        case 3:
            addPredicted(row, above, channels, [](Byte left, Byte up, Byte) {
                return static_cast<Byte>((left + up) / 2);
            });
            return true;
        case 4:
            addPredicted(row, above, channels, paeth);
            return true;
        default:
            return false;
    }
}

/// The colour that, multiplied by `alpha`, was stored as `value`.
std::uint8_t unmultiplied(std::uint8_t value, std::uint8_t alpha) {
    if (alpha == 255) return value;
    if (alpha == 0) return 0;
    return static_cast<std::uint8_t>(
        std::min<unsigned>(255U, (unsigned{value} * 255U + alpha / 2U) / alpha));
}

/// Turns one stored pixel (blue, green, red and perhaps alpha) into one of ours.
void putPixel(std::span<const std::uint8_t> stored, std::span<std::uint8_t, kPixelBytes> pixel) {
    const std::uint8_t alpha = stored.size() == kPixelBytes ? stored[3] : std::uint8_t{255};
    pixel[0] = unmultiplied(stored[2], alpha);
    pixel[1] = unmultiplied(stored[1], alpha);
    pixel[2] = unmultiplied(stored[0], alpha);
    pixel[3] = alpha;
}

/// Undoes the filters of one grid, whose filtered rows are `data`, and puts its pixels in place.
bool placeGrid(const Grid& grid, const Header& header, std::span<std::uint8_t> data, Image& image) {
    const std::size_t rowBytes = grid.rowBytes(header);
    const std::vector<std::uint8_t> nothingAbove(rowBytes);
    RowAbove above = nothingAbove;
    for (std::size_t row = 0; row < grid.rows(header); ++row) {
        const std::uint8_t filter = data[row * (rowBytes + 1)];
        const auto current = data.subspan(row * (rowBytes + 1) + 1, rowBytes);
        if (!unfilter(filter, current, above, header.channels)) return false;
        above = current;
        const std::size_t y = grid.top + row * grid.stepY;
        for (std::size_t column = 0; column < grid.columns(header); ++column) {
            const std::size_t x = grid.left + column * grid.stepX;
            const auto pixel = std::span(image.rgba)
                                   .subspan((y * header.width + x) * kPixelBytes)
                                   .first<kPixelBytes>();
            putPixel(current.subspan(column * header.channels, header.channels), pixel);
        }
    }
    return true;
}

Result<Image> imageFrom(const Header& header, std::span<std::uint8_t> data) {
    Image image{header.width, header.height, {}};
    image.rgba.resize(std::size_t{header.width} * header.height * kPixelBytes);
    for (const Grid& grid : gridsOf(header)) {
        const std::size_t bytes = grid.bytes(header);
        if (bytes == 0) continue;
        if (!placeGrid(grid, header, data.first(bytes), image)) return refuse("unknown filter");
        data = data.subspan(bytes);
    }
    return image;
}

/// Inflates the data chunks of `rest` into `data` and goes on to the end chunk.
std::optional<Error> inflateChunks(std::string_view rest, std::span<std::uint8_t> data) {
    RawInflater inflater(data);
    for (;;) {
        const auto chunk = takeChunk(rest);
        if (!chunk) return chunk.error();
        if (chunk->type == "IEND") break;
        if (chunk->type == "IDAT" && !inflater.take(chunk->data)) {
            return formatError("", "the pixels' stream is damaged");
        }
    }
    if (!inflater.full()) return formatError("", "pixels are missing");
    return std::nullopt;
}

}  // namespace

Result<Image> decodeDevicePng(std::string_view bytes) {
    std::string_view rest = bytes.substr(kSignature.size());
    const auto mark = takeChunk(rest);
    if (!mark) return std::unexpected(mark.error());
    const auto first = takeChunk(rest);
    if (!first) return std::unexpected(first.error());
    const auto header = readHeader(*first, bytes.size());
    if (!header) return std::unexpected(header.error());

    std::size_t total = 0;
    for (const Grid& grid : gridsOf(*header))
        total += grid.bytes(*header);
    std::vector<std::uint8_t> data(total);
    if (auto error = inflateChunks(rest, data)) return std::unexpected(std::move(*error));
    return imageFrom(*header, data);
}

}  // namespace sweepwright::platform::png
