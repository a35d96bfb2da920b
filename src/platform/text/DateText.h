#pragma once

#include <chrono>
#include <ctime>
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

/// What `text` says, if it has a digit wherever `form` has a 0 and equals it elsewhere, names a day
/// that there is and a time within it; a leap second may be told. `form` has the year, month and so
/// on where "0000-00-00 00:00:00" has them.
std::optional<std::tm> calendarTimeFrom(std::string_view text, std::string_view form);

/// The date `since1970` seconds after the start of 1970, or the nearest whole day that the type
/// holds.
std::chrono::system_clock::time_point nearestDate(std::time_t since1970);

}  // namespace sweepwright::platform
