#include <png.h>

#include "platform/base/Failure.h"
#include "platform/image/Image.h"
#include "platform/image/internal/DevicePng.h"

namespace sweepwright::platform {
namespace {

/// The picture's pixels as the device's variant stores them: blue first, colours multiplied by
/// alpha.
Image inDeviceOrder(const Image& image) {
    Image stored = image;
    for (std::size_t i = 0; i + 3 < image.rgba.size(); i += 4) {
        const unsigned alpha = image.rgba[i + 3];
        for (const std::size_t channel : {0U, 1U, 2U}) {
            stored.rgba[i + channel] =
                static_cast<std::uint8_t>((image.rgba[i + 2 - channel] * alpha + 127U) / 255U);
        }
    }
    return stored;
}

}  // namespace

Result<std::string> encodePng(const Image& image) {
    if (image.empty() || image.width > kMaxImageSide || image.height > kMaxImageSide ||
        image.rgba.size() != std::size_t{image.width} * image.height * 4) {
        return refuse("the picture's sides and bytes don't fit");
    }
    png_image picture{};
    picture.version = PNG_IMAGE_VERSION;
    picture.width = image.width;
    picture.height = image.height;
    picture.format = PNG_FORMAT_RGBA;
    png_alloc_size_t bytes = PNG_IMAGE_PNG_SIZE_MAX(picture);
    std::string file(bytes, '\0');
    if (png_image_write_to_memory(&picture, file.data(), &bytes, 0, image.rgba.data(), 0,
                                  nullptr) == 0) {
        return refuse(picture.message);
    }
    file.resize(bytes);
    return file;
}

Result<std::string> encodeDevicePng(const Image& image) {
    const auto standard = encodePng(inDeviceOrder(image));
    if (!standard) return standard;
    return png::deviceFromStandard(*standard);
}

}  // namespace sweepwright::platform
