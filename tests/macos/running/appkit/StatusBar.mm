#include "tests/macos/running/appkit/StatusBar.h"

using namespace harbrook::running;

namespace {

Kept<NSStatusItem*>& item() {
    static auto* const kept = new Kept<NSStatusItem*>;
    return *kept;
}

} // namespace

@implementation NSStatusBar

- (NSStatusItem*)statusItemWithLength:(CGFloat)length {
    NSStatusItem* const made = objc_autorelease([NSStatusItem alloc]);
    item() = made;
    return made;
}

- (void)removeStatusItem:(NSStatusItem*)removed {
    if (item().get() != removed) world().fail("a status item is removed that is not there");
    item() = {};
}

@end

namespace harbrook::running {

NSStatusItem* theStatusItem() {
    return item();
}

NSMenu* openStatusMenu() {
    NSMenu* const menu = theStatusItem().menu;
    id const delegate = menu.delegate;
    if (!delegate) {
        world().fail("the status menu's delegate has gone: nobody kept it");
    } else {
        const AutoreleasePool pool;
        [delegate menuWillOpen:menu];
    }
    return menu;
}

} // namespace harbrook::running
