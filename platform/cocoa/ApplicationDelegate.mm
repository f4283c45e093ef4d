#include "platform/cocoa/ApplicationDelegate.h"

#include "platform/cocoa/Conversions.h"
#include "platform/cocoa/Menus.h"

using namespace harbrook::cocoa;

namespace {

std::string nameOf(SEL selector) {
    return fromNSString(NSStringFromSelector(selector));
}

} // namespace

@implementation HarbrookApplicationDelegate {
    std::weak_ptr<harbrook::ApplicationDelegate> _delegate;
}

- (instancetype)initWithDelegate:(std::weak_ptr<harbrook::ApplicationDelegate>)delegate {
    if ((self = [super init])) _delegate = std::move(delegate);
    return self;
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    if (const auto delegate = _delegate.lock()) delegate->applicationDidFinishLaunching();
}

- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender hasVisibleWindows:(BOOL)hasVisibleWindows {
    const auto delegate = _delegate.lock();
    return delegate && delegate->applicationShouldHandleReopen(hasVisibleWindows);
}

- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)sender {
    const auto delegate = _delegate.lock();
    return delegate && delegate->applicationShouldTerminateAfterLastWindowClosed();
}

// The window's frame is all that is restored, and it is kept elsewhere.
- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)sender {
    return YES;
}

- (void)applicationWillTerminate:(NSNotification*)notification {
    if (const auto delegate = _delegate.lock()) delegate->applicationWillTerminate();
}

// Menu actions. The core's table of actions decides which selectors there are; a selector that it knows is
// answered by forwarding, so that no action is named a second time here.

- (BOOL)coreRespondsToSelector:(SEL)selector {
    const auto delegate = _delegate.lock();
    return delegate && delegate->respondsToSelector(nameOf(selector));
}

- (BOOL)respondsToSelector:(SEL)selector {
    return [super respondsToSelector:selector] || [self coreRespondsToSelector:selector];
}

- (NSMethodSignature*)methodSignatureForSelector:(SEL)selector {
    if (![self coreRespondsToSelector:selector]) return [super methodSignatureForSelector:selector];
    const bool takesSender = nameOf(selector).ends_with(':');
    return [NSMethodSignature signatureWithObjCTypes:takesSender ? "v@:@" : "v@:"];
}

- (void)forwardInvocation:(NSInvocation*)invocation {
    const auto delegate = _delegate.lock();
    const auto action = nameOf(invocation.selector);
    if (!delegate || !delegate->respondsToSelector(action)) return [super forwardInvocation:invocation];
    __unsafe_unretained id sender = nil;
    if (action.ends_with(':')) [invocation getArgument:&sender atIndex:2];
    const bool isItem = [sender isKindOfClass:[NSMenuItem class]];
    delegate->performSelector(action, isItem ? fromNSMenuItem(sender) : harbrook::MenuItem());
}

@end
