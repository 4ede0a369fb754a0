#include "host/dispatch/dispatch/dispatch.h"
#include "host/dispatch/MainQueue.h"

#include <Block.h>
#include <memory>
#include <new>

namespace {

struct BlockRelease {
    void operator()(const void* block) const { _Block_release(block); }
};

} // namespace

struct dispatch_queue_s {};

dispatch_queue_t dispatch_get_main_queue() {
    static dispatch_queue_s queue;
    return &queue;
}

dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta) {
    return host::MainQueue::later(when, delta);
}

void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block) {
    if (queue != dispatch_get_main_queue() || block == nullptr || when == DISPATCH_TIME_FOREVER) return;
    dispatch_block_t copy = Block_copy(block);
    if (copy == nullptr) return;
    try {
        // All copies of the work share one copy of the block.
        std::shared_ptr<const void> kept(static_cast<const void*>(copy), BlockRelease{});
        host::mainQueue().add(when, [kept, copy] { copy(); });
    } catch (const std::bad_alloc&) {
        return; // the interface has no error to report, and its callers catch nothing
    }
}
