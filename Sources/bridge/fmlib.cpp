#include "bridge/fmlib.h"

#include "bridge/StringUtils.h"
#include "bridge/cFMUtils.h"

#include <sys/time.h>
#include <time.h> // localtime_r, tzset: POSIX, not in <ctime>

namespace fmlib {
namespace {

/// The precision of numbers that the plug-in makes, in digits.
constexpr int kPrecision = 16;

/// From 0001-01-01, where the host's clock begins, to 1970-01-01.
constexpr double kSecondsFromHostEpochToUnixEpoch = 62135596800.0;

/// Seconds by which local time is ahead of UTC at a moment, summer time included.
///
/// The time-zone record of gettimeofday would give -(minutes west) × 60 + (summer time flag) × 3600, but
/// only Apple's systems fill it; the GNU C library leaves it zero. Both know tm_gmtoff, which is the
/// same sum, and right also where summer time is not one hour.
double localOffset(time_t moment) {
    ::tzset(); // localtime_r alone need not notice that the zone has changed, as it does on a journey
    tm local{};
    if (::localtime_r(&moment, &local) == nullptr) return 0;
    return static_cast<double>(local.tm_gmtoff);
}

} // namespace

std::string StringFromFmText(const fmx::Text& text) { return ::StringFromFmText(text); }

std::wstring WStringFromFMText(const fmx::Text& text) { return cFMUtils::WStringFromFMText(text); }

void copyToFMText(std::string& s, fmx::Text& text) {
    text.DeleteText(0);
    text.AssignWithLength(s.data(), hostLength(s.size()), fmx::Text::kEncoding_Native);
}

void FMErrCode2FMData(short code, fmx::Data& result) {
    const fmx::FixPtUniquePtr number(code, kPrecision);
    result.SetAsNumber(*number, fmx::Data::kDTNumber);
}

void FMData2FMData(const fmx::Data& from, fmx::Data& to) {
    if (&from == &to) return;
    const fmx::Data::DataType type = from.GetNativeType();
    // Texts alone are set with a locale; setting another type leaves it as it is.
    to.SetAsText(from.GetAsText(), from.GetLocale(), type);
    switch (type) {
    case fmx::Data::kDTNumber:
    case fmx::Data::kDTBoolean: to.SetAsNumber(from.GetAsNumber(), type); break;
    case fmx::Data::kDTDate: to.SetAsDate(from.GetAsDate(), type); break;
    case fmx::Data::kDTTime: to.SetAsTime(from.GetAsTime(), type); break;
    case fmx::Data::kDTTimeStamp: to.SetAsTimeStamp(from.GetAsTimeStamp(), type); break;
    case fmx::Data::kDTBinary: to.SetBinaryData(from.GetBinaryData()); break;
    default: return;
    }
    // A field may hold what its type cannot express: nothing, or letters in a number.
    const bool hasStreams = type == fmx::Data::kDTBinary && from.GetBinaryData().GetCount() > 0;
    if (!hasStreams && to.GetAsText() != from.GetAsText())
        to.SetAsText(from.GetAsText(), from.GetLocale(), type);
}

void SetDateTimeToNow(fmx::DateTime& dateTime) {
    timeval now{};
    ::gettimeofday(&now, nullptr);
    const double seconds = static_cast<double>(now.tv_sec) + localOffset(now.tv_sec) +
                           kSecondsFromHostEpochToUnixEpoch + static_cast<double>(now.tv_usec) / 1000000.0;
    const fmx::FixPtUniquePtr number(0, kPrecision);
    number->AssignDouble(seconds);
    dateTime.SetSecondsSinceEpoch(*number);
}

unsigned FindFMTextInArray(const fmx::Text& text, const char* const table[], unsigned count) {
    return cFMUtils::FindFMTextInArray(text, table, count);
}

} // namespace fmlib
