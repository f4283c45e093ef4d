#include "platform/cocoa/Menus.h"

#include "platform/cocoa/Conversions.h"

namespace harbrook::cocoa {

namespace {

id _Nullable toObject(const MenuItem::RepresentedObject& represented) {
    if (const auto* number = std::get_if<std::int64_t>(&represented)) return @(*number);
    if (const auto* text = std::get_if<std::string>(&represented)) return toNSString(*text);
    return nil;
}

MenuItem::RepresentedObject fromRepresentedObject(id _Nullable object) {
    if ([object isKindOfClass:[NSNumber class]])
        return std::int64_t{static_cast<NSNumber*>(object).longLongValue};
    if ([object isKindOfClass:[NSString class]]) return fromNSString(object);
    return {};
}

void takeRole(MenuRole role, NSMenu* menu) {
    switch (role) {
    case MenuRole::none:
        break;
    case MenuRole::windowsMenu:
        NSApp.windowsMenu = menu;
        break;
    case MenuRole::helpMenu:
        NSApp.helpMenu = menu;
        break;
    }
}

/// The item is in its menu before its submenu is filled, and the submenu at its item before it takes its
/// role.
void addItem(const MenuItem& item, NSMenu* menu) {
    if (item.isSeparator) return [menu addItem:[NSMenuItem separatorItem]];
    SEL const action = item.action.empty() ? nullptr : NSSelectorFromString(toNSString(item.action));
    NSMenuItem* const added = [menu addItemWithTitle:toNSString(item.title)
                                              action:action
                                       keyEquivalent:toNSString(item.keyEquivalent)];
    added.keyEquivalentModifierMask = static_cast<NSEventModifierFlags>(item.keyEquivalentModifierMask);
    if (item.target == ActionTarget::delegate) added.target = NSApp.delegate;
    added.representedObject = toObject(item.representedObject);
    if (!item.submenu) return;
    NSMenu* const submenu = toNSMenu(*item.submenu);
    added.submenu = submenu;
    takeRole(item.submenu->role, submenu);
}

} // namespace

NSMenu* toNSMenu(const Menu& menu) {
    NSMenu* const result = [[NSMenu alloc] initWithTitle:toNSString(menu.title)];
    for (const auto& item : menu.items)
        addItem(item, result);
    return result;
}

MenuItem fromNSMenuItem(NSMenuItem* item) {
    MenuItem result;
    result.title = fromNSString(item.title);
    if (item.action) result.action = fromNSString(NSStringFromSelector(item.action));
    result.representedObject = fromRepresentedObject(item.representedObject);
    return result;
}

} // namespace harbrook::cocoa
