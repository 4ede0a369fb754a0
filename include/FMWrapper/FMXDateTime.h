#pragma once

/// Dates and times. The epoch is 0001-01-01 00:00:00 of the proleptic Gregorian calendar, local time.
/// Objects live in the host. Code of a plug-in may use them while it handles a message or a function call, on
/// the host's thread. The code that constructs an object owns it; its owner class gives it back. A failing
/// call throws (see FMXClient.h).

#include "FMWrapper/FMXFixPt.h"
#include "FMWrapper/FMXText.h"

#include <memory>

namespace fmx {

/// A date, a time of day, or both.
class DateTime {
public:
    bool operator==(const DateTime& that) const;
    bool operator!=(const DateTime& that) const;
    /// The present moment, local time.
    void Now();
    /// 1 or 0.
    int16 IsLeapYear() const;
    /// The day of the week; 1 is Sunday.
    int16 DayOfWeek() const;
    /// The day of the year; 1 is January 1.
    int16 DayOfYear() const;
    /// The week of the year; 1 is that of January 1. Weeks begin on Sunday.
    int16 WeekOfYear() const;
    /// The first copies only the date, the second only the time.
    void SetDate(const DateTime& that);
    void SetTime(const DateTime& that);
    void SetDaysSinceEpoch(int64 days);
    void SetSecsSinceMidnight(const FixPt& seconds);
    void SetSecondsSinceEpoch(const FixPt& seconds);
    /// Months after December and days after the month's end carry over. Not 0 when the date leaves the
    /// calendar.
    errcode SetNormalizedDate(int16 month, int16 day, int16 year);
    errcode SetNormalizedDate(const FixPt& year, const FixPt& month, const FixPt& day);
    /// Minutes and seconds above 59 carry over. Hours may be above 23, for a span of time.
    errcode SetNormalizedTime(int64 hour, int16 minute, int16 second, int32 usec = 0);
    errcode SetNormalizedTime(const FixPt& hour, const FixPt& minute, const FixPt& second);
    int16 GetYear() const;
    int16 GetMonth() const;
    int16 GetDay() const;
    int16 GetMinute() const;
    int16 GetSec() const;
    int32 GetDaysSinceEpoch() const;
    int32 GetHour() const;
    /// Microseconds within the second.
    int32 GetUSec() const;
    /// These three write into the caller's number: seconds of the minute with their fraction, since midnight,
    /// and since the epoch.
    void GetSeconds(FixPt& seconds) const;
    void GetSecsSinceMidnight(FixPt& seconds) const;
    void GetSecondsSinceEpoch(FixPt& seconds) const;

    static void operator delete(void* _self);

private:
    friend class DateTimeUniquePtr;
    DateTime();
    DateTime(const DateTime&);
    DateTime& operator=(const DateTime&);
};

/// Owns a DateTime and gives it back to the host.
class DateTimeUniquePtr : public std::unique_ptr<DateTime> {
public:
    DateTimeUniquePtr();
    DateTimeUniquePtr(const unichar16* s, uint32 length, const Locale& locale);
    DateTimeUniquePtr(const Text& text, const Locale& locale);
};

} // namespace fmx

