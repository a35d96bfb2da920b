#include <algorithm>
#include <csetjmp>
#include <cstring>

#include <png.h>

#include "platform/base/Failure.h"
#include "platform/image/Image.h"
#include "platform/image/internal/DevicePng.h"

namespace sweepwright::platform {
namespace {

constexpr std::size_t kPixelBytes = 4;

/// No deflate stream grows by more than this factor; what claims more is a lie.
constexpr std::uint64_t kMaxInflation = 1032;

enum class PngVariant : std::uint8_t { Standard, Device };

/// One reading by libpng. The library leaves an operation that fails by longjmp, so that everything
/// which must be freed lives here, outside the functions that such a jump leaves.
struct Reading {
    Reading(std::string_view input, PngVariant inputVariant)
        : bytes(input), variant(inputVariant) {}
    ~Reading() { png_destroy_read_struct(&reader, &info, nullptr); }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

    std::string_view bytes;
    PngVariant variant;
    std::size_t at = 0;
    png_structp reader = nullptr;
    png_infop info = nullptr;
    char message[128] = "";
};

void keepMessage(Reading& reading, const char* text) {
    std::strncpy(reading.message, text, sizeof reading.message - 1);
}

[[noreturn]] void onError(png_structp reader, png_const_charp text) {
    keepMessage(*static_cast<Reading*>(png_get_error_ptr(reader)), text);
    png_longjmp(reader, 1);
}

void onWarning(png_structp, png_const_charp) {}

void onRead(png_structp reader, png_bytep into, std::size_t count) {
    auto& reading = *static_cast<Reading*>(png_get_io_ptr(reader));
    if (count > reading.bytes.size() - reading.at) png_error(reader, "the file is cut short");
    std::memcpy(into, reading.bytes.data() + reading.at, count);
    reading.at += count;
}

bool start(Reading& reading) {
    reading.reader = png_create_read_struct(PNG_LIBPNG_VER_STRING, &reading, onError, onWarning);
    if (reading.reader != nullptr) reading.info = png_create_info_struct(reading.reader);
    if (reading.info != nullptr) return true;
    keepMessage(reading, "out of memory");
    return false;
}

// From here on no local of these functions may have a destructor.

/// Asks for what is particular to the device's variant, once the header is read.
void expectDeviceVariant(Reading& reading) {
    png_structp const reader = reading.reader;
    if (png_get_bit_depth(reader, reading.info) != 8 ||
        (png_get_color_type(reader, reading.info) & ~PNG_COLOR_MASK_ALPHA) != PNG_COLOR_TYPE_RGB) {
        png_error(reader, "the device's variant holds RGB or RGBA of 8 bits only");
    }
    png_set_option(reader, PNG_IGNORE_ADLER32, PNG_OPTION_ON);
    png_set_bgr(reader);
}

/// Reads up to the first pixel and asks for 8-bit RGBA.
bool readHeader(Reading& reading) {
    png_structp const reader = reading.reader;
    if (setjmp(png_jmpbuf(reader)) != 0) return false;
    png_set_read_fn(reader, &reading, onRead);
    // None of libpng's own: the picture's size is checked by refusal().
    png_set_user_limits(reader, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_chunk_cache_max(reader, 64);
    png_set_chunk_malloc_max(reader, png_alloc_size_t{1} << 20U);
    // All optional chunks but transparency are skipped, which spares inflating profiles and texts
    // that a stranger wrote.
    png_set_keep_unknown_chunks(reader, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_set_crc_action(reader, PNG_CRC_DEFAULT, PNG_CRC_ERROR_QUIT);
    png_read_info(reader, reading.info);
    if (reading.variant == PngVariant::Device) expectDeviceVariant(reading);
    png_set_expand(reader);
    png_set_scale_16(reader);
    png_set_gray_to_rgb(reader);
    png_set_add_alpha(reader, 0xFF, PNG_FILLER_AFTER);
    return true;
}

/// Reads all pixels into `rgba`, which holds `height` rows of `rowBytes`, and the file's end.
bool readRows(Reading& reading, std::uint8_t* rgba, std::uint32_t height, std::size_t rowBytes) {
    png_structp const reader = reading.reader;
    if (setjmp(png_jmpbuf(reader)) != 0) return false;
    const int passes = png_set_interlace_handling(reader);
    png_read_update_info(reader, reading.info);
    if (png_get_rowbytes(reader, reading.info) != rowBytes) {
        png_error(reader, "unexpected pixel format");
    }
    for (int pass = 0; pass < passes; ++pass) {
        for (std::uint32_t row = 0; row < height; ++row) {
            png_read_row(reader, rgba + row * rowBytes, nullptr);
        }
    }
    png_read_end(reader, nullptr);
    return true;
}

/// Why the picture in hand is refused before memory is taken for it; empty when it may be read.
std::string_view refusal(const Reading& reading) {
    const std::uint64_t width = png_get_image_width(reading.reader, reading.info);
    const std::uint64_t height = png_get_image_height(reading.reader, reading.info);
    const std::uint64_t bits = std::uint64_t{png_get_bit_depth(reading.reader, reading.info)} *
                               png_get_channels(reading.reader, reading.info);
    if (width > kMaxImageSide || height > kMaxImageSide) return "the picture is too large";
    if (width * height * bits / 8 > reading.bytes.size() * kMaxInflation) {
        return "the file is too short for its pixels";
    }
    return {};
}

/// The colour that, multiplied by `alpha`, was stored as `value`.
std::uint8_t unmultiplied(std::uint8_t value, std::uint8_t alpha) {
    if (alpha == 255) return value;
    if (alpha == 0) return 0;
    return static_cast<std::uint8_t>(
        std::min<unsigned>(255U, (unsigned{value} * 255U + alpha / 2U) / alpha));
}

Result<Image> decodeAs(PngVariant variant, std::string_view bytes) {
    Reading reading(bytes, variant);
    if (!start(reading) || !readHeader(reading)) return refuse(reading.message);
    if (const auto why = refusal(reading); !why.empty()) return refuse(why);

    Image image{.width = png_get_image_width(reading.reader, reading.info),
                .height = png_get_image_height(reading.reader, reading.info),
                .rgba = {}};
    const std::size_t rowBytes = image.width * kPixelBytes;
    image.rgba.resize(rowBytes * image.height);
    if (!readRows(reading, image.rgba.data(), image.height, rowBytes)) {
        return refuse(reading.message);
    }
    if (variant == PngVariant::Standard) return image;
    for (auto pixel = image.rgba.begin(); pixel != image.rgba.end(); pixel += kPixelBytes) {
        std::for_each_n(pixel, 3, [alpha = pixel[3]](std::uint8_t& value) {
            value = unmultiplied(value, alpha);
        });
    }
    return image;
}

}  // namespace

Result<Image> decode(std::string_view bytes) {
    if (bytes.size() > kMaxImageBytes) return refuse("the picture's file is too long");
    if (!bytes.starts_with(png::kSignature)) return refuse("not a PNG file");
    if (!png::isDeviceVariant(bytes)) return decodeAs(PngVariant::Standard, bytes);
    const auto standard = png::standardFromDevice(bytes);
    if (!standard) return std::unexpected(standard.error());
    return decodeAs(PngVariant::Device, *standard);
}

}  // namespace sweepwright::platform
