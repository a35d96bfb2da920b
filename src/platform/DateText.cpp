#include "platform/DateText.h"

#include <algorithm>
#include <charconv>
#include <ctime>

#include <fmt/format.h>

namespace sweepwright::platform {

namespace {

using std::chrono::system_clock;

constexpr std::string_view kForm = "0000-00-00 00:00:00";

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Whether `text` has a digit wherever the form has one, and the form's character elsewhere.
bool hasForm(std::string_view text) {
    return std::ranges::equal(text, kForm, [](char given, char wanted) {
        return wanted == '0' ? isDigit(given) : given == wanted;
    });
}

int numberAt(std::string_view text, std::size_t from, std::size_t length) {
    int number = 0;
    std::from_chars(text.data() + from, text.data() + from + length, number);
    return number;
}

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

/// `time` as a date, or the nearest whole day that the type holds: its nanoseconds fit 584 years.
system_clock::time_point nearestDate(std::time_t time) {
    constexpr std::chrono::seconds kFarthest =
        std::chrono::floor<std::chrono::days>(system_clock::duration::max());
    const std::chrono::seconds since1970(time);
    return system_clock::time_point(std::clamp(since1970, -kFarthest, kFarthest));
}

}  // namespace

std::string dateText(system_clock::time_point date) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(date);
    const std::time_t time = system_clock::to_time_t(seconds);
    std::tm local{};
    localtime_r(&time, &local);
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", local.tm_year + 1900,
                       local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
}

std::optional<system_clock::time_point> dateFromText(std::string_view text) {
    if (!hasForm(text)) return std::nullopt;
    const std::chrono::year_month_day day{
        std::chrono::year(numberAt(text, 0, 4)),
        std::chrono::month(static_cast<unsigned>(numberAt(text, 5, 2))),
        std::chrono::day(static_cast<unsigned>(numberAt(text, 8, 2)))};
    std::tm reading{};
    reading.tm_hour = numberAt(text, 11, 2);
    reading.tm_min = numberAt(text, 14, 2);
    reading.tm_sec = numberAt(text, 17, 2);
    if (!day.ok() || reading.tm_hour > 23 || reading.tm_min > 59 || reading.tm_sec > 59) {
        return std::nullopt;
    }
    reading.tm_year = static_cast<int>(day.year()) - 1900;
    reading.tm_mon = static_cast<int>(static_cast<unsigned>(day.month())) - 1;
    reading.tm_mday = static_cast<int>(static_cast<unsigned>(day.day()));
    return nearestDate(timeOf(reading));
}

}  // namespace sweepwright::platform
