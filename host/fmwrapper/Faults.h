#pragma once

#include <atomic>
#include <cstdint>

namespace host {

/// Makes calls of the interface fail on purpose. Every FM_… function except the destructors asks here first.
/// A failing call does nothing, gives an empty answer and puts the code into its error slot.
class Faults {
public:
    enum class Kind : std::int32_t { badAlloc = 1, unknown = 2 };

    /// Makes the `nth` call from now fail (1 is the next one); with `fromThenOn`, all later calls as well.
    void arm(std::uint64_t nth, Kind kind, bool fromThenOn);
    /// Counts the calls from now on; none of them fails.
    void count();
    /// Makes no further call fail and stops counting.
    void disarm();
    /// The number of calls since the last `arm` or `count`, up to the `disarm` after it.
    [[nodiscard]] std::uint64_t calls() const { return calls_; }
    /// Whether a call was made to fail since the last arm.
    [[nodiscard]] bool fired() const { return fired_; }
    /// Gives the error code of a call that begins; 0 when the call may proceed.
    std::int32_t next() { return isCounting_ ? counted() : 0; }

private:
    std::int32_t counted();

    // Plug-ins make calls on threads of their own too.
    std::atomic<bool> isCounting_ = false;           ///< most calls read this alone, as counting takes longer
    std::atomic<std::uint64_t> calls_ = 0, nth_ = 0; ///< nth_ is 0 while calls are only counted
    std::atomic<Kind> kind_ = Kind::unknown;
    std::atomic<bool> fromThenOn_ = false, fired_ = false;
};

/// The faults of the process.
Faults& faults();

} // namespace host
