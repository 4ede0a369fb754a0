#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace host {

/// A date, a time of day (or a span of time), or both. Days count from 0001-01-01 (day 0) in the proleptic
/// Gregorian calendar; the time is in microseconds from midnight and, for a span, may be negative or more
/// than a day. Valid dates lie in the years 1 to 4000. Calculations count days from 1: see `dayNumber`.
struct DateTime {
    static constexpr std::int64_t microsPerSecond = 1'000'000, microsPerDay = 86'400 * microsPerSecond;
    static constexpr std::int64_t lastDay = 1'460'969; ///< 4000-12-31

    std::int64_t days = 0;
    std::int64_t micros = 0;

    bool operator==(const DateTime&) const = default;

    struct Date {
        int year, month, day;
    };
    [[nodiscard]] Date date() const;
    /// The number of the date in calculations, where 0001-01-01 is 1, and back.
    [[nodiscard]] std::int64_t dayNumber() const { return days + 1; }
    static DateTime fromDayNumber(std::int64_t number) { return {.days = number - 1, .micros = 0}; }
    [[nodiscard]] bool hasValidDate() const { return days >= 0 && days <= lastDay; }
    [[nodiscard]] bool isLeapYear() const;
    /// 1 (Sunday) to 7, 1 to 366, 1 to 54 (weeks begin on Sunday, week 1 holds January 1).
    [[nodiscard]] int dayOfWeek() const;
    [[nodiscard]] int dayOfYear() const;
    [[nodiscard]] int weekOfYear() const;
    /// Whole hours (may exceed 23 or be negative), minutes and seconds of the magnitude, microseconds.
    [[nodiscard]] std::int64_t hour() const;
    [[nodiscard]] int minute() const;
    [[nodiscard]] int second() const;
    [[nodiscard]] int microsecond() const;
    /// Both parts as one count, for timestamps.
    [[nodiscard]] std::int64_t microsSinceEpoch() const { return days * microsPerDay + micros; }
    static DateTime fromMicrosSinceEpoch(std::int64_t micros);

    /// Day 0 of a month is the last of the month before, month 13 the January after, and so on. Nothing
    /// outside the years 1 to 4000.
    static std::optional<DateTime> fromDate(std::int64_t year, std::int64_t month, std::int64_t day);

    /// In the formats that are set; in US English "7/4/0033", "16:05:09" (hours at least one digit, a
    /// fraction only when there is one: "0:00:01.5"), "11/21/2026 4:05:09 PM" (no seconds where they are 0,
    /// "4:05 PM", unless they are asked for).
    [[nodiscard]] std::u16string dateText() const;
    [[nodiscard]] std::u16string timeText() const;
    [[nodiscard]] std::u16string timestampText(bool showsZeroSeconds = false) const;
    /// Read texts in the formats that are set. In a date any sign but a letter, a colon or a plus may
    /// separate the parts. The year may be left out, which means this year; one of two digits lies
    /// between 69 years ago and 30 years ahead. A time has hours, minutes, seconds and a fraction, of which
    /// all but the hours may be left out, and AM or PM; minutes and seconds above 59 carry over. A timestamp
    /// is a date, a blank and a time of day, or a date alone. Nothing for any other text or a date that does
    /// not exist.
    static std::optional<DateTime> parseDate(std::u16string_view text);
    static std::optional<DateTime> parseTime(std::u16string_view text);
    static std::optional<DateTime> parseTimestamp(std::u16string_view text);

private:
    [[nodiscard]] std::u16string secondsText() const;
};

} // namespace host
