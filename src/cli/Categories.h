#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/Categories.h"

namespace sweepwright::cli {

/// The one that `word` names; nullptr when none does.
const Category* categoryNamed(std::string_view word);

/// What a scan counts for a category, or for all of them with none: bytes in the places that their
/// cleans visit.
std::uint64_t scannedSize(FileCleanerEngine& engine, const Category* category);

/// The nine words, and those in `more`.
std::vector<std::string> categoryWords(std::vector<std::string> more = {});

}  // namespace sweepwright::cli
