#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace sweepwright::cli {

/// Bytes, as a name on the device may hold them, made fit for where they are shown.

/// `bytes` with each byte that belongs to no well-formed character as U+FFFD.
std::string replacingBadBytes(std::string_view bytes);

/// Columns that `text` takes on a terminal: 2 for wide characters (Chinese, Japanese, Korean,
/// emoji), 0 for marks that combine, 1 for the rest and for each bad byte.
std::size_t displayWidth(std::string_view text);

/// The longest part of `text`, in whole characters, that is at most `columns` wide; when something
/// is cut, the end reads "…" within that width.
std::string truncatedToWidth(std::string_view text, std::size_t columns);

std::string base64(std::string_view bytes);

/// "1 entry", "352 entries".
std::string counted(std::uint64_t count, std::string_view one, std::string_view many);

}  // namespace sweepwright::cli
