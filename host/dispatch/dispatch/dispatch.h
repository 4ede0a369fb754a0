// Delayed work on the main queue: the part of the platform's dispatch interface that the development
// host offers to plug-ins, under the names of the platform.
//
// The main queue is the only queue. The host's loop drains it between calculations, on the thread of the
// loop. Deadlines are measured with the host's clock, so a test that moves the clock moves the deadlines
// too. The header is usable from C, C++ and Objective-C++.
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
/// A block, which code without the blocks extension can only pass on.
typedef void* dispatch_block_t;
#endif
// NOLINTEND(modernize-use-using)

#define DISPATCH_TIME_NOW (0ull)
#define DISPATCH_TIME_FOREVER (~0ull)

#define NSEC_PER_SEC 1000000000ull

/// The moment `delta` nanoseconds after `when`. `when` is DISPATCH_TIME_NOW or an earlier result of this
/// function. The result saturates: it is FOREVER beyond the range of the type and after FOREVER, and the
/// earliest moment, which is always in the past, before the range.
dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta);

/// Makes the queue run a copy of the block at the first drain at or after `when`; never if `when` is FOREVER.
/// The copy is released after the run, or at the end of the session without a run. A call without a queue
/// or without a block does nothing.
void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block);

/// The main queue. It lives as long as the process.
dispatch_queue_t dispatch_get_main_queue(void);

#ifdef __cplusplus
}
#endif
