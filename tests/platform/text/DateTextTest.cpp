#include <chrono>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "platform/text/DateText.h"

namespace sweepwright::platform {
namespace {

using namespace std::chrono_literals;
using std::chrono::sys_days;
using std::chrono::system_clock;

/// Sets the local time zone, by a rule that needs no zone files.
class TimeZone {
  public:
    explicit TimeZone(const char* rule) {
        if (const char* old = std::getenv("TZ")) old_ = old;
        set(rule);
    }
    ~TimeZone() { set(old_ ? old_->c_str() : nullptr); }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

  private:
    static void set(const char* rule) {
        if (rule != nullptr) {
            setenv("TZ", rule, 1);
        } else {
            unsetenv("TZ");
        }
        tzset();
    }
    std::optional<std::string> old_;
};

constexpr const char* kBerlin = "CET-1CEST,M3.5.0,M10.5.0/3";

TEST(DateText, WritesLocalTimeToTheWholeSecond) {
    const TimeZone zone("CST-8");
    const auto date = sys_days(std::chrono::year(2026) / 3 / 4) + 21h + 6min + 7s + 999ms;
    EXPECT_EQ(dateText(date), "2026-03-05 05:06:07");
    EXPECT_EQ(dateFromText("2026-03-05 05:06:07"), system_clock::time_point(date - 999ms));
}

TEST(DateText, CutsTimesBeforeTheEpochDownwards) {
    const TimeZone zone("UTC0");
    EXPECT_EQ(dateText(system_clock::time_point(-1ms)), "1969-12-31 23:59:59");
    EXPECT_EQ(dateFromText("1969-12-31 23:59:59"), system_clock::time_point(-1s));
}

TEST(DateText, ReadsOnlyTheExactForm) {
    const TimeZone zone("UTC0");
    EXPECT_TRUE(dateFromText("2026-12-31 23:59:59"));
    for (const auto* text :
         {"", "2026-12-31", "2026-12-31 23:59", "2026-12-31T23:59:59", "2026-12-31 23:59:59 ",
          " 2026-12-31 23:59:59", "2026-1-31 23:59:59", "2026/12/31 23:59:59", "26-12-31 23:59:590",
          "2026-12-31 23:59:5x", "-026-12-31 23:59:59", "yesterday"}) {
        EXPECT_FALSE(dateFromText(text)) << text;
    }
}

TEST(DateText, RefusesDaysAndTimesThatDoNotExist) {
    const TimeZone zone("UTC0");
    for (const auto* text : {"2026-00-10 00:00:00", "2026-13-10 00:00:00", "2026-04-31 00:00:00",
                             "2026-02-29 00:00:00", "2026-01-00 00:00:00", "2026-01-01 24:00:00",
                             "2026-01-01 00:60:00", "2026-01-01 00:00:60"}) {
        EXPECT_FALSE(dateFromText(text)) << text;
    }
    EXPECT_TRUE(dateFromText("2028-02-29 00:00:00"));
}

TEST(DateText, ReadsBackEveryHourOfAYearWithClockChanges) {
    const TimeZone zone(kBerlin);
    const system_clock::time_point start = sys_days(std::chrono::year(2026) / 1 / 1);
    const auto repeated = sys_days(std::chrono::year(2026) / 10 / 25) + 1h;
    for (int hour = 0; hour < 366 * 24; ++hour) {
        const auto date = start + std::chrono::hours(hour);
        // The repeated hour's text names the first of the two.
        const auto wanted = date == repeated ? date - 1h : date;
        ASSERT_EQ(dateFromText(dateText(date)), wanted) << dateText(date);
    }
}

TEST(DateText, ARepeatedHourIsItsFirstWhateverWasReadBefore) {
    const TimeZone zone(kBerlin);
    const system_clock::time_point first = sys_days(std::chrono::year(2026) / 10 / 25) + 30min;
    for (const auto* before : {"2026-01-01 12:00:00", "2026-07-01 12:00:00"}) {
        EXPECT_TRUE(dateFromText(before));
        EXPECT_EQ(dateFromText("2026-10-25 02:30:00"), first);
    }
}

TEST(DateText, ASkippedHourIsReadByTheClockBeforeTheChange) {
    const TimeZone zone(kBerlin);
    const system_clock::time_point wanted = sys_days(std::chrono::year(2026) / 3 / 29) + 1h + 30min;
    EXPECT_EQ(dateFromText("2026-03-29 02:30:00"), wanted);
}

TEST(DateText, ADateBeyondTheTypesRangeIsTheNearestThatItHolds) {
    const TimeZone zone("UTC0");
    EXPECT_EQ(dateText(*dateFromText("9999-12-31 23:59:59")), "2262-04-11 00:00:00");
    EXPECT_EQ(dateText(*dateFromText("0000-01-01 00:00:00")), "1677-09-22 00:00:00");
    EXPECT_LT(dateFromText("2262-04-10 23:59:59"), dateFromText("2262-05-01 00:00:00"));
}

}  // namespace
}  // namespace sweepwright::platform
