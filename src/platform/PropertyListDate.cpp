#include "platform/PropertyListDate.h"

#include <algorithm>
#include <cmath>

namespace sweepwright::platform {

PropertyList::Date dateSince1970(double seconds) {
    using std::chrono::microseconds;
    using Duration = PropertyList::Date::duration;
    // A little inside of the range, so that no rounding leads out of it.
    constexpr double kFarthest =
        static_cast<double>(
            std::chrono::duration_cast<std::chrono::seconds>(Duration::max()).count()) -
        86'400;
    if (std::isnan(seconds)) return {};
    const double within = std::clamp(seconds, -kFarthest, kFarthest);
    const microseconds rounded(std::llround(within * 1e6));
    return PropertyList::Date(std::chrono::duration_cast<Duration>(rounded));
}

}  // namespace sweepwright::platform
