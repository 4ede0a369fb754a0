#include "FMWrapper/FMXDateTime.h"

#include "host/calc/Engine.h"
#include "host/fmwrapper/Gate.h"
#include "host/values/Clock.h"
#include "host/values/Data.h"

#include <stdexcept>
#include <string_view>

using host::DateTime;
using host::Decimal;
using host::ObjectClass;
using host::bridge::in;
namespace gate = host::gate;

namespace {

constexpr std::int64_t mostSeconds = (DateTime::lastDay + 1) * 86'400;

/// Whether a number of seconds can be a time: at most the length of the calendar, in either direction.
bool isTime(const Decimal& seconds) {
    return seconds <= Decimal(mostSeconds) && seconds >= Decimal(-mostSeconds);
}

std::int64_t microsOf(const Decimal& seconds) {
    if (!isTime(seconds)) throw std::out_of_range("longer than the calendar");
    return seconds.times(Decimal(DateTime::microsPerSecond)).rounded(0).toInt64();
}

Decimal secondsOf(std::int64_t micros) {
    return Decimal(micros).dividedBy(Decimal(DateTime::microsPerSecond)).value_or(Decimal());
}

void setDays(DateTime& value, fmx::int64 days) {
    if (days < 0 || days > DateTime::lastDay) throw std::out_of_range("outside the calendar");
    value.days = days;
}

/// The value stays unchanged when the date is outside of the calendar.
fmx::errcode setDate(DateTime& value, std::int64_t year, std::int64_t month, std::int64_t day) {
    const auto date = DateTime::fromDate(year, month, day);
    if (!date) return host::calc::error::unspecific;
    value.days = date->days;
    return 0;
}

/// Minutes and seconds past 59 carry over. The value stays unchanged when the sum is no valid time.
fmx::errcode setTime(DateTime& value, const Decimal& hour, const Decimal& minute, const Decimal& second) {
    for (const Decimal* part : {&hour, &minute, &second})
        if (!isTime(*part)) return host::calc::error::unspecific;
    const Decimal seconds = hour.times(Decimal(3600)).plus(minute.times(Decimal(60))).plus(second);
    if (!isTime(seconds)) return host::calc::error::unspecific;
    value.micros = microsOf(seconds);
    return 0;
}

/// Reads a timestamp, a date or a time; gives the epoch for any other text.
DateTime read(std::u16string_view text) {
    if (const auto moment = DateTime::parseTimestamp(text)) return *moment;
    return DateTime::parseTime(text).value_or(DateTime());
}

} // namespace

