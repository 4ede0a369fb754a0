#include "host/values/DateTime.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace host {

namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr sys_days dayZero = std::chrono::year{1} / 1 / 1;
constexpr int lastYear = 4000;

constexpr year_month_day calendarDate(std::int64_t days) {
    return dayZero + std::chrono::days(static_cast<int>(days));
}

constexpr std::int64_t dayNumber(year_month_day date) { return (sys_days(date) - dayZero).count(); }
static_assert(dayNumber(std::chrono::year{lastYear} / 12 / 31) == DateTime::lastDay);

std::u16string printed(const char* format, auto... values) {
    std::array<char, 96> buffer{};
    const int size = std::snprintf(buffer.data(), buffer.size(), format, values...);
    return {buffer.data(), buffer.data() + size};
}

/// A text taken apart: groups of digits and what stands between them.
struct Fields {
    std::vector<std::int64_t> numbers;
    std::vector<std::size_t> widths;
    std::u16string between; ///< one separator for each gap
    bool negative = false;
    bool good = true;
};

std::u16string_view trimmed(std::u16string_view text) {
    const std::size_t first = text.find_first_not_of(u' ');
    if (first == std::u16string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(u' ') + 1 - first);
}

Fields fieldsOf(std::u16string_view text) {
    constexpr std::size_t widest = 12, mostFields = 4;
    Fields fields;
    text = trimmed(text);
    if (!text.empty() && text.front() == u'-') {
        fields.negative = true;
        text.remove_prefix(1);
    }
    while (fields.good) {
        const std::size_t size = std::min(text.find_first_not_of(u"0123456789"), text.size());
        if (size == 0 || size > widest || fields.numbers.size() == mostFields) {
            fields.good = false;
            break;
        }
        std::int64_t number = 0;
        for (const char16_t digit : text.substr(0, size))
            number = number * 10 + (digit - u'0');
        fields.numbers.push_back(number);
        fields.widths.push_back(size);
        text.remove_prefix(size);
        if (text.empty()) break;
        fields.between += text.front();
        text.remove_prefix(1);
    }
    return fields;
}

/// Takes AM or PM off the end: 'a', 'p', or 0 when there is neither.
char takeHalfOfDay(std::u16string_view& text) {
    text = trimmed(text);
    if (text.size() < 2 || (text.back() != u'M' && text.back() != u'm')) return 0;
    const char16_t half = text[text.size() - 2];
    if (half != u'A' && half != u'a' && half != u'P' && half != u'p') return 0;
    text = trimmed(text.substr(0, text.size() - 2));
    return half == u'A' || half == u'a' ? 'a' : 'p';
}

std::int64_t microsOfFraction(std::int64_t number, std::size_t width) {
    constexpr std::size_t microDigits = 6;
    for (; width < microDigits; ++width)
        number *= 10;
    for (; width > microDigits; --width)
        number /= 10;
    return number;
}

} // namespace

DateTime::Date DateTime::date() const {
    const year_month_day date = calendarDate(std::clamp<std::int64_t>(days, 0, lastDay));
    return {static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day()))};
}

bool DateTime::isLeapYear() const { return std::chrono::year(date().year).is_leap(); }

// Day 0 was a Monday.
int DateTime::dayOfWeek() const { return static_cast<int>((days % 7 + 8) % 7) + 1; }

int DateTime::dayOfYear() const {
    const auto january1 = dayNumber(std::chrono::year(date().year) / 1 / 1);
    return static_cast<int>(std::clamp<std::int64_t>(days, 0, lastDay) - january1) + 1;
}

int DateTime::weekOfYear() const {
    const auto january1 = dayNumber(std::chrono::year(date().year) / 1 / 1);
    const int firstWeekday = DateTime{.days = january1, .micros = 0}.dayOfWeek();
    return (dayOfYear() - 1 + firstWeekday - 1) / 7 + 1;
}

std::int64_t DateTime::hour() const { return micros / (3600 * microsPerSecond); }
int DateTime::minute() const { return static_cast<int>(std::abs(micros / (60 * microsPerSecond)) % 60); }
int DateTime::second() const { return static_cast<int>(std::abs(micros / microsPerSecond) % 60); }
int DateTime::microsecond() const { return static_cast<int>(std::abs(micros % microsPerSecond)); }

