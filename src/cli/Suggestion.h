#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sweepwright::cli {

/// The one of `known` that `word` was most likely meant to be: at most two letters wrong, missing,
/// too many or swapped, and fewer than half of them. None when nothing is near.
std::optional<std::string> nearest(std::string_view word, const std::vector<std::string>& known);

}  // namespace sweepwright::cli
