#include "host/values/DateTime.h"
#include "host/values/Encoding.h"

#include <chrono>
#include <gtest/gtest.h>
#include <limits>

/// The calendar's derived numbers, conversions to text and back, and texts that must be refused.

namespace {

using host::DateTime;
using Limits = std::numeric_limits<std::int64_t>;

TEST(DateTimeCalendar, agreesWithTheLibraryOnEveryDay) {
    using namespace std::chrono;
    constexpr sys_days dayZero = year{1} / 1 / 1;
    int dayOfYear = 0, week = 1;
    for (std::int64_t day = 0; day <= DateTime::lastDay; ++day) {
        const DateTime value{.days = day, .micros = 0};
        const sys_days moment = dayZero + days(static_cast<int>(day));
        const year_month_day date = moment;
        const bool isNewYear = date.month() == January && date.day() == std::chrono::day(1);
        dayOfYear = isNewYear ? 1 : dayOfYear + 1;
        week = isNewYear ? 1 : week + (weekday(moment) == Sunday ? 1 : 0);
        const auto parts = value.date();
        ASSERT_TRUE(year{parts.year} / parts.month / parts.day == date) << day;
        ASSERT_EQ(DateTime::fromDate(parts.year, parts.month, parts.day), value) << day;
        ASSERT_EQ(value.dayOfWeek(), static_cast<int>(weekday(moment).c_encoding()) + 1) << day;
        ASSERT_EQ(value.dayOfYear(), dayOfYear) << day;
        ASSERT_EQ(value.weekOfYear(), week) << day;
        ASSERT_EQ(value.isLeapYear(), date.year().is_leap()) << day;
        ASSERT_EQ(DateTime::parseTimestamp(value.timestampText()), value) << day;
    }
}

TEST(DateTimeCalendar, carriesMonthsAndDays) {
    const struct {
        std::int64_t year, month, day;
        const char16_t* text; ///< "none" for a date outside of the calendar
    } cases[] = {{2024, 3, 0, u"2/29/2024"},  {2026, 0, 15, u"12/15/2025"},
                 {2023, 2, 29, u"3/1/2023"},  {2026, -11, 1, u"1/1/2025"},
                 {2026, 25, 1, u"1/1/2028"},  {4000, 12, 31, u"12/31/4000"},
                 {4001, 1, 0, u"12/31/4000"}, {1, 1, 1'460'970, u"12/31/4000"},
                 {1, 1, 1'460'971, u"none"},  {9'000'000, -107'952'000, 1, u"none"},
                 {0, 13, 1, u"1/1/0001"},     {Limits::max(), 1, 1, u"none"},
                 {1, 0, 31, u"none"},         {1, Limits::min(), 1, u"none"},
                 {0, 12, 31, u"none"},        {1, 1, Limits::min(), u"none"},
                 {4000, 13, 1, u"none"}};
    for (const auto& [year, month, day, text] : cases) {
        const auto date = DateTime::fromDate(year, month, day);
        EXPECT_EQ(date ? date->dateText() : u"none", text) << year << ' ' << month << ' ' << day;
    }
}

TEST(DateTimeSpans, convertToTextAndBack) {
    for (const std::int64_t micros :
         {std::int64_t{0}, std::int64_t{1}, std::int64_t{-1}, DateTime::microsPerDay - 1,
          -DateTime::microsPerDay, 90'000 * DateTime::microsPerSecond + 500'000,
          -90 * DateTime::microsPerSecond, DateTime::lastDay * DateTime::microsPerDay}) {
        const DateTime span{.days = 0, .micros = micros};
        EXPECT_EQ(DateTime::parseTime(span.timeText()), span) << micros;
        const DateTime moment = DateTime::fromMicrosSinceEpoch(micros);
        EXPECT_EQ(moment.microsSinceEpoch(), micros);
        EXPECT_TRUE(moment.micros >= 0 && moment.micros < DateTime::microsPerDay) << micros;
    }
    // The extreme counts are split without overflow.
    for (const std::int64_t extreme : {Limits::min(), Limits::max()}) {
        EXPECT_GE(DateTime::fromMicrosSinceEpoch(extreme).micros, 0);
        EXPECT_FALSE((DateTime{.days = 0, .micros = extreme}.timeText().empty()));
        const int weekday = DateTime{.days = extreme, .micros = 0}.dayOfWeek();
        EXPECT_TRUE(weekday >= 1 && weekday <= 7) << extreme;
    }
}

TEST(DateTimeReading, refusesOtherTexts) {
    for (const char16_t* text : {u"16:05", u"1/1/2026 25:00", u"1/1/2026 -1:00", u"1/1/2026 1:00 x",
                                 u"1/1/2026x", u"-1/1/2026", u"2026-1.1", u"9999999999999/1/1"})
        EXPECT_FALSE(DateTime::parseTimestamp(text)) << host::toUtf8(text);
    for (const char16_t* text : {u"1:2:3:4", u"1:2.5", u"1:00:00.", u":30", u"-1:30 PM", u"40000001:00",
                                 u"1:00:00.1234567890123", u"AM", u"0:40000001", u"13:00 PM", u""})
        EXPECT_FALSE(DateTime::parseTime(text)) << host::toUtf8(text);
    for (const char16_t* text :
         {u"2/29/2023", u"13/1/2024", u"1", u"1-1/2024", u"1/1/1/1", u"2026-11-21", u"0/1/2024", u"1/1/4001"})
        EXPECT_FALSE(DateTime::parseDate(text)) << host::toUtf8(text);
    std::u16string endless(u"1");
    for (int i = 0; i < 1'000'000; ++i)
        endless += u"/1";
    EXPECT_FALSE(DateTime::parseDate(endless));
}

} // namespace
