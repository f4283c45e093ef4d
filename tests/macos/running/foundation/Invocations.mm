#include "tests/macos/running/foundation/Invocations.h"

#include <cstring>

using namespace harbrook::running;

@interface StandInInvocation : NSInvocation {
@public
    SEL selector;
    id sender;
}
@end

@interface StandInMethodSignature : NSMethodSignature {
@public
    std::string types;
}
@end

@implementation NSMethodSignature

+ (NSMethodSignature*)signatureWithObjCTypes:(const char*)types {
    StandInMethodSignature* const made = [StandInMethodSignature alloc];
    made->types = types;
    return objc_autorelease(made);
}

@end

@implementation StandInMethodSignature
@end

@implementation NSInvocation

- (SEL)selector {
    return static_cast<StandInInvocation*>(self)->selector;
}

- (void)getArgument:(void*)place atIndex:(NSInteger)index {
    constexpr NSInteger senderIndex = 2;
    if (index != senderIndex) return world().fail("an action has no argument " + std::to_string(index));
    std::memcpy(place, &static_cast<StandInInvocation*>(self)->sender, sizeof(id));
}

@end

@implementation StandInInvocation
@end

namespace harbrook::running {

void forwardAction(id receiver, SEL selector, id sender) {
    NSObject* const object = receiver;
    NSMethodSignature* const signature = [object methodSignatureForSelector:selector];
    const auto name = characters(NSStringFromSelector(selector));
    if (!signature) return world().fail("nothing says how " + name + " is called");
    const std::string expected = name.ends_with(':') ? "v@:@" : "v@:";
    const auto& types = static_cast<StandInMethodSignature*>(signature)->types;
    if (types != expected) world().fail("the action " + name + " has the types " + types);
    StandInInvocation* const invocation = objc_autorelease([StandInInvocation alloc]);
    invocation->selector = selector;
    invocation->sender = sender;
    [object forwardInvocation:invocation];
}

} // namespace harbrook::running
