#pragma once

#include <cstdint>

#include "platform/image/Image.h"

namespace sweepwright::sample {

/// The white shape on a sample app's icon.
enum class Glyph : std::uint8_t { Disc, Ring, Bars, Diamond, Wave, Triangle, Cross, Dots };

/// Draws an app icon of `side` × `side` pixels: `glyph` on a slope from the colour of `hue`
/// (degrees) to a darker one. Opaque to the corners; a screen rounds them.
platform::Image drawSampleIcon(Glyph glyph, unsigned hue, unsigned side);

}  // namespace sweepwright::sample
