#include "host/fmwrapper/Faults.h"

namespace host {

void Faults::arm(std::uint64_t nth, Kind kind, bool fromThenOn) {
    calls_ = 0;
    fired_ = false;
    nth_ = nth;
    kind_ = kind;
    fromThenOn_ = fromThenOn;
    isCounting_ = true;
}

void Faults::count() { arm(0, Kind::unknown, false); }

void Faults::disarm() { isCounting_ = false; }

std::int32_t Faults::counted() {
    const std::uint64_t call = ++calls_, nth = nth_;
    const bool fails = nth != 0 && (fromThenOn_ ? call >= nth : call == nth);
    if (!fails) return 0;
    fired_ = true;
    return static_cast<std::int32_t>(kind_.load());
}

Faults& faults() {
    static Faults instance;
    return instance;
}

} // namespace host
