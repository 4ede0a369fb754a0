#pragma once

// The same interface as another vendor might write it: declarations alone, and no include but those it needs.

#include "FMWrapper/FMXClient.h"

#include <memory>

namespace fmx {

class Text;
class FixPt;
class Locale;
class DateTime {
public:
    bool operator==(const DateTime&) const;
    bool operator!=(const DateTime&) const;
    void Now();
    int16 IsLeapYear() const;
    int16 DayOfWeek() const;
    int16 DayOfYear() const;
    int16 WeekOfYear() const;
    void SetDate(const DateTime&);
    void SetTime(const DateTime&);
    void SetDaysSinceEpoch(int64);
    void SetSecsSinceMidnight(const FixPt&);
    void SetSecondsSinceEpoch(const FixPt&);
    errcode SetNormalizedDate(int16, int16, int16);
    errcode SetNormalizedDate(const FixPt&, const FixPt&, const FixPt&);
    errcode SetNormalizedTime(int64, int16, int16, int32 = 0);
    errcode SetNormalizedTime(const FixPt&, const FixPt&, const FixPt&);
    int16 GetYear() const;
    int16 GetMonth() const;
    int16 GetDay() const;
    int16 GetMinute() const;
    int16 GetSec() const;
    int32 GetDaysSinceEpoch() const;
    int32 GetHour() const;
    int32 GetUSec() const;
    void GetSeconds(FixPt&) const;
    void GetSecsSinceMidnight(FixPt&) const;
    void GetSecondsSinceEpoch(FixPt&) const;
    DateTime() = delete;
    DateTime(const DateTime&) = delete;
    void operator=(const DateTime&) = delete;
    ~DateTime() = default;
    static void operator delete(void*);
};

class DateTimeUniquePtr : public std::unique_ptr<DateTime> {
public:
    DateTimeUniquePtr();
    DateTimeUniquePtr(const unichar16*, uint32, const Locale&);
    DateTimeUniquePtr(const Text&, const Locale&);
};

} // namespace fmx
