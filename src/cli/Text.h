#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace sweepwright::cli {

/// Text and bytes, as a name on the device may hold them, made fit for where they are shown.

/// What is drawn with: block characters, or ASCII where the terminal shows no others.
struct Drawing {
    explicit Drawing(bool unicode)
        : bar(unicode ? "█" : "#"), track(unicode ? "░" : "-"), ellipsis(unicode ? "…" : "...") {}

    std::string_view bar;       ///< a piece of a bar, one column wide
    std::string_view track;     ///< of what a bar is yet to fill
    std::string_view ellipsis;  ///< in place of what is left out
};

std::string repeated(std::string_view piece, std::size_t times);

/// `text`, or, where that is wider than `columns`, its longest beginning in whole glyphs that with
/// the ellipsis behind it is not.
std::string cutAtEnd(std::string_view text, std::size_t columns, std::string_view ellipsis);
/// The same with the ellipsis in the middle: a third of the room is for the beginning, the rest for
/// the end, which tells more of a path.
std::string cutInMiddle(std::string_view text, std::size_t columns, std::string_view ellipsis);

/// `text` in lines of at most `columns`, broken between words and, where a word is longer than a
/// line, within it; every line but the first begins with `indent` spaces. No line break ends it.
std::string wrapped(std::string_view text, std::size_t columns, std::size_t indent = 0);

/// `bytes` with each byte that belongs to no well-formed character as U+FFFD.
std::string replacingBadBytes(std::string_view bytes);

std::string base64(std::string_view bytes);

/// "1 entry", "352 entries", in the language of this run.
std::string counted(std::uint64_t count, std::string_view one, std::string_view many);

}  // namespace sweepwright::cli
