#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <limits>

namespace host {

/// The time from 0001-01-01 00:00:00 to 1970-01-01 00:00:00.
inline constexpr std::chrono::seconds kYearOneToUnixEpoch{62'135'596'800};

/// The host's time: the machine's, moved forwards or backwards, or held still. It may be read on any thread
/// while one moves it.
class Clock {
public:
    using Micros = std::chrono::microseconds;

    /// Microseconds since 1970-01-01 00:00:00 UTC.
    [[nodiscard]] Micros now() const;
    /// The same as local time since 0001-01-01 00:00:00, by the machine's time zone.
    [[nodiscard]] Micros localSinceYearOne() const;
    void advance(Micros by);
    /// A moment outside the years 1 to 9999 is moved to the nearest within.
    void set(Micros sinceUnixEpoch);
    /// Held, the clock moves by `advance` and `set` alone.
    void hold();
    /// Goes on from the moment that was held.
    void release();
    /// Back to the machine's time.
    void reset();
    [[nodiscard]] bool isHeld() const { return held_ != notHeld; }
    /// Whether this has been the machine's own time all along, or is it again.
    [[nodiscard]] bool isMachineTime() const { return !isHeld() && offset_ == 0; }

private:
    static constexpr std::int64_t notHeld = std::numeric_limits<std::int64_t>::min();
    std::atomic<std::int64_t> offset_ = 0, held_ = notHeld; ///< microseconds
};

/// The process's one.
Clock& clock();

} // namespace host
