#include "host/calc/Arguments.h"
#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <array>

namespace host::calc {

namespace {

constexpr std::int64_t longestSpanSeconds = 4'000LL * 366 * 86'400;

DataRef dateTimeResult(DateTime value, DataType type) { return std::make_shared<const Data>(value, type); }

DataRef date(Arguments arguments) {
    const auto part = [&](std::size_t i) { return arguments[i]->asNumber().toInt64(); };
    const auto value = DateTime::fromDate(part(2), part(0), part(1));
    return value ? dateTimeResult(*value, DataType::date) : questionMark();
}

/// Parts may be of any size or negative, and have fractions.
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

DataRef timestamp(Arguments arguments) {
    const auto day = arguments[0]->dateTime(DataType::date);
    const auto span = arguments[1]->dateTime(DataType::time);
    if (!day || !span) return questionMark();
    const DateTime both = DateTime::fromMicrosSinceEpoch(day->days * DateTime::microsPerDay + span->micros);
    return both.hasValidDate() ? dateTimeResult(both, DataType::timestamp) : questionMark();
}

/// A part of a value read as a date (or a time); "?" when it has no such reading.
template<DataType type, auto part>
DataRef partOf(Arguments arguments) {
    const auto value = arguments[0]->dateTime(type);
    return value ? numberResult(part(*value)) : questionMark();
}

Decimal day(const DateTime& value) { return value.date().day; }
Decimal month(const DateTime& value) { return value.date().month; }
Decimal year(const DateTime& value) { return value.date().year; }
Decimal dayOfWeek(const DateTime& value) { return value.dayOfWeek(); }
Decimal dayOfYear(const DateTime& value) { return value.dayOfYear(); }
Decimal hour(const DateTime& value) { return value.hour(); }
Decimal minute(const DateTime& value) { return value.minute(); }
/// With its fraction.
Decimal seconds(const DateTime& value) {
    const std::int64_t micros = value.second() * DateTime::microsPerSecond + value.microsecond();
    return Decimal(micros).dividedBy(Decimal(DateTime::microsPerSecond)).value_or(Decimal());
}

constexpr std::array rows{
    EagerRow{u"Date", 3, 3, date},
    EagerRow{u"Time", 3, 3, time},
    EagerRow{u"Timestamp", 2, 2, timestamp},
    EagerRow{u"Day", 1, 1, partOf<DataType::date, day>},
    EagerRow{u"Month", 1, 1, partOf<DataType::date, month>},
    EagerRow{u"Year", 1, 1, partOf<DataType::date, year>},
    EagerRow{u"DayOfWeek", 1, 1, partOf<DataType::date, dayOfWeek>},
    EagerRow{u"DayOfYear", 1, 1, partOf<DataType::date, dayOfYear>},
    EagerRow{u"Hour", 1, 1, partOf<DataType::time, hour>},
    EagerRow{u"Minute", 1, 1, partOf<DataType::time, minute>},
    EagerRow{u"Seconds", 1, 1, partOf<DataType::time, seconds>},
};

} // namespace

void addDateFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
