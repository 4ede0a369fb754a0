#pragma once

#include <cstdint>

namespace host {

/// Makes calls of the interface fail on purpose. Every FM_… function but those that give an object back asks
/// here first; a call that is made to fail does nothing, gives an empty answer and the code in its error
/// slot.
class Faults {
public:
    enum class Kind : std::int32_t { badAlloc = 1, unknown = 2 };

    /// The `nth` call from now (1 is the next) fails: it alone, or it and all that follow.
    void arm(std::uint64_t nth, Kind kind, bool fromThenOn);
    void disarm();
    /// Calls seen since the last arm or disarm.
    [[nodiscard]] std::uint64_t calls() const { return calls_; }
    /// Whether a call was made to fail since the last arm.
    [[nodiscard]] bool fired() const { return fired_; }
    /// Counts a call; its error code, 0 when it may go on.
    std::int32_t next();

private:
    std::uint64_t calls_ = 0, nth_ = 0; ///< nth_ 0: not armed
    Kind kind_ = Kind::unknown;
    bool fromThenOn_ = false, fired_ = false;
};

/// The process's one.
Faults& faults();

} // namespace host