DateTime DateTime::fromMicrosSinceEpoch(std::int64_t micros) {
    std::int64_t days = micros / microsPerDay;
    std::int64_t rest = micros % microsPerDay;
    if (rest < 0) {
        --days;
        rest += microsPerDay;
    }
    return {.days = days, .micros = rest};
}

std::optional<DateTime> DateTime::fromDate(std::int64_t year, std::int64_t month, std::int64_t day) {
    constexpr std::int64_t farthest = 10'000'000;
    for (const std::int64_t part : {year, month, day})
        if (part < -farthest || part > farthest) return std::nullopt;
    const std::int64_t months = year * 12 + month - 1;
    const std::int64_t wholeYear = months >= 0 ? months / 12 : (months - 11) / 12;
    if (wholeYear < -farthest / 400 || wholeYear > farthest / 400) return std::nullopt;
    const auto first =
        std::chrono::year(static_cast<int>(wholeYear)) / static_cast<int>(months - wholeYear * 12 + 1) / 1;
    const DateTime result{.days = dayNumber(first) + day - 1, .micros = 0};
    return result.hasValidDate() ? std::optional(result) : std::nullopt;
}

std::u16string DateTime::dateText() const {
    const Date parts = date();
    return printed("%d/%d/%d", parts.month, parts.day, parts.year);
}

std::u16string DateTime::timeText() const {
    std::u16string text = micros < 0 ? u"-" : u"";
    text += printed("%lld:%02d:%02d", static_cast<long long>(std::abs(hour())), minute(), second());
    if (microsecond() == 0) return text;
    text += printed(".%06d", microsecond());
    text.erase(text.find_last_not_of(u'0') + 1);
    return text;
}

std::u16string DateTime::timestampText() const { return dateText() + u' ' + timeText(); }

std::optional<DateTime> DateTime::parseDate(std::u16string_view text) {
    const Fields fields = fieldsOf(text);
    if (!fields.good || fields.negative || fields.numbers.size() != 3) return std::nullopt;
    if (fields.between[0] != fields.between[1] ||
        std::u16string_view(u"/-.").find(fields.between[0]) == std::u16string_view::npos)
        return std::nullopt;
    // The year stands first when it has four digits there.
    const bool yearFirst = fields.widths[0] == 4;
    const std::int64_t year = fields.numbers[yearFirst ? 0 : 2];
    const std::int64_t month = fields.numbers[yearFirst ? 1 : 0];
    const std::int64_t day = fields.numbers[yearFirst ? 2 : 1];
    const auto result = fromDate(year, month, day);
    if (!result) return std::nullopt;
    const Date check = result->date();
    return check.month == month && check.day == day ? result : std::nullopt;
}

std::optional<DateTime> DateTime::parseTime(std::u16string_view text) {
    constexpr std::int64_t mostHours = 40'000'000;
    const char half = takeHalfOfDay(text);
    const Fields fields = fieldsOf(text);
    const std::size_t count = fields.numbers.size();
    if (!fields.good || count < 2 || count > 4 || fields.between[0] != u':') return std::nullopt;
    if (count > 2 && fields.between[1] != u':') return std::nullopt;
    if (count > 3 && fields.between[2] != u'.') return std::nullopt;
    std::int64_t hours = fields.numbers[0];
    const std::int64_t minutes = fields.numbers[1], seconds = count > 2 ? fields.numbers[2] : 0;
    if (hours > mostHours || minutes > 59 || seconds > 59) return std::nullopt;
    if (half != 0) {
        if (hours < 1 || hours > 12 || fields.negative) return std::nullopt;
        hours = hours % 12 + (half == 'p' ? 12 : 0);
    }
    std::int64_t micros = ((hours * 60 + minutes) * 60 + seconds) * microsPerSecond;
    if (count > 3) micros += microsOfFraction(fields.numbers[3], fields.widths[3]);
    return DateTime{.days = 0, .micros = fields.negative ? -micros : micros};
}

std::optional<DateTime> DateTime::parseTimestamp(std::u16string_view text) {
    text = trimmed(text);
    const std::size_t gap = text.find(u' ');
    const auto day = parseDate(text.substr(0, gap));
    if (!day || gap == std::u16string_view::npos) return day;
    const auto time = parseTime(text.substr(gap));
    if (!time || time->micros < 0 || time->micros >= microsPerDay) return std::nullopt;
    return DateTime{.days = day->days, .micros = time->micros};
}

} // namespace host
