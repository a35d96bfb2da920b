#pragma once

#include <string>
#include <string_view>

#include "platform/base/Error.h"

/// The device's own variant of PNG, as a change of a standard file's chunks: one more stands before
/// the header, and the deflate stream lacks the frame that zlib puts around it. What it holds as
/// pixels is blue, green, red and perhaps alpha, by which the colours are multiplied; that is left
/// as it is here. Private to the platform layer.
namespace sweepwright::platform::png {

inline constexpr std::string_view kSignature("\x89PNG\r\n\x1a\n", 8);

/// Whether `bytes` begin as a file of the device's variant.
bool isDeviceVariant(std::string_view bytes);

/// A file that isDeviceVariant() as a standard one whose zlib stream ends in a wrong checksum.
/// Other damage is left to be found by who reads it.
Result<std::string> standardFromDevice(std::string_view device);

/// A whole standard file as one of the device's variant, without optional chunks.
std::string deviceFromStandard(std::string_view standard);

}  // namespace sweepwright::platform::png
