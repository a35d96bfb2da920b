#include "platform/PropertyListDate.h"

#include <algorithm>
#include <cmath>

namespace sweepwright::platform {

PropertyList::Date dateSince(std::chrono::seconds start, double seconds) {
    using std::chrono::microseconds;
    using Duration = PropertyList::Date::duration;
    // A little inside of the range, so that no rounding leads out of it.
    constexpr std::chrono::seconds kFarthest =
        std::chrono::duration_cast<std::chrono::seconds>(Duration::max()) - std::chrono::days(1);
    if (std::isnan(seconds)) return {};
    const auto lowest = static_cast<double>((-kFarthest - start).count());
    const auto highest = static_cast<double>((kFarthest - start).count());
    const double within = std::clamp(seconds, lowest, highest);
    // In two parts: a double holds the microseconds of today's dates only just, and would move a
    // date a little each time it is read and written.
    const double whole = std::floor(within);
    const microseconds part(std::llround((within - whole) * 1e6));
    const std::chrono::seconds wholeSeconds(std::llround(whole));
    return PropertyList::Date(std::chrono::duration_cast<Duration>(start + wholeSeconds + part));
}

}  // namespace sweepwright::platform
