#include "tests/macos/running/foundation/Signals.h"

#include "tests/macos/running/foundation/Foundation.h"

#include <csignal>
#include <map>

using namespace harbrook::running;

// Dispatch's sources of signals, which the test lets arrive.

@interface StandInSource : NSObject {
@public
    int number;
    Kept<id> handler;
}
@end

namespace {

/// Not kept: a source that nobody holds any more hears nothing.
std::map<int, StandInSource*>& activeSources() {
    static auto* const all = new std::map<int, StandInSource*>;
    return *all;
}

} // namespace

@implementation StandInSource

- (void)dealloc {
    activeSources().erase(number);
}

@end

extern "C" {

struct dispatch_source_type_s {
    int unused;
};
extern const dispatch_source_type_s _dispatch_source_type_signal;
const dispatch_source_type_s _dispatch_source_type_signal = {};

dispatch_source_t dispatch_source_create(
    const dispatch_source_type_s*, uintptr_t number, uintptr_t, dispatch_queue_t) {
    StandInSource* const made = [StandInSource alloc];
    made->number = static_cast<int>(number);
    // As with semaphores, the declarations here do not say that the caller is to let go of it.
    return reinterpret_cast<dispatch_source_t>(objc_autorelease(made));
}

void dispatch_source_set_event_handler(dispatch_source_t source, dispatch_block_t handler) {
    reinterpret_cast<StandInSource*>(source)->handler = static_cast<id>(handler);
}

void dispatch_activate(dispatch_object_t object) {
    auto* const source = reinterpret_cast<StandInSource*>(object);
    activeSources()[source->number] = source;
}
}

namespace harbrook::running {

void receiveSignal(int number) {
    const auto found = activeSources().find(number);
    if (found == activeSources().end())
        return world().fail("nobody listens to the signal " + std::to_string(number));
    // The program sees to it that the signal itself ends nothing.
    raise(number);
    world().scheduler.addMainBlock(0, [handler = found->second->handler] {
        const AutoreleasePool pool;
        ((void (^)(void))handler.get())();
    });
}

} // namespace harbrook::running
