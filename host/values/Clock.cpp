#include "host/values/Clock.h"

#include <algorithm>
#include <ctime>

namespace host {

namespace {

using std::chrono::seconds;

/// The years 1 to 9999: every date of the host is one of theirs, and no count overflows there.
constexpr Clock::Micros earliest = -kYearOneToUnixEpoch, latest = seconds{253'402'300'799};

Clock::Micros machineTime() {
    return std::chrono::duration_cast<Clock::Micros>(std::chrono::system_clock::now().time_since_epoch());
}

seconds offsetFromUtc(Clock::Micros sinceUnixEpoch) {
    const std::time_t moment = std::chrono::floor<seconds>(sinceUnixEpoch).count();
    std::tm local{};
    ::tzset(); // localtime_r alone need not see that the zone has changed
    if (::localtime_r(&moment, &local) == nullptr) return seconds{0};
    return seconds{local.tm_gmtoff};
}

} // namespace

Clock::Micros Clock::now() const {
    const std::int64_t held = held_;
    return held != notHeld ? Micros(held) : machineTime() + Micros(offset_);
}

Clock::Micros Clock::localSinceYearOne() const {
    const Micros moment = now();
    return moment + offsetFromUtc(moment) + kYearOneToUnixEpoch;
}

void Clock::advance(Micros by) {
    constexpr Micros span = latest - earliest;
    set(now() + std::clamp(by, -span, span));
}

void Clock::set(Micros sinceUnixEpoch) {
    const Micros moment = std::clamp(sinceUnixEpoch, earliest, latest);
    if (isHeld())
        held_ = moment.count();
    else
        offset_ = (moment - machineTime()).count();
}

void Clock::hold() { held_ = now().count(); }

void Clock::release() {
    if (!isHeld()) return;
    offset_ = held_ - machineTime().count();
    held_ = notHeld;
}

void Clock::reset() {
    offset_ = 0;
    held_ = notHeld;
}

Clock& clock() {
    static Clock instance;
    return instance;
}

} // namespace host
