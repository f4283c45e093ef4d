#include "tests/macos/running/foundation/Foundation.h"

// Booleans have a class of their own, by which a number keeps what it was made from.

@interface StandInNumber : NSNumber {
@public
    long long whole;
    double floating;
}
@end

@interface StandInBoolean : StandInNumber
@end

@implementation NSNumber

+ (NSNumber*)numberWithLongLong:(long long)value {
    StandInNumber* const made = [StandInNumber alloc];
    made->whole = value;
    made->floating = static_cast<double>(value);
    return objc_autorelease(made);
}

+ (NSNumber*)numberWithLong:(long)value {
    return [NSNumber numberWithLongLong:value];
}

+ (NSNumber*)numberWithDouble:(double)value {
    StandInNumber* const made = [StandInNumber alloc];
    made->whole = static_cast<long long>(value);
    made->floating = value;
    return objc_autorelease(made);
}

+ (NSNumber*)numberWithBool:(BOOL)value {
    StandInBoolean* const made = [StandInBoolean alloc];
    made->whole = value;
    made->floating = value;
    return objc_autorelease(made);
}

- (long long)longLongValue {
    return static_cast<StandInNumber*>(self)->whole;
}

- (double)doubleValue {
    return static_cast<StandInNumber*>(self)->floating;
}

- (BOOL)boolValue {
    return static_cast<StandInNumber*>(self)->whole != 0;
}

@end

@implementation StandInNumber
@end

@implementation StandInBoolean
@end
