#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace sweepwright::platform {

/// What a person sees as one character: a letter with its marks, an emoji with its parts.
struct Glyph {
    std::string_view bytes;
    std::size_t columns = 0;  ///< that it takes on a terminal
};

/// The glyphs of `text`; a byte that belongs to no well-formed character is one of its own. They
/// point into `text`.
std::vector<Glyph> glyphsOf(std::string_view text);

/// Columns that `text` takes on a terminal: 2 for wide characters (Chinese, Japanese, Korean,
/// emoji), 0 for marks that combine, 1 for the rest and for each bad byte.
std::size_t displayWidth(std::string_view text);

}  // namespace sweepwright::platform
