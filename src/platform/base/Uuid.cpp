#include "platform/base/Uuid.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <random>
#include <span>

#include <fmt/format.h>
#include <sys/random.h>

namespace sweepwright::platform {

namespace {

using Bytes = std::array<unsigned char, 16>;

void fillRandom(std::span<unsigned char> bytes) {
    // So few bytes come whole once the system's generator is ready; older kernels lack the call.
    if (getrandom(bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size())) return;
    std::random_device device;
    std::ranges::generate(bytes, [&] { return static_cast<unsigned char>(device()); });
}

}  // namespace

std::string newUuid() {
    Bytes bytes{};
    fillRandom(bytes);
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0FU) | 0x40U);  // version 4
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3FU) | 0x80U);  // the standard's variant
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
        text += fmt::format("{:02X}", bytes[i]);
    }
    return text;
}

}  // namespace sweepwright::platform
