#include <csetjmp>
#include <cstring>

#include <png.h>

#include "platform/Failure.h"
#include "platform/PngFormat.h"

namespace sweepwright::platform::png {
namespace {

/// One reading by libpng. The library leaves an operation that fails by longjmp, so that everything
/// which must be freed lives here, outside the functions that such a jump leaves.
struct Reading {
    explicit Reading(std::string_view input) : bytes(input) {}
    ~Reading() { png_destroy_read_struct(&reader, &info, nullptr); }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

    std::string_view bytes;
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

/// Reads up to the first pixel and asks for 8-bit RGBA.
bool readHeader(Reading& reading) {
    png_structp const reader = reading.reader;
    if (setjmp(png_jmpbuf(reader)) != 0) return false;
    png_set_read_fn(reader, &reading, onRead);
    png_set_user_limits(reader, kMaxImageSide, kMaxImageSide);
    png_set_chunk_cache_max(reader, 64);
    png_set_chunk_malloc_max(reader, png_alloc_size_t{1} << 20U);
    // All optional chunks but transparency are skipped, which spares inflating profiles and texts
    // that a stranger wrote.
    png_set_keep_unknown_chunks(reader, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_read_info(reader, reading.info);
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

}  // namespace

Result<Image> decodeStandardPng(std::string_view bytes) {
    Reading reading(bytes);
    if (!start(reading) || !readHeader(reading)) return refuse(reading.message);

    Image image;
    image.width = png_get_image_width(reading.reader, reading.info);
    image.height = png_get_image_height(reading.reader, reading.info);
    const unsigned bits = unsigned{png_get_bit_depth(reading.reader, reading.info)} *
                          png_get_channels(reading.reader, reading.info);
    if (const auto why = refusal(image.width, image.height, bits, bytes.size()); !why.empty()) {
        return refuse(why);
    }
    const std::size_t rowBytes = image.width * kPixelBytes;
    image.rgba.resize(rowBytes * image.height);
    if (!readRows(reading, image.rgba.data(), image.height, rowBytes)) {
        return refuse(reading.message);
    }
    return image;
}

}  // namespace sweepwright::platform::png
