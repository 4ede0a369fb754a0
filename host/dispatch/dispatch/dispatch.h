// Work for later, on the main queue: the part of the platform's dispatch interface that the
// development host offers to plug-ins, under the names a plug-in for a device already uses.
//
// There is one queue, the main one. Nothing runs by itself: the host's loop drains the queue between
// calculations, on the thread that runs the loop, and measures time with the host's clock, so that a
// test that moves the clock moves the deadlines too. Usable from C, C++ and Objective-C++.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// A header for C as well, like the platform's own.
// NOLINTBEGIN(modernize-use-using)
typedef uint64_t dispatch_time_t;

typedef struct dispatch_queue_s* dispatch_queue_t;

#ifdef __BLOCKS__
typedef void (^dispatch_block_t)(void);
#else
/// Without the blocks extension a block is only passed along.
typedef void* dispatch_block_t;
#endif
// NOLINTEND(modernize-use-using)

#define DISPATCH_TIME_NOW (0ull)
#define DISPATCH_TIME_FOREVER (~0ull)

#define NSEC_PER_SEC 1000000000ull
#define NSEC_PER_MSEC 1000000ull
#define USEC_PER_SEC 1000000ull
#define NSEC_PER_USEC 1000ull

/// The moment `delta` nanoseconds after `when`, which is DISPATCH_TIME_NOW or an earlier answer of this
/// function. Saturates: a moment beyond what the type holds, or after FOREVER, is FOREVER; one before
/// the beginning of time is the earliest moment there is, which has passed.
dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta);

/// Has the queue run a copy of the block once `when` has come: at the next drain if it has passed
/// already, never if it is FOREVER. The copy is released after the run, or at the end of the session
/// without a run. A call without a queue or without a block does nothing.
void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block);

/// The queue that the host's loop drains. It lives as long as the process.
dispatch_queue_t dispatch_get_main_queue(void);

#ifdef __cplusplus
}
#endif
