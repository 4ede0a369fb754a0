#include "host/sql/FunctionRows.h"
#include "host/sql/Values.h"
#include "host/values/Clock.h"
#include "host/values/DateTime.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <optional>
#include <string>

namespace host::sql {

namespace {

using Context = sqlite3_context*;
using Arguments = SqlArguments;

constexpr std::size_t kDateLength = 10; ///< YYYY-MM-DD

constexpr std::array dayNames{"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
constexpr std::array monthNames{"January", "February", "March",     "April",   "May",      "June",
                                "July",    "August",   "September", "October", "November", "December"};

/// The type of a value shows in its form.
DataType typeOf(std::string_view text) {
    if (text.size() > kDateLength && text[kDateLength] == ' ') return DataType::timestamp;
    return text.find(':') == std::string_view::npos ? DataType::date : DataType::time;
}

std::optional<DateTime> momentOf(sqlite3_value* value) {
    const std::string_view text = textOf(value);
    return readSqlText(fromUtf8(text), typeOf(text));
}

void giveMoment(Context context, const DateTime& value, DataType type) {
    if (type != DataType::time && !value.hasValidDate()) return sqlite3_result_null(context);
    giveText(context, sqlText(value, type));
}

template<std::int64_t (*of)(const DateTime&)>
void part(Context context, int /*count*/, Arguments arguments) {
    const auto value = momentOf(arguments[0]);
    if (!value) return sqlite3_result_null(context);
    sqlite3_result_int64(context, of(*value));
}

std::int64_t year(const DateTime& value) { return value.date().year; }
std::int64_t month(const DateTime& value) { return value.date().month; }
std::int64_t day(const DateTime& value) { return value.date().day; }
std::int64_t dayOfWeek(const DateTime& value) { return value.dayOfWeek(); }
std::int64_t hour(const DateTime& value) { return value.hour(); }
std::int64_t minute(const DateTime& value) { return value.minute(); }
std::int64_t second(const DateTime& value) { return value.second(); }

void dayName(Context context, int /*count*/, Arguments arguments) {
    const auto value = momentOf(arguments[0]);
    if (!value) return sqlite3_result_null(context);
    giveText(context, dayNames.at(static_cast<std::size_t>(value->dayOfWeek()) - 1));
}

void monthName(Context context, int /*count*/, Arguments arguments) {
    const auto value = momentOf(arguments[0]);
    if (!value) return sqlite3_result_null(context);
    giveText(context, monthNames.at(static_cast<std::size_t>(value->date().month) - 1));
}

/// The clock's time in whole seconds.
template<DataType type>
void now(Context context, int /*count*/, Arguments /*arguments*/) {
    const std::int64_t micros = clock().localSinceYearOne().count();
    giveMoment(context, DateTime::fromMicrosSinceEpoch(micros - micros % DateTime::microsPerSecond), type);
}

/// A text in SQL form.
template<DataType type>
void read(Context context, int /*count*/, Arguments arguments) {
    const auto value = readSqlText(fromUtf8(textOf(arguments[0])), type);
    if (!value) return sqlite3_result_error(context, "FQL0010", -1);
    giveMoment(context, *value, type);
}

/// A date, time or timestamp as another type of the three.
template<DataType type>
void converted(Context context, int /*count*/, Arguments arguments) {
    auto value = momentOf(arguments[0]);
    if (!value) return sqlite3_result_null(context);
    if (type == DataType::time) value->days = 0;
    giveMoment(context, *value, type);
}

void addDays(Context context, int /*count*/, Arguments arguments) {
    auto value = momentOf(arguments[0]);
    if (!value) return sqlite3_result_null(context);
    value->days += countOf(arguments[1]);
    giveMoment(context, *value, DataType::date);
}

void daysBetween(Context context, int /*count*/, Arguments arguments) {
    const auto later = momentOf(arguments[0]), earlier = momentOf(arguments[1]);
    if (!later || !earlier) return sqlite3_result_null(context);
    sqlite3_result_int64(context, later->days - earlier->days);
}

/// The same day of another month, or that month's last one.
std::optional<DateTime> monthsLater(const DateTime& value, std::int64_t months) {
    const DateTime::Date date = value.date();
    const auto first = DateTime::fromDate(date.year, date.month + months, 1);
    const auto last = DateTime::fromDate(date.year, date.month + months + 1, 0);
    if (!first || !last) return std::nullopt;
    return DateTime{std::min(first->days + date.day - 1, last->days), value.micros};
}

/// A value, a number, and a unit as a letter: Y, M, D, h, m or s.
void addInterval(Context context, int /*count*/, Arguments arguments) {
    constexpr std::int64_t monthsOfYear = 12, sixty = 60;
    const DataType type = typeOf(textOf(arguments[0]));
    auto value = momentOf(arguments[0]);
    const std::string_view unit = textOf(arguments[2]);
    std::int64_t count =
        std::clamp(countOf(arguments[1]), -DateTime::lastDay * 86'400, DateTime::lastDay * 86'400);
    if (value && (unit == "Y" || unit == "M"))
        value = monthsLater(*value, std::clamp(count, -DateTime::lastDay, DateTime::lastDay) *
                                        (unit == "Y" ? monthsOfYear : 1));
    if (!value) return sqlite3_result_null(context);
    if (unit == "D") value->days += count;
    if (unit == "h") count *= sixty * sixty;
    if (unit == "m") count *= sixty;
    if (unit == "h" || unit == "m" || unit == "s") {
        constexpr std::int64_t most = 1'000'000'000'000; // seconds; with a date's own they stay in range
        value->micros += std::clamp(count, -most, most) * DateTime::microsPerSecond;
        if (type != DataType::time) value = DateTime::fromMicrosSinceEpoch(value->microsSinceEpoch());
    }
    giveMoment(context, *value, type);
}

constexpr DataType kText = DataType::text, kNumber = DataType::number, kDate = DataType::date,
                   kTime = DataType::time, kTimestamp = DataType::timestamp;

constexpr std::array rows{
    FunctionRow{"YEAR", "d", kNumber, guarded<part<year>>},
    FunctionRow{"MONTH", "d", kNumber, guarded<part<month>>},
    FunctionRow{"DAY", "d", kNumber, guarded<part<day>>},
    FunctionRow{"DAYOFWEEK", "d", kNumber, guarded<part<dayOfWeek>>},
    FunctionRow{"HOUR", "t", kNumber, guarded<part<hour>>},
    FunctionRow{"MINUTE", "t", kNumber, guarded<part<minute>>},
    FunctionRow{"SECOND", "t", kNumber, guarded<part<second>>},
    FunctionRow{"DAYNAME", "d", kText, guarded<dayName>},
    FunctionRow{"MONTHNAME", "d", kText, guarded<monthName>},
    FunctionRow{"CURDATE", "", kDate, guarded<now<kDate>>, true},
    FunctionRow{"CURRENT_DATE", "", kDate, guarded<now<kDate>>, true},
    FunctionRow{"TODAY", "", kDate, guarded<now<kDate>>, true},
    FunctionRow{"DATE", "", kDate, guarded<now<kDate>>},
    FunctionRow{"CURTIME", "", kTime, guarded<now<kTime>>, true},
    FunctionRow{"CURRENT_TIME", "", kTime, guarded<now<kTime>>, true},
    FunctionRow{"TIME", "", kTime, guarded<now<kTime>>},
    FunctionRow{"CURTIMESTAMP", "", kTimestamp, guarded<now<kTimestamp>>, true},
    FunctionRow{"CURRENT_TIMESTAMP", "", kTimestamp, guarded<now<kTimestamp>>, true},
    FunctionRow{"DATEVAL", "s", kDate, guarded<read<kDate>>},
    FunctionRow{"TIMEVAL", "s", kTime, guarded<read<kTime>>},
    FunctionRow{"TIMESTAMPVAL", "s", kTimestamp, guarded<read<kTimestamp>>},
    FunctionRow{"_TO_DATE", "d", kDate, guarded<converted<kDate>>},
    FunctionRow{"_TO_TIME", "t", kTime, guarded<converted<kTime>>},
    FunctionRow{"_TO_TIMESTAMP", "d", kTimestamp, guarded<converted<kTimestamp>>},
    FunctionRow{"_ADD_DAYS", "dn", kDate, guarded<addDays>},
    FunctionRow{"_DAYS_BETWEEN", "dd", kNumber, guarded<daysBetween>},
    FunctionRow{"_ADD_INTERVAL", "dns", kDate, guarded<addInterval>},
};

} // namespace

std::span<const FunctionRow> dateFunctions() { return rows; }

} // namespace host::sql