extern "C" {

fmx::DateTime* FM_DateTime_Constructor1(fmx::_fmxcpt& _x);
fmx::DateTime* FM_DateTime_Constructor2(const fmx::unichar16* s, fmx::uint32 length,
                                        const fmx::Locale& locale, fmx::_fmxcpt& _x);
fmx::DateTime* FM_DateTime_Constructor3(const fmx::Text& text, const fmx::Locale& locale, fmx::_fmxcpt& _x);
void FM_DateTime_Delete(void* _self, fmx::_fmxcpt& _x);
bool FM_DateTime_operatorEQ(const void* _self, const fmx::DateTime& that, fmx::_fmxcpt& _x);
bool FM_DateTime_operatorNE(const void* _self, const fmx::DateTime& that, fmx::_fmxcpt& _x);
void FM_DateTime_Now(void* _self, fmx::_fmxcpt& _x);
fmx::int16 FM_DateTime_IsLeapYear(const void* _self, fmx::_fmxcpt& _x);
fmx::int16 FM_DateTime_DayOfWeek(const void* _self, fmx::_fmxcpt& _x);
fmx::int16 FM_DateTime_DayOfYear(const void* _self, fmx::_fmxcpt& _x);
fmx::int16 FM_DateTime_WeekOfYear(const void* _self, fmx::_fmxcpt& _x);
void FM_DateTime_SetDate(void* _self, const fmx::DateTime& that, fmx::_fmxcpt& _x);
void FM_DateTime_SetTime(void* _self, const fmx::DateTime& that, fmx::_fmxcpt& _x);
void FM_DateTime_SetDaysSinceEpoch(void* _self, fmx::int64 days, fmx::_fmxcpt& _x);
void FM_DateTime_SetSecsSinceMidnight(void* _self, const fmx::FixPt& seconds, fmx::_fmxcpt& _x);
void FM_DateTime_SetSecondsSinceEpoch(void* _self, const fmx::FixPt& seconds, fmx::_fmxcpt& _x);
fmx::errcode FM_DateTime_SetNormalizedDate1(void* _self, fmx::int16 month, fmx::int16 day, fmx::int16 year,
                                            fmx::_fmxcpt& _x);
fmx::errcode FM_DateTime_SetNormalizedDate2(void* _self, const fmx::FixPt& year, const fmx::FixPt& month,
                                            const fmx::FixPt& day, fmx::_fmxcpt& _x);
fmx::errcode FM_DateTime_SetNormalizedTime1(void* _self, fmx::int64 hour, fmx::int16 minute,
                                            fmx::int16 second, fmx::int32 usec, fmx::_fmxcpt& _x);
fmx::errcode FM_DateTime_SetNormalizedTime2(void* _self, const fmx::FixPt& hour, const fmx::FixPt& minute,
                                            const fmx::FixPt& second, fmx::_fmxcpt& _x);
fmx::int16 FM_DateTime_GetYear(const void* _self, fmx::_fmxcpt& _x);
fmx::int16 FM_DateTime_GetMonth(const void* _self, fmx::_fmxcpt& _x);
fmx::int16 FM_DateTime_GetDay(const void* _self, fmx::_fmxcpt& _x);
fmx::int16 FM_DateTime_GetMinute(const void* _self, fmx::_fmxcpt& _x);
fmx::int16 FM_DateTime_GetSec(const void* _self, fmx::_fmxcpt& _x);
fmx::int32 FM_DateTime_GetDaysSinceEpoch(const void* _self, fmx::_fmxcpt& _x);
fmx::int32 FM_DateTime_GetHour(const void* _self, fmx::_fmxcpt& _x);
fmx::int32 FM_DateTime_GetUSec(const void* _self, fmx::_fmxcpt& _x);
void FM_DateTime_GetSeconds(const void* _self, fmx::FixPt& seconds, fmx::_fmxcpt& _x);
void FM_DateTime_GetSecsSinceMidnight(const void* _self, fmx::FixPt& seconds, fmx::_fmxcpt& _x);
void FM_DateTime_GetSecondsSinceEpoch(const void* _self, fmx::FixPt& seconds, fmx::_fmxcpt& _x);
}

