#pragma once

#include "platform/PropertyList.h"

namespace sweepwright::platform {

/// The date `seconds` after the start of 1970 to the nearest microsecond, or the nearest that the
/// type holds.
PropertyList::Date dateSince1970(double seconds);

/// Whole seconds from the start of 1970 to the start of 2001, from which binary lists count.
inline constexpr double kStartOf2001 = 978'307'200;

}  // namespace sweepwright::platform
