#include "tests/macos/running/Surroundings.h"
#include "tests/macos/running/foundation/Foundation.h"

using namespace harbrook::running;

namespace {

struct Observer {
    std::string name;
    /// Not kept, as the platform does not.
    id object;
    unsigned long serial;
    Kept<id> block;
    Kept<id> token;
    bool isForOtherPrograms;
};

std::vector<Observer>& observers() {
    static auto* const all = new std::vector<Observer>;
    return *all;
}

NSNotification* notification(NSString* name, id object, NSDictionary* userInfo) {
    NSNotification* const made = objc_autorelease([NSNotification alloc]);
    give(made, "name", name);
    if (object) give(made, "object", object);
    if (userInfo) give(made, "userInfo", userInfo);
    return made;
}

void call(const Observer& observer, NSNotification* notification) {
    const Kept<id> block = observer.block;
    ((void (^)(NSNotification*))block.get())(notification);
}

id add(NSString* name, id object, id block, bool isForOtherPrograms) {
    NSObject* const token = objc_autorelease([[NSObject alloc] init]);
    observers().push_back(
        {characters(name), object, serialOf(object), block, static_cast<id>(token), isForOtherPrograms});
    return token;
}

} // namespace

@implementation NSNotificationCenter

- (id)addObserverForName:(NSString*)name
                  object:(id)object
                   queue:(NSOperationQueue*)queue
              usingBlock:(void (^)(NSNotification*))block {
    return add(name, object, block, false);
}

- (void)removeObserver:(id)token {
    std::erase_if(observers(), [&](const Observer& observer) { return observer.token.get() == token; });
}

@end

@implementation NSDistributedNotificationCenter

- (id)addObserverForName:(NSString*)name
                  object:(id)object
                   queue:(NSOperationQueue*)queue
              usingBlock:(void (^)(NSNotification*))block {
    return add(name, object, block, true);
}

@end

namespace harbrook::running {

void post(NSString* name, id object) {
    const auto all = observers();
    for (const auto& observer : all) {
        if (!observer.isForOtherPrograms && observer.object == object &&
            observer.serial == serialOf(object) && observer.name == characters(name))
            call(observer, notification(name, object, nil));
    }
}

void postFromOutside(NSString* name, NSDictionary* userInfo) {
    for (const auto& observer : observers()) {
        if (!observer.isForOtherPrograms || observer.name != characters(name)) continue;
        const Kept<NSNotification*> kept = notification(name, nil, userInfo);
        world().scheduler.addMainBlock(0, [observer, kept] { call(observer, kept); });
    }
}

int observersLeftBehind() {
    int count = 0;
    for (const auto& observer : observers())
        count += observer.object && !isAlive(observer.object, observer.serial);
    return count;
}

void forgetObservers() {
    observers().clear();
}

} // namespace harbrook::running
