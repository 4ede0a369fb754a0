#pragma once

/// A delay in the unit of the platform's queue.

#include <cstdint>
#include <limits>
#include <optional>

namespace platform {

/// A delay in whole nanoseconds, rounded down. A negative delay gives 0. A delay that does not fit 64 bits
/// (292 years), is infinite or is not a number never ends and gives nothing. Without that rule the conversion
/// of such a number would be undefined, and a script due in two thousand years could start at once.
inline std::optional<std::int64_t> delayInNanoseconds(double seconds) noexcept {
    constexpr double kNanosecondsPerSecond = 1'000'000'000.0;
    constexpr double kTooMany = 9'223'372'036'854'775'808.0; // 2 to the power of 63
    static_assert(std::numeric_limits<std::int64_t>::digits == 63);
    const double nanoseconds = seconds * kNanosecondsPerSecond;
    if (nanoseconds < 0) return 0;
    if (nanoseconds < kTooMany) return static_cast<std::int64_t>(nanoseconds);
    return std::nullopt; // not a number lands here too
}

} // namespace platform
