#include "platform/cocoa/Dispatch.h"

namespace harbrook::cocoa {

namespace {

dispatch_time_t fromNow(double seconds) {
    return dispatch_time(DISPATCH_TIME_NOW, static_cast<std::int64_t>(seconds * NSEC_PER_SEC));
}

} // namespace

void DispatchQueue::async(Block block) {
    dispatch_async(queue_, ^{
        block();
    });
}

void DispatchQueue::asyncAfter(double seconds, Block block) {
    dispatch_after(fromNow(seconds), queue_, ^{
        block();
    });
}

void DispatchSemaphore::signal() {
    dispatch_semaphore_signal(semaphore_);
}

bool DispatchSemaphore::wait(double seconds) {
    return dispatch_semaphore_wait(semaphore_, fromNow(seconds)) == 0;
}

Timer::Timer(double seconds, bool repeats, Block block)
    : timer_([NSTimer scheduledTimerWithTimeInterval:seconds
                                             repeats:repeats
                                               block:^(NSTimer*) {
                                                   block();
                                               }]) {}

Timer::~Timer() {
    [timer_ invalidate];
}

void Timer::invalidate() {
    [timer_ invalidate];
}

} // namespace harbrook::cocoa
