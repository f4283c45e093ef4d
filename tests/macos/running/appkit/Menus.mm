#include "tests/macos/running/appkit/Menus.h"

using namespace harbrook::running;

@implementation NSMenu

+ (instancetype)alloc {
    return make([StandInMenu class]);
}

- (instancetype)initWithTitle:(NSString*)title {
    give(self, "title", title);
    return self;
}

- (void)addItem:(NSMenuItem*)item {
    static_cast<StandInMenu*>(self)->items.emplace_back(item);
}

- (NSMenuItem*)addItemWithTitle:(NSString*)title action:(SEL)action keyEquivalent:(NSString*)key {
    NSMenuItem* const made = objc_autorelease([[NSMenuItem alloc] initWithTitle:title
                                                                         action:action
                                                                  keyEquivalent:key]);
    [self addItem:made];
    return made;
}

- (NSInteger)numberOfItems {
    return static_cast<NSInteger>(static_cast<StandInMenu*>(self)->items.size());
}

- (NSMenuItem*)itemAtIndex:(NSInteger)index {
    return static_cast<StandInMenu*>(self)->items.at(static_cast<std::size_t>(index));
}

- (void)removeAllItems {
    static_cast<StandInMenu*>(self)->items.clear();
}

@end

@implementation StandInMenu
@end

@implementation NSMenuItem

+ (instancetype)alloc {
    return make([StandInMenuItem class]);
}

+ (NSMenuItem*)separatorItem {
    StandInMenuItem* const made = [StandInMenuItem alloc];
    made->isSeparator = true;
    return objc_autorelease(made);
}

- (instancetype)initWithTitle:(NSString*)title action:(SEL)action keyEquivalent:(NSString*)key {
    give(self, "title", title);
    give(self, "keyEquivalent", key);
    setProperty(self, "action", {':', reinterpret_cast<std::uintptr_t>(action)});
    return self;
}

@end

@implementation StandInMenuItem
@end
