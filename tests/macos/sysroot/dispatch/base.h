// Our own declarations of the dispatch types. Under ARC they are objects.
#pragma once

#include <objc/objc.h>

#pragma clang assume_nonnull begin
FACTS_BEGIN

@protocol OS_dispatch_object <NSObject>
@end
@protocol OS_dispatch_queue <OS_dispatch_object>
@end
@protocol OS_dispatch_semaphore <OS_dispatch_object>
@end
@protocol OS_dispatch_source <OS_dispatch_object>
@end
typedef id<OS_dispatch_object> dispatch_object_t;
typedef id<OS_dispatch_queue> dispatch_queue_t;
typedef id<OS_dispatch_semaphore> dispatch_semaphore_t;
typedef id<OS_dispatch_source> dispatch_source_t;
typedef uint64_t dispatch_time_t;
typedef void (^dispatch_block_t)(void);

#define DISPATCH_TIME_NOW 0ull
#define NSEC_PER_SEC 1000000000ull
#define QOS_CLASS_DEFAULT 0x15

extern const struct dispatch_source_type_s _dispatch_source_type_signal;
#define DISPATCH_SOURCE_TYPE_SIGNAL (&_dispatch_source_type_signal)

extern struct dispatch_queue_s _dispatch_main_q;
static inline dispatch_queue_t dispatch_get_main_queue(void) {
    return (__bridge dispatch_queue_t)(void *)&_dispatch_main_q;
}

FACTS_END
#pragma clang assume_nonnull end
