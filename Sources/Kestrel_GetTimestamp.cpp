#include "Kestrel_GetTimestamp.h"

#include "Handlers.h"
#include "bridge/HandlerFrame.h"
#include "bridge/fmlib.h"
#include "platform/LocalTime.h"
#include "platform/Platform.h"

#include <stdexcept>
#include <sys/time.h>

/// The present moment, by the platform's clock and by the C library's.

namespace {

/// The moment becomes that many seconds since the host's epoch.
void setSeconds(fmx::DateTime& moment, double secondsSinceHostEpoch) {
    const fmx::FixPtUniquePtr seconds(0, fmlib::kPrecision);
    seconds->AssignDouble(secondsSinceHostEpoch);
    moment.SetSecondsSinceEpoch(*seconds);
}

} // namespace

double getTimestamp() {
    double seconds = 0;
    if (!platform::readClock(seconds)) throw std::runtime_error("The platform's clock cannot be read");
    return seconds;
}

/// The time-zone record of gettimeofday is not used: only Apple's systems fill it, and it counts every summer
/// time as one hour.
void fmlib::SetDateTimeToNow(fmx::DateTime& dateTime) {
    timeval now{};
    ::gettimeofday(&now, nullptr);
    setSeconds(dateTime, static_cast<double>(now.tv_sec) + platform::localOffset(now.tv_sec) +
                             platform::kSecondsFromHostEpochToUnixEpoch +
                             static_cast<double>(now.tv_usec) / 1000000.0);
}

/// An argument is allowed and not read.
FMX_PROC(fmx::errcode)
Kestrel_GetTimestamp(short, const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    return kst::runHandler(env, result, [&] {
        const fmx::DateTimeUniquePtr moment;
        setSeconds(*moment, getTimestamp());
        result.SetAsTimeStamp(*moment, fmx::Data::kDTTimeStamp);
        return fmx::errcode{0};
    });
}
