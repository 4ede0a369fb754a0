#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace host {

/// The time as the host tells it: the machine's, moved forwards or backwards, or held still.
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

private:
    Micros offset_{0};
    std::optional<Micros> held_;
};

/// The process's one.
Clock& clock();

} // namespace host
