#pragma once

#include <chrono>

#include "platform/PropertyList.h"

namespace sweepwright::platform {

/// The date `seconds` after `start` (itself counted from the start of 1970), to the nearest
/// microsecond, or the nearest that the type holds; the start of 1970 for what is no number.
PropertyList::Date dateSince(std::chrono::seconds start, double seconds);

/// From the start of 1970 to the start of 2001, from which binary lists count.
inline constexpr std::chrono::seconds kStartOf2001{978'307'200};

}  // namespace sweepwright::platform