namespace fmx {

inline bool DateTime::operator==(const DateTime& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_DateTime_operatorEQ(this, that, _x);
    _x.Check();
    return _rtn;
}
inline bool DateTime::operator!=(const DateTime& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_DateTime_operatorNE(this, that, _x);
    _x.Check();
    return _rtn;
}
inline void DateTime::Now() {
    _fmxcpt _x;
    FM_DateTime_Now(this, _x);
    _x.Check();
}
inline int16 DateTime::IsLeapYear() const {
    _fmxcpt _x;
    const auto _rtn = FM_DateTime_IsLeapYear(this, _x);
    _x.Check();
    return _rtn;
}
inline int16 DateTime::DayOfWeek() const {
    _fmxcpt _x;
    const auto _rtn = FM_DateTime_DayOfWeek(this, _x);
    _x.Check();
    return _rtn;
}
inline int16 DateTime::DayOfYear() const {
    _fmxcpt _x;
    const auto _rtn = FM_DateTime_DayOfYear(this, _x);
    _x.Check();
    return _rtn;
}
inline int16 DateTime::WeekOfYear() const {
    _fmxcpt _x;
    const auto _rtn = FM_DateTime_WeekOfYear(this, _x);
    _x.Check();
    return _rtn;
}
inline void DateTime::SetDate(const DateTime& that) {
    _fmxcpt _x;
    FM_DateTime_SetDate(this, that, _x);
    _x.Check();
}
inline void DateTime::SetTime(const DateTime& that) {
    _fmxcpt _x;
    FM_DateTime_SetTime(this, that, _x);
    _x.Check();
}
inline void DateTime::SetDaysSinceEpoch(int64 days) {
    _fmxcpt _x;
    FM_DateTime_SetDaysSinceEpoch(this, days, _x);
    _x.Check();
}
inline void DateTime::SetSecsSinceMidnight(const FixPt& seconds) {
    _fmxcpt _x;
    FM_DateTime_SetSecsSinceMidnight(this, seconds, _x);
    _x.Check();
}
inline void DateTime::SetSecondsSinceEpoch(const FixPt& seconds) {
    _fmxcpt _x;
    FM_DateTime_SetSecondsSinceEpoch(this, seconds, _x);
    _x.Check();
}
inline errcode DateTime::SetNormalizedDate(int16 month, int16 day, int16 year) {
    _fmxcpt _x;
    const auto _rtn = FM_DateTime_SetNormalizedDate1(this, month, day, year, _x);
    _x.Check();
    return _rtn;
}
inline errcode DateTime::SetNormalizedDate(const FixPt& year, const FixPt& month, const FixPt& day) {
    _fmxcpt _x;
    const auto _rtn = FM_DateTime_SetNormalizedDate2(this, year, month, day, _x);
    _x.Check();
    return _rtn;
}
inline errcode DateTime::SetNormalizedTime(int64 hour, int16 minute, int16 second, int32 usec) {
    _fmxcpt _x;
    const auto _rtn = FM_DateTime_SetNormalizedTime1(this, hour, minute, second, usec, _x);
    _x.Check();
    return _rtn;
}
inline errcode DateTime::SetNormalizedTime(const FixPt& hour, const FixPt& minute, const FixPt& second) {
    _fmxcpt _x;
    const auto _rtn = FM_DateTime_SetNormalizedTime2(this, hour, minute, second, _x);
    _x.Check();
    return _rtn;
}
inline int16 DateTime::GetYear() const {
    _fmxcpt _x;
    const auto _rtn = FM_DateTime_GetYear(this, _x);
    _x.Check();
    return _rtn;
}
inline int16 DateTime::GetMonth() const {
    _fmxcpt _x;
    const auto _rtn = FM_DateTime_GetMonth(this, _x);
    _x.Check();
    return _rtn;
}
inline int16 DateTime::GetDay() const {
    _fmxcpt _x;
    const auto _rtn = FM_DateTime_GetDay(this, _x);
    _x.Check();
    return _rtn;
}
inline int16 DateTime::GetMinute() const {
    _fmxcpt _x;
    const auto _rtn = FM_DateTime_GetMinute(this, _x);
    _x.Check();
    return _rtn;
}
inline int16 DateTime::GetSec() const {
    _fmxcpt _x;
    const auto _rtn = FM_DateTime_GetSec(this, _x);
    _x.Check();
    return _rtn;
}
inline int32 DateTime::GetDaysSinceEpoch() const {
    _fmxcpt _x;
    const auto _rtn = FM_DateTime_GetDaysSinceEpoch(this, _x);
    _x.Check();
    return _rtn;
}
inline int32 DateTime::GetHour() const {
    _fmxcpt _x;
    const auto _rtn = FM_DateTime_GetHour(this, _x);
    _x.Check();
    return _rtn;
}
inline int32 DateTime::GetUSec() const {
    _fmxcpt _x;
    const auto _rtn = FM_DateTime_GetUSec(this, _x);
    _x.Check();
    return _rtn;
}
inline void DateTime::GetSeconds(FixPt& seconds) const {
    _fmxcpt _x;
    FM_DateTime_GetSeconds(this, seconds, _x);
    _x.Check();
}
inline void DateTime::GetSecsSinceMidnight(FixPt& seconds) const {
    _fmxcpt _x;
    FM_DateTime_GetSecsSinceMidnight(this, seconds, _x);
    _x.Check();
}
inline void DateTime::GetSecondsSinceEpoch(FixPt& seconds) const {
    _fmxcpt _x;
    FM_DateTime_GetSecondsSinceEpoch(this, seconds, _x);
    _x.Check();
}
inline void DateTime::operator delete(void* _self) {
    _fmxcpt _x;
    FM_DateTime_Delete(_self, _x);
}
inline DateTimeUniquePtr::DateTimeUniquePtr() {
    _fmxcpt _x;
    reset(FM_DateTime_Constructor1(_x));
    _x.Check();
}
inline DateTimeUniquePtr::DateTimeUniquePtr(const unichar16* s, uint32 length, const Locale& locale) {
    _fmxcpt _x;
    reset(FM_DateTime_Constructor2(s, length, locale, _x));
    _x.Check();
}
inline DateTimeUniquePtr::DateTimeUniquePtr(const Text& text, const Locale& locale) {
    _fmxcpt _x;
    reset(FM_DateTime_Constructor3(text, locale, _x));
    _x.Check();
}

} // namespace fmx