extern "C" {

fmx::DateTime* FM_DateTime_Constructor1(fmx::_fmxcpt& _x) {
    return gate::construct<fmx::DateTime, ObjectClass::dateTime>(_x, [&] { return DateTime{}; });
}
fmx::DateTime* FM_DateTime_Constructor2(const fmx::unichar16* s, fmx::uint32 length,
                                        const fmx::Locale& locale, fmx::_fmxcpt& _x) {
    return gate::construct<fmx::DateTime, ObjectClass::dateTime>(_x, [&] {
        in<host::Locale>(&locale);
        return read(host::bridge::unitsFrom(s, length));
    });
}
fmx::DateTime* FM_DateTime_Constructor3(const fmx::Text& text, const fmx::Locale& locale, fmx::_fmxcpt& _x) {
    return gate::construct<fmx::DateTime, ObjectClass::dateTime>(_x, [&] {
        in<host::Locale>(&locale);
        return read(in<host::Text>(&text).units());
    });
}
void FM_DateTime_Delete(void* _self, fmx::_fmxcpt& _x) {
    gate::destroy<DateTime, ObjectClass::dateTime>(_self, _x);
}
bool FM_DateTime_operatorEQ(const void* _self, const fmx::DateTime& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<DateTime>(_self) == in<DateTime>(&that); });
}
bool FM_DateTime_operatorNE(const void* _self, const fmx::DateTime& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<DateTime>(_self) != in<DateTime>(&that); });
}
void FM_DateTime_Now(void* _self, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] {
        in<DateTime>(_self) = DateTime::fromMicrosSinceEpoch(host::clock().localSinceYearOne().count());
    });
}
fmx::int16 FM_DateTime_IsLeapYear(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::int16>(_x, [&] { return in<DateTime>(_self).isLeapYear() ? 1 : 0; });
}
fmx::int16 FM_DateTime_DayOfWeek(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::int16>(_x, [&] { return in<DateTime>(_self).dayOfWeek(); });
}
fmx::int16 FM_DateTime_DayOfYear(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::int16>(_x, [&] { return in<DateTime>(_self).dayOfYear(); });
}
fmx::int16 FM_DateTime_WeekOfYear(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::int16>(_x, [&] { return in<DateTime>(_self).weekOfYear(); });
}
void FM_DateTime_SetDate(void* _self, const fmx::DateTime& that, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<DateTime>(_self).days = in<DateTime>(&that).days; });
}
void FM_DateTime_SetTime(void* _self, const fmx::DateTime& that, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<DateTime>(_self).micros = in<DateTime>(&that).micros; });
}
void FM_DateTime_SetDaysSinceEpoch(void* _self, fmx::int64 days, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { setDays(in<DateTime>(_self), days); });
}
void FM_DateTime_SetSecsSinceMidnight(void* _self, const fmx::FixPt& seconds, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<DateTime>(_self).micros = microsOf(in<Decimal>(&seconds)); });
}
void FM_DateTime_SetSecondsSinceEpoch(void* _self, const fmx::FixPt& seconds, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] {
        const DateTime moment = DateTime::fromMicrosSinceEpoch(microsOf(in<Decimal>(&seconds)));
        if (!moment.hasValidDate()) throw std::out_of_range("outside the calendar");
        in<DateTime>(_self) = moment;
    });
}
fmx::errcode FM_DateTime_SetNormalizedDate1(void* _self, fmx::int16 month, fmx::int16 day, fmx::int16 year,
                                            fmx::_fmxcpt& _x) {
    return gate::code(_x, [&]() -> int { return setDate(in<DateTime>(_self), year, month, day); });
}
fmx::errcode FM_DateTime_SetNormalizedDate2(void* _self, const fmx::FixPt& year, const fmx::FixPt& month,
                                            const fmx::FixPt& day, fmx::_fmxcpt& _x) {
    return gate::code(_x, [&]() -> int {
        return setDate(in<DateTime>(_self), in<Decimal>(&year).toInt64(), in<Decimal>(&month).toInt64(),
                       in<Decimal>(&day).toInt64());
    });
}
fmx::errcode FM_DateTime_SetNormalizedTime1(void* _self, fmx::int64 hour, fmx::int16 minute,
                                            fmx::int16 second, fmx::int32 usec, fmx::_fmxcpt& _x) {
    return gate::code(_x, [&]() -> int {
        return setTime(in<DateTime>(_self), Decimal(hour), Decimal(minute),
                       Decimal(second).plus(secondsOf(usec)));
    });
}
fmx::errcode FM_DateTime_SetNormalizedTime2(void* _self, const fmx::FixPt& hour, const fmx::FixPt& minute,
                                            const fmx::FixPt& second, fmx::_fmxcpt& _x) {
    return gate::code(_x, [&]() -> int {
        return setTime(in<DateTime>(_self), in<Decimal>(&hour), in<Decimal>(&minute), in<Decimal>(&second));
    });
}
fmx::int16 FM_DateTime_GetYear(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::int16>(_x, [&] { return in<DateTime>(_self).date().year; });
}
fmx::int16 FM_DateTime_GetMonth(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::int16>(_x, [&] { return in<DateTime>(_self).date().month; });
}
fmx::int16 FM_DateTime_GetDay(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::int16>(_x, [&] { return in<DateTime>(_self).date().day; });
}
fmx::int16 FM_DateTime_GetMinute(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::int16>(_x, [&] { return in<DateTime>(_self).minute(); });
}
fmx::int16 FM_DateTime_GetSec(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::int16>(_x, [&] { return in<DateTime>(_self).second(); });
}
fmx::int32 FM_DateTime_GetDaysSinceEpoch(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::int32>(_x, [&] { return in<DateTime>(_self).days; });
}
fmx::int32 FM_DateTime_GetHour(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::int32>(_x, [&] { return in<DateTime>(_self).hour(); });
}
fmx::int32 FM_DateTime_GetUSec(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::int32>(_x, [&] { return in<DateTime>(_self).microsecond(); });
}
void FM_DateTime_GetSeconds(const void* _self, fmx::FixPt& seconds, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] {
        const DateTime& time = in<DateTime>(_self);
        in<Decimal>(&seconds) = Decimal(time.second()).plus(secondsOf(time.microsecond()));
    });
}
void FM_DateTime_GetSecsSinceMidnight(const void* _self, fmx::FixPt& seconds, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Decimal>(&seconds) = secondsOf(in<DateTime>(_self).micros); });
}
void FM_DateTime_GetSecondsSinceEpoch(const void* _self, fmx::FixPt& seconds, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Decimal>(&seconds) = secondsOf(in<DateTime>(_self).microsSinceEpoch()); });
}

} // extern "C"
