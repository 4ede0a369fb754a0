#include "host/values/DateTime.h"

#include "host/values/Clock.h"
#include "host/values/Formats.h"
#include "host/values/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <unicode/uchar.h>
#include <vector>

namespace host {

namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr sys_days dayZero = std::chrono::year{1} / 1 / 1;
constexpr int lastYear = 4000, yearDigits = 4;

constexpr year_month_day calendarDate(std::int64_t days) {
    return dayZero + std::chrono::days(static_cast<int>(days));
}

constexpr std::int64_t daysTo(year_month_day date) { return (sys_days(date) - dayZero).count(); }
static_assert(daysTo(std::chrono::year{lastYear} / 12 / 31) == DateTime::lastDay);

std::u16string printed(const char* format, auto... values) {
    std::array<char, 96> buffer{};
    const int size = std::snprintf(buffer.data(), buffer.size(), format, values...);
    return {buffer.data(), buffer.data() + size};
}

/// A number with at least so many places; its sign takes one.
void appendNumber(std::u16string& text, int number, std::size_t places) {
    std::array<char, 16> digits{};
    const auto end = std::to_chars(digits.begin(), digits.end(), std::abs(number)).ptr;
    const std::size_t size = static_cast<std::size_t>(end - digits.begin()) + (number < 0 ? 1 : 0);
    if (number < 0) text += u'-';
    text.append(places - std::min(places, size), u'0');
    text.append(digits.begin(), end);
}

std::int64_t thisYear() {
    return DateTime::fromMicrosSinceEpoch(clock().localSinceYearOne().count()).date().year;
}

std::u16string_view trimmed(std::u16string_view text) {
    const std::size_t first = text.find_first_not_of(u' ');
    if (first == std::u16string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(u' ') + 1 - first);
}

/// Groups of digits and the signs between them.
struct Fields {
    struct Number {
        std::int64_t value;
        std::size_t width;
    };
    std::vector<Number> numbers;
    std::u16string between; ///< one sign for each gap
};

/// The result is nothing for other texts, and for more or longer groups than dates and times have.
std::optional<Fields> fieldsOf(std::u16string_view text) {
    constexpr std::size_t widest = 12, mostFields = 4;
    Fields fields;
    for (;;) {
        const std::size_t size = std::min(text.find_first_not_of(u"0123456789"), text.size());
        if (size == 0 || size > widest || fields.numbers.size() == mostFields) return std::nullopt;
        std::int64_t number = 0;
        for (const char16_t digit : text.substr(0, size))
            number = number * 10 + (digit - u'0');
        fields.numbers.push_back({number, size});
        text.remove_prefix(size);
        if (text.empty()) return fields;
        fields.between += text.front();
        text.remove_prefix(1);
    }
}

bool isDateSeparator(char16_t sign) {
    return u_isalpha(sign) == 0 && std::u16string_view(u":+").find(sign) == std::u16string_view::npos;
}

/// The year that a group of digits means.
std::int64_t yearOf(const Fields::Number& year) {
    constexpr std::int64_t century = 100, yearsAgo = 69;
    if (year.width > 2) return year.value;
    const std::int64_t first = thisYear() - yearsAgo;
    return first + ((year.value - first) % century + century) % century;
}

enum class Half { none, morning, afternoon };

bool takeEnd(std::u16string_view& text, std::u16string_view end) {
    if (end.empty() || text.size() < end.size() ||
        compareIgnoringCase(text.substr(text.size() - end.size()), end) != 0)
        return false;
    text = trimmed(text.substr(0, text.size() - end.size()));
    return true;
}

/// Takes AM or PM, or the file's words for them, off the end.
Half takeHalf(std::u16string_view& text) {
    if (takeEnd(text, u"AM") || takeEnd(text, formats().morning)) return Half::morning;
    if (takeEnd(text, u"PM") || takeEnd(text, formats().afternoon)) return Half::afternoon;
    return Half::none;
}

std::int64_t microsOfFraction(Fields::Number fraction) {
    constexpr std::size_t microDigits = 6;
    for (; fraction.width < microDigits; ++fraction.width)
        fraction.value *= 10;
    for (; fraction.width > microDigits; --fraction.width)
        fraction.value /= 10;
    return fraction.value;
}

/// The microseconds of hours, minutes, seconds and a fraction, as many as there are; nothing where another
/// sign stands between them or one is larger than any time.
std::optional<std::int64_t> microsOf(const Fields& fields) {
    constexpr std::array<std::int64_t, 3> secondsOf{3600, 60, 1};
    constexpr std::int64_t most = 40'000'000;
    std::int64_t micros = 0;
    for (std::size_t i = 0; i < fields.numbers.size(); ++i) {
        const Fields::Number& number = fields.numbers[i];
        const bool isFraction = i == secondsOf.size();
        const char16_t sign = i == 0 ? u':' : fields.between[i - 1];
        if (isFraction ? sign != u'.' && sign != formats().decimalPoint : sign != u':' || number.value > most)
            return std::nullopt;
        micros +=
            isFraction ? microsOfFraction(number) : number.value * secondsOf[i] * DateTime::microsPerSecond;
    }
    return micros;
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
    const auto january1 = daysTo(std::chrono::year(date().year) / 1 / 1);
    return static_cast<int>(std::clamp<std::int64_t>(days, 0, lastDay) - january1) + 1;
}

int DateTime::weekOfYear() const {
    const auto january1 = daysTo(std::chrono::year(date().year) / 1 / 1);
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
    const DateTime result{.days = daysTo(first) + day - 1, .micros = 0};
    return result.hasValidDate() ? std::optional(result) : std::nullopt;
}

std::u16string DateTime::dateText() const {
    const Formats& local = formats();
    const Date parts = date();
    const std::array numbers{parts.day, parts.month, parts.year}; // in the order of Formats::Part
    const std::array<std::size_t, 3> widths{local.padsDays ? 2U : 1U, local.padsMonths ? 2U : 1U, yearDigits};
    std::u16string text;
    for (const Formats::Part part : local.dateOrder) {
        const auto index = static_cast<std::size_t>(part);
        if (!text.empty()) text += local.dateSeparator;
        appendNumber(text, numbers[index], widths[index]);
    }
    return text;
}

std::u16string DateTime::timeText() const {
    return (micros < 0 ? u"-" : u"") +
           printed("%lld:%02d", static_cast<long long>(std::abs(hour())), minute()) + secondsText();
}

/// The seconds with their colon and fraction.
std::u16string DateTime::secondsText() const {
    std::u16string text = printed(":%02d", second());
    if (microsecond() == 0) return text;
    text += formats().decimalPoint + printed("%06d", microsecond());
    text.erase(text.find_last_not_of(u'0') + 1);
    return text;
}

std::u16string DateTime::timestampText(bool showsZeroSeconds) const {
    constexpr std::int64_t noon = 12;
    const Formats& local = formats();
    const bool isHalved = !local.afternoon.empty();
    const std::int64_t hours = !isHalved ? hour() : hour() % noon == 0 ? noon : hour() % noon;
    std::u16string text = dateText() + u' ' + printed("%lld:%02d", static_cast<long long>(hours), minute());
    if (showsZeroSeconds || second() != 0 || microsecond() != 0) text += secondsText();
    if (isHalved) text += u' ' + (hour() < noon ? local.morning : local.afternoon);
    return text;
}

std::optional<DateTime> DateTime::parseDate(std::u16string_view text) {
    const auto fields = fieldsOf(trimmed(text));
    if (!fields || fields->numbers.size() < 2 || fields->numbers.size() > 3) return std::nullopt;
    const char16_t separator = fields->between.front();
    if (!isDateSeparator(separator) || fields->between.back() != separator) return std::nullopt;
    const bool hasYear = fields->numbers.size() == 3;
    std::array<std::int64_t, 3> parts{}; // in the order of Formats::Part
    auto number = fields->numbers.begin();
    for (const Formats::Part part : formats().dateOrder) {
        if (part != Formats::Part::year)
            parts[static_cast<std::size_t>(part)] = (number++)->value;
        else
            parts[static_cast<std::size_t>(part)] = hasYear ? yearOf(*number++) : thisYear();
    }
    const auto& [day, month, year] = parts;
    const auto result = fromDate(year, month, day);
    if (!result) return std::nullopt;
    const Date check = result->date();
    return check.month == month && check.day == day ? result : std::nullopt;
}

std::optional<DateTime> DateTime::parseTime(std::u16string_view text) {
    constexpr std::int64_t noon = 12;
    text = trimmed(text);
    const Half half = takeHalf(text);
    const bool isNegative = text.starts_with(u'-');
    auto fields = fieldsOf(text.substr(isNegative ? 1 : 0));
    if (!fields) return std::nullopt;
    std::int64_t& hours = fields->numbers.front().value;
    if (half != Half::none) {
        if (hours > noon || isNegative) return std::nullopt;
        hours = hours % noon + (half == Half::afternoon ? noon : 0);
    }
    const auto micros = microsOf(*fields);
    if (!micros) return std::nullopt;
    return DateTime{.days = 0, .micros = isNegative ? -*micros : *micros};
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
