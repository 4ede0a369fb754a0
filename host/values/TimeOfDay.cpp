// Replaces gettimeofday for this whole process, so plug-ins and their libraries read the host's clock. The
// loader searches this library before the machine's own.

#include "host/values/Clock.h"

#include <cstring>
#include <ctime>
#include <sys/time.h>

extern "C" int gettimeofday(timeval* moment, void* zone) noexcept {
    using std::chrono::seconds;
    if (zone != nullptr) std::memset(zone, 0, sizeof(struct timezone)); // the machine knows no zone either
    if (host::clock().isMachineTime()) {
        timespec now{};
        if (::clock_gettime(CLOCK_REALTIME, &now) != 0) return -1;
        *moment = {.tv_sec = now.tv_sec, .tv_usec = now.tv_nsec / 1'000};
        return 0;
    }
    const host::Clock::Micros now = host::clock().now();
    const seconds whole = std::chrono::floor<seconds>(now);
    *moment = {.tv_sec = whole.count(), .tv_usec = (now - whole).count()};
    return 0;
}
