#include "sample/internal/SampleIcon.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace sweepwright::sample {

namespace {

struct Colour {
    double red = 0;
    double green = 0;
    double blue = 0;
};

/// A colour from hue (degrees), saturation and lightness (0 to 1).
Colour colourOf(double hue, double saturation, double lightness) {
    const double chroma = saturation * std::min(lightness, 1 - lightness);
    const auto channel = [&](double offset) {
        const double k = std::fmod(offset + hue / 30, 12);
        return lightness - chroma * std::clamp(std::min(k - 3, 9 - k), -1.0, 1.0);
    };
    return {channel(0), channel(8), channel(4)};
}

double boxDistance(double x, double y, double halfWidth, double halfHeight) {
    return std::max(std::abs(x) - halfWidth, std::abs(y) - halfHeight);
}

/// How far (x, y) lies outside the glyph (negative: inside); the icon spans -1 to 1.
double distance(Glyph glyph, double x, double y) {
    const double radius = std::hypot(x, y);
    switch (glyph) {
        case Glyph::Disc:
            return radius - 0.5;
        case Glyph::Ring:
            return std::abs(radius - 0.45) - 0.12;
        case Glyph::Bars:
            return std::min({boxDistance(x + 0.38, y - 0.22, 0.12, 0.28),
                             boxDistance(x, y - 0.05, 0.12, 0.45),
                             boxDistance(x - 0.38, y - 0.14, 0.12, 0.36)});
        case Glyph::Diamond:
            return (std::abs(x) + std::abs(y) - 0.6) / std::numbers::sqrt2;
        case Glyph::Wave:
            return std::max(std::abs(y - 0.2 * std::sin(x * 6)) * 0.7 - 0.1, std::abs(x) - 0.62);
        case Glyph::Triangle:
            return std::max(std::abs(x) * 0.87 - (y + 0.5) * 0.5, y - 0.42);
        case Glyph::Cross:
            return std::min(boxDistance(x, y, 0.13, 0.52), boxDistance(x, y, 0.52, 0.13));
        case Glyph::Dots:
            return std::hypot(std::abs(x) - 0.3, std::abs(y) - 0.3) - 0.19;
    }
    return 1;
}

std::uint8_t byteOf(double value) {
    return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
}

}  // namespace

platform::Image drawSampleIcon(Glyph glyph, unsigned hue, unsigned side) {
    const Colour top = colourOf(hue % 360, 0.72, 0.62);
    const Colour bottom = colourOf((hue + 24) % 360, 0.78, 0.42);
    platform::Image icon{side, side, {}};
    icon.rgba.reserve(std::size_t{side} * side * 4);
    const double pixel = 2.0 / side;
    for (unsigned row = 0; row < side; ++row) {
        for (unsigned column = 0; column < side; ++column) {
            const double x = (column + 0.5) * pixel - 1;
            const double y = (row + 0.5) * pixel - 1;
            const double white = std::clamp(0.5 - distance(glyph, x, y) / pixel, 0.0, 1.0) * 0.95;
            const double down = (row + 0.5) / side;
            const auto mix = [&](double from, double to) {
                const double slope = from + (to - from) * down;
                return byteOf(slope + (1 - slope) * white);
            };
            const std::array<std::uint8_t, 4> rgba = {mix(top.red, bottom.red),
                                                      mix(top.green, bottom.green),
                                                      mix(top.blue, bottom.blue), 255};
            icon.rgba.insert(icon.rgba.end(), rgba.begin(), rgba.end());
        }
    }
    return icon;
}

}  // namespace sweepwright::sample
