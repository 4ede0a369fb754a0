#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace host {

/// A date, a time of day (or a span of time), or both. Days count from 0001-01-01 (day 0) in the proleptic
/// Gregorian calendar; the time is in microseconds from midnight and, for a span, may be negative or more
/// than a day. Valid dates lie in the years 1 to 4000.
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

    /// "11/21/2026", "16:05:09" (hours at least one digit, fraction only when there is one: "0:00:01.5"),
    /// "11/21/2026 16:05:09".
    [[nodiscard]] std::u16string dateText() const;
    [[nodiscard]] std::u16string timeText() const;
    [[nodiscard]] std::u16string timestampText() const;
    /// Read what the functions above write, also a two-field time ("16:05"), AM and PM, and separators "-"
    /// and "." in dates. Nothing for any other text or a date that does not exist.
    static std::optional<DateTime> parseDate(std::u16string_view text);
    static std::optional<DateTime> parseTime(std::u16string_view text);
    static std::optional<DateTime> parseTimestamp(std::u16string_view text);
};

} // namespace host
