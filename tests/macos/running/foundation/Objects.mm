#include "tests/macos/running/foundation/Foundation.h"

// The root, and what tells classes apart.

extern "C" {
bool standInIsKind(id object, Class which);
bool standInResponds(id object, SEL selector);
}

@implementation NSObject

+ (instancetype)alloc {
    return harbrook::running::make((Class)self);
}

+ (instancetype)new {
    return [[self alloc] init];
}

+ (id)class {
    return (id)self;
}

- (instancetype)init {
    return self;
}

- (Class)class {
    return isa;
}

- (BOOL)isKindOfClass:(Class)which {
    return standInIsKind(self, which);
}

- (BOOL)respondsToSelector:(SEL)selector {
    return standInResponds(self, selector);
}

- (id)copy {
    return objc_retain(self);
}

- (void)setValue:(id)value forKey:(NSString*)key {
    harbrook::running::give(self, harbrook::running::characters(key), value);
}

- (NSMethodSignature*)methodSignatureForSelector:(SEL)selector {
    return nil;
}

- (void)forwardInvocation:(NSInvocation*)invocation {
    harbrook::running::world().fail("an object was sent a message that it does not answer");
}

@end
