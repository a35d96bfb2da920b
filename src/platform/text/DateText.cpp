#include "platform/text/DateText.h"

#include <algorithm>
#include <charconv>
#include <ctime>

#include <fmt/chrono.h>

namespace sweepwright::platform {

namespace {

using std::chrono::system_clock;

bool sameClockReading(const std::tm& a, const std::tm& b) {
    return a.tm_year == b.tm_year && a.tm_mon == b.tm_mon && a.tm_mday == b.tm_mday &&
           a.tm_hour == b.tm_hour && a.tm_min == b.tm_min && a.tm_sec == b.tm_sec;
}

std::time_t timeWith(std::tm reading, int summerTime) {
    reading.tm_isdst = summerTime;
    return std::mktime(&reading);
}

/// Summer time is tried first: left to choose, mktime() answers a repeated hour by what it was
/// asked before.
std::time_t timeOf(const std::tm& reading) {
    for (const int summerTime : {1, 0}) {
        const std::time_t time = timeWith(reading, summerTime);
        std::tm back{};
        if (localtime_r(&time, &back) != nullptr && sameClockReading(reading, back)) return time;
    }
    return timeWith(reading, 0);
}

}  // namespace

std::string dateText(system_clock::time_point date) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(date);
    return fmt::format("{:%Y-%m-%d %H:%M:%S}", fmt::localtime(system_clock::to_time_t(seconds)));
}

std::optional<system_clock::time_point> dateFromText(std::string_view text) {
    const auto reading = calendarTimeFrom(text, "0000-00-00 00:00:00");
    if (!reading || reading->tm_sec > 59) return std::nullopt;
    return nearestDate(timeOf(*reading));
}

std::optional<std::tm> calendarTimeFrom(std::string_view text, std::string_view form) {
    const bool hasForm = std::ranges::equal(text, form, [](char given, char wanted) {
        return wanted == '0' ? given >= '0' && given <= '9' : given == wanted;
    });
    if (!hasForm) return std::nullopt;
    const auto number = [&](std::size_t from, std::size_t length) {
        int value = 0;
        std::from_chars(text.data() + from, text.data() + from + length, value);
        return value;
    };
    std::tm time{};
    time.tm_year = number(0, 4) - 1900;
    time.tm_mon = number(5, 2) - 1;
    time.tm_mday = number(8, 2);
    time.tm_hour = number(11, 2);
    time.tm_min = number(14, 2);
    time.tm_sec = number(17, 2);
    const bool isDay = (std::chrono::year(number(0, 4)) / number(5, 2) / number(8, 2)).ok();
    if (!isDay || time.tm_hour > 23 || time.tm_min > 59 || time.tm_sec > 60) return std::nullopt;
    return time;
}

system_clock::time_point nearestDate(std::time_t since1970) {
    constexpr std::chrono::seconds kFarthest =
        std::chrono::floor<std::chrono::days>(system_clock::duration::max());
    const std::chrono::seconds seconds(since1970);
    return system_clock::time_point(std::clamp(seconds, -kFarthest, kFarthest));
}

}  // namespace sweepwright::platform
