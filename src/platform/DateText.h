#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace sweepwright::platform {

/// `date` as "yyyy-MM-dd HH:mm:ss" in the device's local time, cut to the whole second.
std::string dateText(std::chrono::system_clock::time_point date);

/// The date that `text` names, or none when it is not exactly of that form or names a day or time
/// that no calendar has. Of an hour that a clock change repeats, the first; of one that it skips,
/// the time as the clock before the change would have reached it. A date beyond the range of the
/// type (years 1677 to 2262) is the nearest day that it holds.
std::optional<std::chrono::system_clock::time_point> dateFromText(std::string_view text);

}  // namespace sweepwright::platform
