#include "tests/macos/running/foundation/Foundation.h"

using namespace harbrook::running;

// Queues, semaphores and timers on the test's own clock.

namespace {

constexpr double nanosecond = 1e-9;

/// Like the platform's, it has no class that counts references.
struct Queue {
    void* isa = nullptr;
} globalQueue;

id mainQueue() {
    return reinterpret_cast<id>(&_dispatch_main_q);
}

void add(dispatch_queue_t queue, double seconds, void (^block)(void)) {
    static int count = 0;
    auto& scheduler = world().scheduler;
    const auto run = [kept = Kept<id>(block)] {
        const AutoreleasePool pool;
        ((void (^)(void))kept.get())();
    };
    if (static_cast<id>(queue) == mainQueue()) return scheduler.addMainBlock(seconds, run);
    const auto label = "global " + std::to_string(++count);
    if (seconds == 0) return scheduler.addWorker(label, run);
    scheduler.addOutsideEvent(seconds, [label, run] { world().scheduler.addWorker(label, run); });
}

} // namespace

struct dispatch_queue_s {
    void* isa;
};
dispatch_queue_s _dispatch_main_q = {};

@interface StandInSemaphore : NSObject {
@public
    long count;
}
@end

@implementation StandInSemaphore
@end

extern "C" {

dispatch_queue_t dispatch_get_global_queue(intptr_t, uintptr_t) {
    return reinterpret_cast<dispatch_queue_t>(&globalQueue);
}

void dispatch_async(dispatch_queue_t queue, dispatch_block_t block) {
    add(queue, 0, block);
}

void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block) {
    add(queue, static_cast<double>(when) * nanosecond, block);
}

/// All that is asked for is a time from now.
dispatch_time_t dispatch_time(dispatch_time_t, int64_t delta) {
    return static_cast<dispatch_time_t>(delta);
}

dispatch_semaphore_t dispatch_semaphore_create(intptr_t count) {
    StandInSemaphore* const made = [StandInSemaphore alloc];
    made->count = count;
    // The declarations here do not say that the caller is to let go of it, as the platform's do.
    return reinterpret_cast<dispatch_semaphore_t>(objc_autorelease(made));
}

intptr_t dispatch_semaphore_signal(dispatch_semaphore_t semaphore) {
    ++reinterpret_cast<StandInSemaphore*>(semaphore)->count;
    return 0;
}

intptr_t dispatch_semaphore_wait(dispatch_semaphore_t semaphore, dispatch_time_t timeout) {
    auto* const own = reinterpret_cast<StandInSemaphore*>(semaphore);
    if (world().scheduler.isMainThread()) {
        world().fail("the main thread waits for a semaphore");
        return 1;
    }
    const bool lowered = world().scheduler.blockWorker(
        [own] { return own->count > 0; }, static_cast<double>(timeout) * nanosecond);
    if (lowered) --own->count;
    return lowered ? 0 : 1;
}
}

@interface StandInTimer : NSTimer {
@public
    double interval;
    bool repeats;
    Kept<id> block;
}
- (void)wait;
@end

@implementation NSTimer

+ (NSTimer*)scheduledTimerWithTimeInterval:(double)interval
                                   repeats:(BOOL)repeats
                                     block:(void (^)(NSTimer*))block {
    StandInTimer* const made = [StandInTimer alloc];
    made->interval = interval;
    made->repeats = repeats;
    made->block = static_cast<id>(block);
    [made wait];
    return objc_autorelease(made);
}

- (void)invalidate {
    static_cast<StandInTimer*>(self)->block = {};
}

@end

@implementation StandInTimer

/// The run loop keeps the timer until it is invalid.
- (void)wait {
    world().scheduler.addTimerCall(interval, [kept = Kept<StandInTimer*>(self)] {
        StandInTimer* const timer = kept;
        const Kept<id> block = timer->block;
        if (!block.get()) return;
        const AutoreleasePool pool;
        if (timer->repeats) {
            [timer wait];
        } else {
            timer->block = {};
        }
        ((void (^)(NSTimer*))block.get())(timer);
    });
}

@end

@implementation NSThread

+ (BOOL)isMainThread {
    return world().scheduler.isMainThread();
}

@end
