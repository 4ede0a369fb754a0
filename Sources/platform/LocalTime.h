#pragma once

/// Local time by the C library, and the host's epoch. Nothing here needs Objective-C.

#include <time.h> // localtime_r, tzset: POSIX, not in <ctime>

namespace platform {

/// Seconds from 0001-01-01, the host's epoch, to 1970-01-01: 719,162 days.
inline constexpr double kSecondsFromHostEpochToUnixEpoch = 719'162.0 * 86'400;

/// Seconds by which local time is ahead of UTC at a moment, summer time included. 0 when the C library cannot
/// say.
inline double localOffset(time_t moment) {
    ::tzset(); // localtime_r alone need not notice that the zone has changed, as it does on a journey
    tm local{};
    if (::localtime_r(&moment, &local) == nullptr) return 0;
    return static_cast<double>(local.tm_gmtoff);
}

} // namespace platform
