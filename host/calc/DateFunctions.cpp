#include "host/calc/Arguments.h"
#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <type_traits>

namespace host::calc {

namespace {

constexpr std::int64_t longestSpanSeconds = 4'000LL * 366 * 86'400;

DataRef dateTimeResult(DateTime value, DataType type) { return std::make_shared<const Data>(value, type); }

DataRef date(Arguments arguments) {
    const auto part = [&](std::size_t i) { return arguments[i]->asNumber().toInt64(); };
    const auto value = DateTime::fromDate(part(2), part(0), part(1));
    return value ? dateTimeResult(*value, DataType::date) : questionMark();
}

/// Hours, minutes and seconds may be of any size, below zero, and have fractions.
DataRef time(Arguments arguments) {
    const Decimal seconds =
        arguments[0]
            ->asNumber()
            .times(Decimal(3600))
            .plus(arguments[1]->asNumber().times(Decimal(60)).plus(arguments[2]->asNumber()));
    if (seconds > Decimal(longestSpanSeconds) || seconds < Decimal(-longestSpanSeconds))
        return questionMark();
    const std::int64_t micros = seconds.times(Decimal(DateTime::microsPerSecond)).rounded(0).toInt64();
    return dateTimeResult({.days = 0, .micros = micros}, DataType::time);
}

/// An argument of Timestamp. A date in the time's place, or a time in the date's, counts as its number.
std::optional<DateTime> partOfTimestamp(const Data& value, DataType wanted) {
    const DataType type = value.nativeType();
    const bool isOther = type != wanted && (type == DataType::date || type == DataType::time);
    return isOther ? Data(value.asNumber()).dateTime(wanted) : value.dateTime(wanted);
}

/// A time below zero or above a day moves the date.
DataRef timestamp(Arguments arguments) {
    const auto day = partOfTimestamp(*arguments[0], DataType::date);
    const auto span = partOfTimestamp(*arguments[1], DataType::time);
    if (!day || !span) return questionMark();
    const DateTime sum{.days = day->days, .micros = span->micros};
    const DateTime moment = DateTime::fromMicrosSinceEpoch(sum.microsSinceEpoch());
    return moment.hasValidDate() ? dateTimeResult(moment, DataType::timestamp) : questionMark();
}

/// A part of a value that is read as a date or a time. An empty value has empty parts, and one that has no
/// such reading gives "?".
template<DataType type, auto part>
DataRef partOf(Arguments arguments) {
    if (arguments[0]->isEmpty()) return emptyResult();
    const auto value = arguments[0]->dateTime(type);
    if (!value) return questionMark();
    if constexpr (std::is_convertible_v<decltype(part(*value)), Text>)
        return textResult(part(*value));
    else
        return numberResult(part(*value));
}

Decimal day(const DateTime& value) { return value.date().day; }
Decimal month(const DateTime& value) { return value.date().month; }
Decimal year(const DateTime& value) { return value.date().year; }
Decimal dayOfWeek(const DateTime& value) { return value.dayOfWeek(); }
Decimal dayOfYear(const DateTime& value) { return value.dayOfYear(); }
Decimal weekOfYear(const DateTime& value) { return value.weekOfYear(); }
Decimal hour(const DateTime& value) { return value.hour(); }
Decimal minute(const DateTime& value) { return value.minute(); }
/// Seconds keep their fraction.
Decimal seconds(const DateTime& value) {
    const std::int64_t micros = value.second() * DateTime::microsPerSecond + value.microsecond();
    return Decimal(micros).dividedBy(Decimal(DateTime::microsPerSecond)).value_or(Decimal());
}

constexpr std::array<const char16_t*, 7> dayNames{u"Sunday",   u"Monday", u"Tuesday", u"Wednesday",
                                                  u"Thursday", u"Friday", u"Saturday"};
constexpr std::array<const char16_t*, 12> monthNames{u"January",   u"February", u"March",    u"April",
                                                     u"May",       u"June",     u"July",     u"August",
                                                     u"September", u"October",  u"November", u"December"};
constexpr std::array<const char16_t*, 7> japaneseDayNames{u"日曜日", u"月曜日", u"火曜日", u"水曜日",
                                                          u"木曜日", u"金曜日", u"土曜日"};
constexpr std::array<const char16_t*, 12> japaneseMonthNames{u"一月", u"二月", u"三月",   u"四月",
                                                             u"五月", u"六月", u"七月",   u"八月",
                                                             u"九月", u"十月", u"十一月", u"十二月"};

template<const auto& names>
Text dayName(const DateTime& value) {
    return names.at(static_cast<std::size_t>(value.dayOfWeek() - 1));
}
template<const auto& names>
Text monthName(const DateTime& value) {
    return names.at(static_cast<std::size_t>(value.date().month - 1));
}

int daysInYear(int year) { return std::chrono::year(year).is_leap() ? 366 : 365; }

/// WeekOfYearFiscal ( date ; startingDay ): a week belongs to the year that has four or more days of it.
DataRef fiscalWeek(Arguments arguments) {
    if (arguments[0]->isEmpty()) return emptyResult();
    const auto value = arguments[0]->dateTime(DataType::date);
    const std::int64_t startingDay = whole(arguments[1]);
    if (!value || startingDay < 1 || startingDay > 7) return questionMark();
    const int year = value->date().year;
    const int weekday = (value->dayOfWeek() - static_cast<int>(startingDay) + 7) % 7; // 0: the week's first
    const int middle = value->dayOfYear() - weekday + 3; // the fourth day of the week, counted in this year
    if (middle > daysInYear(year)) return numberResult(1);
    return numberResult((middle + (middle < 1 ? daysInYear(year - 1) : 0) - 1) / 7 + 1);
}

/// An era of the Japanese calendar: its first day as year, month and day, and its names.
struct Era {
    std::array<int, 3> start;
    std::array<const char16_t*, 3> names; ///< in full, short, and as a wide letter
    int yearBefore;                       ///< the year before its first one
};
constexpr std::array eras{
    Era{{2019, 5, 1}, {u"令和", u"令", u"Ｒ"}, 2018},   Era{{1989, 1, 8}, {u"平成", u"平", u"Ｈ"}, 1988},
    Era{{1926, 12, 25}, {u"昭和", u"昭", u"Ｓ"}, 1925}, Era{{1912, 7, 30}, {u"大正", u"大", u"Ｔ"}, 1911},
    Era{{1868, 9, 8}, {u"明治", u"明", u"Ｍ"}, 1867},   Era{{1, 1, 1}, {u"西暦", u"西", u"A.D."}, 0},
};

/// YearName ( date ; format ): the year in its era, which format 0 names in full, 1 in short and 2 by a
/// letter.
DataRef yearName(Arguments arguments) {
    if (arguments[0]->isEmpty()) return emptyResult();
    const auto value = arguments[0]->dateTime(DataType::date);
    const std::int64_t format = whole(arguments[1]);
    if (!value || format < 0 || format > 2) return questionMark();
    const auto [year, month, day] = value->date();
    const std::array<int, 3> date{year, month, day};
    const auto* const era =
        std::find_if(eras.begin(), eras.end(), [&](const Era& row) { return row.start <= date; });
    return textResult(era->names.at(static_cast<std::size_t>(format)) +
                      Decimal(year - era->yearBefore).text());
}

constexpr std::array rows{
    EagerRow{u"Date", ofValid<date>},
    EagerRow{u"Time", ofValid<time>},
    EagerRow{u"Timestamp", timestamp},
    EagerRow{u"Day", partOf<DataType::date, day>},
    EagerRow{u"DayName", partOf<DataType::date, dayName<dayNames>>},
    EagerRow{u"DayNameJ", partOf<DataType::date, dayName<japaneseDayNames>>},
    EagerRow{u"DayOfWeek", partOf<DataType::date, dayOfWeek>},
    EagerRow{u"DayOfYear", partOf<DataType::date, dayOfYear>},
    EagerRow{u"Month", partOf<DataType::date, month>},
    EagerRow{u"MonthName", partOf<DataType::date, monthName<monthNames>>},
    EagerRow{u"MonthNameJ", partOf<DataType::date, monthName<japaneseMonthNames>>},
    EagerRow{u"WeekOfYear", partOf<DataType::date, weekOfYear>},
    EagerRow{u"WeekOfYearFiscal", fiscalWeek},
    EagerRow{u"Year", partOf<DataType::date, year>},
    EagerRow{u"YearName", yearName},
    EagerRow{u"Hour", partOf<DataType::time, hour>},
    EagerRow{u"Minute", partOf<DataType::time, minute>},
    EagerRow{u"Seconds", partOf<DataType::time, seconds>},
};

} // namespace

void addDateFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
