#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Error.h"

namespace sweepwright::platform {

/// A picture as a plain value: rows from top to bottom, four bytes a pixel in the order red, green,
/// blue, alpha; colours are not multiplied by alpha.
struct Image {
    std::uint32_t width = 0;   ///< pixels
    std::uint32_t height = 0;  ///< pixels
    std::vector<std::uint8_t> rgba;

    [[nodiscard]] bool empty() const { return width == 0 || height == 0; }
    bool operator==(const Image&) const = default;
};

/// Neither side of a picture may be longer; a larger one is refused before memory is asked for.
inline constexpr std::uint32_t kMaxImageSide = 4096;

/// A longer file is refused unread.
inline constexpr std::size_t kMaxImageBytes = std::size_t{16} << 20U;

/// Reads a PNG of any colour type and depth, or a picture in the device's own variant of PNG, which
/// is what the icons inside app bundles are: there, 8 bits a channel, with or without alpha,
/// interlaced or not; other forms of the variant are refused.
///
/// A file is taken whole or not at all: what is cut short, fails a checksum or promises more pixels
/// than its bytes can hold is an error of kFormatErrorDomain. Thread-safe.
Result<Image> decode(std::string_view bytes);

/// The picture as a PNG. `rgba` must hold width * height * 4 bytes and both sides must be from 1 to
/// kMaxImageSide; else an error of kFormatErrorDomain.
Result<std::string> encodePng(const Image& image);

/// As encodePng(), in the device's own variant. It stores colours multiplied by alpha, so a pixel
/// that is not opaque may read back with its colour rounded; a fully transparent one as all zero.
Result<std::string> encodeDevicePng(const Image& image);

}  // namespace sweepwright::platform
