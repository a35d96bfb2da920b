#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "platform/Image.h"

/// What the readers and the writer of PNG share. Private to the platform layer.
namespace sweepwright::platform::png {

inline constexpr std::string_view kSignature("\x89PNG\r\n\x1a\n", 8);

/// The chunk that marks the device's variant; it stands before the header chunk.
inline constexpr std::string_view kDeviceMark = "CgBI";

inline constexpr std::uint8_t kColourRgb = 2;
inline constexpr std::uint8_t kColourRgba = 6;

/// Bytes of an RGBA pixel.
inline constexpr std::size_t kPixelBytes = 4;

/// No deflate stream grows by more than this factor; what claims more is a lie.
inline constexpr std::uint64_t kMaxInflation = 1032;

inline std::uint32_t readBig32(std::string_view bytes, std::size_t at) {
    const auto byte = [&](std::size_t i) {
        return static_cast<std::uint32_t>(static_cast<std::uint8_t>(bytes[at + i]));
    };
    return byte(0) << 24U | byte(1) << 16U | byte(2) << 8U | byte(3);
}

/// Whether `bytes` begin as a file of the device's variant.
inline bool isDeviceVariant(std::string_view bytes) {
    return bytes.starts_with(kSignature) && bytes.substr(kSignature.size()).size() >= 8 &&
           bytes.substr(kSignature.size() + 4, 4) == kDeviceMark;
}

/// Why a picture of this size, stored in `bitsPerPixel` within `fileBytes`, is refused; empty when
/// it may be read.
std::string_view refusal(std::uint32_t width, std::uint32_t height, unsigned bitsPerPixel,
                         std::size_t fileBytes);

/// The predictor of filter type 4: whichever of left, above and above-left is nearest to
/// left + above - aboveLeft.
inline std::uint8_t paeth(std::uint8_t left, std::uint8_t above, std::uint8_t aboveLeft) {
    const int towardsLeft = above - aboveLeft;
    const int towardsAbove = left - aboveLeft;
    const int towardsCorner = towardsLeft + towardsAbove;
    const auto distance = [](int value) { return value < 0 ? -value : value; };
    if (distance(towardsLeft) <= distance(towardsAbove) &&
        distance(towardsLeft) <= distance(towardsCorner)) {
        return left;
    }
    return distance(towardsAbove) <= distance(towardsCorner) ? above : aboveLeft;
}

/// Reads a file that isDeviceVariant().
Result<Image> decodeDevicePng(std::string_view bytes);

/// Reads a standard file.
Result<Image> decodeStandardPng(std::string_view bytes);

}  // namespace sweepwright::platform::png
