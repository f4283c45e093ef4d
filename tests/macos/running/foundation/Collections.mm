#include "tests/macos/running/foundation/Foundation.h"

#include <utility>
#include <vector>

using harbrook::running::Kept;

@interface StandInArray : NSMutableArray {
@public
    std::vector<Kept<id>> elements;
}
@end

@interface StandInDictionary : NSMutableDictionary {
@public
    std::vector<Kept<id>> keys;
    std::vector<Kept<id>> values;
}
@end

namespace {

NSUInteger goThrough(const std::vector<Kept<id>>& all, NSFastEnumerationState* state) {
    static unsigned long neverChanges = 0;
    if (std::exchange(state->state, 1)) return 0;
    static_assert(sizeof(Kept<id>) == sizeof(id));
    state->itemsPtr = reinterpret_cast<id*>(const_cast<Kept<id>*>(all.data()));
    state->mutationsPtr = &neverChanges;
    return all.size();
}

bool isSame(id one, id other) {
    using namespace harbrook::running;
    if (one == other) return true;
    return isKind(one, "NSString") && isKind(other, "NSString") && characters(one) == characters(other);
}

} // namespace

@implementation NSArray

+ (instancetype)arrayWithObjects:(const id*)objects count:(NSUInteger)count {
    StandInArray* const made = [StandInArray alloc];
    made->elements.assign(objects, objects + count);
    return objc_autorelease(made);
}

- (NSUInteger)count {
    return static_cast<StandInArray*>(self)->elements.size();
}

- (id)objectAtIndexedSubscript:(NSUInteger)index {
    return static_cast<StandInArray*>(self)->elements.at(index);
}

- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id*)buffer
                                    count:(NSUInteger)count {
    return goThrough(static_cast<StandInArray*>(self)->elements, state);
}

@end

@implementation NSMutableArray

+ (instancetype)arrayWithCapacity:(NSUInteger)capacity {
    return objc_autorelease([StandInArray alloc]);
}

- (void)addObject:(id)object {
    if (!object) harbrook::running::world().fail("nil is added to an array");
    static_cast<StandInArray*>(self)->elements.emplace_back(object);
}

@end

@implementation StandInArray
@end

@implementation NSDictionary

+ (instancetype)dictionary {
    return objc_autorelease([StandInDictionary alloc]);
}

+ (instancetype)dictionaryWithObjects:(const id*)objects forKeys:(const id*)keys count:(NSUInteger)count {
    NSMutableDictionary* const made = [NSMutableDictionary dictionary];
    for (NSUInteger i = 0; i < count; ++i)
        [made setObject:objects[i] forKeyedSubscript:keys[i]];
    return made;
}

- (NSUInteger)count {
    return static_cast<StandInDictionary*>(self)->keys.size();
}

- (id)objectForKeyedSubscript:(id)key {
    auto* const own = static_cast<StandInDictionary*>(self);
    for (std::size_t i = 0; i < own->keys.size(); ++i) {
        if (isSame(own->keys[i], key)) return own->values[i];
    }
    return nil;
}

- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id*)buffer
                                    count:(NSUInteger)count {
    return goThrough(static_cast<StandInDictionary*>(self)->keys, state);
}

@end

@implementation NSMutableDictionary

- (void)setObject:(id)object forKeyedSubscript:(id)key {
    auto* const own = static_cast<StandInDictionary*>(self);
    own->keys.emplace_back(key);
    own->values.emplace_back(object);
}

@end

@implementation StandInDictionary
@end

namespace harbrook::running {

id objectOf(const Value& value) {
    if (const auto* flag = value.as<bool>()) return [NSNumber numberWithBool:*flag];
    if (const auto* number = value.as<double>()) return [NSNumber numberWithDouble:*number];
    if (const auto* string = value.as<std::string>()) return text(*string);
    if (const auto* array = value.as<Value::Array>()) {
        NSMutableArray* const result = [NSMutableArray arrayWithCapacity:array->size()];
        for (const auto& element : *array)
            [result addObject:objectOf(element)];
        return result;
    }
    if (const auto* dictionary = value.as<Value::Dictionary>()) {
        NSMutableDictionary* const result = [NSMutableDictionary dictionary];
        for (const auto& [key, element] : *dictionary)
            [result setObject:objectOf(element) forKeyedSubscript:text(key)];
        return result;
    }
    return objc_autorelease([[NSNull alloc] init]);
}

} // namespace harbrook::running
