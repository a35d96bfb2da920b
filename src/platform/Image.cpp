#include "platform/Image.h"

#include "platform/Failure.h"
#include "platform/PngFormat.h"

namespace sweepwright::platform {

std::string_view png::refusal(std::uint32_t width, std::uint32_t height, unsigned bitsPerPixel,
                              std::size_t fileBytes) {
    if (width == 0 || height == 0) return "the picture has no pixels";
    if (width > kMaxImageSide || height > kMaxImageSide) return "the picture is too large";
    const std::uint64_t bytes = std::uint64_t{width} * height * bitsPerPixel / 8;
    if (bytes > fileBytes * kMaxInflation) return "the file is too short for its pixels";
    return {};
}

Result<Image> decode(std::string_view bytes) {
    if (bytes.size() > kMaxImageBytes) {
        return refuse("the picture's file is too long");
    }
    if (!bytes.starts_with(png::kSignature)) {
        return refuse("not a PNG file");
    }
    return png::isDeviceVariant(bytes) ? png::decodeDevicePng(bytes)
                                       : png::decodeStandardPng(bytes);
}

}  // namespace sweepwright::platform
