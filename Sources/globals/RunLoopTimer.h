#pragma once

/// A pointer to the platform's timer of a run loop. It is always null on a platform without one.

#if defined(__APPLE__)
#include <CoreFoundation/CoreFoundation.h>
#else
using CFRunLoopTimerRef = struct OpaqueRunLoopTimer*;
#endif
