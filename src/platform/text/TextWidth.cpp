#include "platform/text/TextWidth.h"

#include <algorithm>
#include <cstdint>

#include <utf8proc.h>

#include "platform/text/Utf8.h"

namespace sweepwright::platform {

namespace {

/// As terminals count, where the library differs: a spacing mark has a column of its own, the
/// second and third letters of a Korean syllable that is written in letters stand in the first's.
std::size_t columnsOf(std::int32_t code) {
    const utf8proc_property_t& property = *utf8proc_get_property(code);
    if (property.category == UTF8PROC_CATEGORY_MC)
        return std::max(1U, static_cast<unsigned>(property.charwidth));
    if (property.boundclass == UTF8PROC_BOUNDCLASS_V ||
        property.boundclass == UTF8PROC_BOUNDCLASS_T)
        return 0;
    return property.charwidth;
}

/// Calls `each(its bytes, its columns, whether a glyph begins with it)` for every character.
template <class Each>
void forEachCharacter(std::string_view text, Each each) {
    std::int32_t state = 0;
    std::int32_t before = 0;  // no character of a text that is valid: nothing stands before it
    while (!text.empty()) {
        const Utf8Character next = firstUtf8Character(text);
        const std::string_view bytes = text.substr(0, std::max<std::size_t>(next.bytes, 1));
        text.remove_prefix(bytes.size());
        if (next.bytes == 0) {
            each(bytes, std::size_t{1}, true);
            before = 0;
            state = 0;
            continue;
        }
        const auto code = static_cast<std::int32_t>(next.code);
        const bool begins =
            before == 0 || utf8proc_grapheme_break_stateful(before, code, &state) != 0;
        each(bytes, columnsOf(code), begins);
        before = code;
    }
}

}  // namespace

std::vector<Glyph> glyphsOf(std::string_view text) {
    std::vector<Glyph> glyphs;
    forEachCharacter(text, [&](std::string_view bytes, std::size_t columns, bool begins) {
        if (begins || glyphs.empty()) {
            glyphs.push_back({bytes, columns});
        } else {
            Glyph& glyph = glyphs.back();
            glyph.bytes = std::string_view(glyph.bytes.data(), glyph.bytes.size() + bytes.size());
            glyph.columns += columns;
        }
    });
    return glyphs;
}

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    forEachCharacter(
        text, [&](std::string_view, std::size_t columns, bool /*begins*/) { width += columns; });
    return width;
}

}  // namespace sweepwright::platform
