#pragma once

#include "host/fmwrapper/Faults.h"

#include <array>
#include <cstdint>
#include <span>
#include <stdexcept>

namespace host {

/// The way in which host calls fail.
struct FaultMode {
    Faults::Kind kind;
    bool fromThenOn; ///< all later calls fail as well
};

inline constexpr std::array kFaultModes{
    FaultMode{Faults::Kind::badAlloc, false}, FaultMode{Faults::Kind::badAlloc, true},
    FaultMode{Faults::Kind::unknown, false}, FaultMode{Faults::Kind::unknown, true}};

/// One failing host call of an action.
struct FaultPoint {
    FaultMode mode;
    std::uint64_t nth;  ///< from 1
    bool fired = false; ///< the action made at least `nth` host calls

    /// Runs the action with the failing call. Host calls before and after it work.
    template<typename Action>
    void during(const Action& action) {
        faults().arm(nth, mode.kind, mode.fromThenOn);
        action();
        fired = faults().fired();
        faults().disarm();
    }
};

/// Runs a body with its first host call failing, then with its second, up to its last, in each of the modes.
/// The body takes a FaultPoint and calls its `during` once; the run in which nothing fails is the last of a
/// mode. Gives the number of calls that failed. Throws std::runtime_error when a body does not come to its
/// end after 20,000 runs.
template<typename Body>
std::uint64_t forEachFault(const Body& body, std::span<const FaultMode> modes = kFaultModes) {
    constexpr std::uint64_t mostPoints = 20'000;
    std::uint64_t failed = 0;
    for (const FaultMode& mode : modes) {
        FaultPoint point{mode, 0, true};
        while (point.fired) {
            if (++point.nth == mostPoints)
                throw std::runtime_error("too many host calls to fail each in turn");
            body(point);
            failed += point.fired ? 1 : 0;
        }
    }
    return failed;
}

} // namespace host
