#pragma once

/// The platform's timer of a run loop, a pointer that is null or the platform's. Where the platform has none
/// it is always null.

#if defined(__APPLE__)
#include <CoreFoundation/CoreFoundation.h>
#else
using CFRunLoopTimerRef = struct OpaqueRunLoopTimer*;
#endif
