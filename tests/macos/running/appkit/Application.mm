#include "tests/macos/running/appkit/Application.h"

#include "tests/macos/running/appkit/Menus.h"
#include "tests/macos/running/foundation/Invocations.h"

#include <algorithm>
#include <array>

using namespace harbrook::running;

@interface StandInApplication : NSApplication {
@public
    Kept<NSEvent*> event;
    bool terminated;
}
@end

namespace {

StandInApplication* application() {
    return static_cast<StandInApplication*>(NSApp);
}

/// The delegate, which the application does not keep.
id delegate() {
    id const found = NSApp.delegate;
    if (!found) world().fail("the application's delegate has gone: nobody kept it");
    return found;
}

/// What windows, views and the application answer by themselves.
bool isStandardAction(const std::string& action) {
    constexpr std::array actions = {
        "undo:",        "redo:", "cut:", "copy:", "paste:", "selectAll:", "hide:", "performMiniaturize:",
        "performClose:"};
    return std::ranges::find(actions, action) != actions.end();
}

void perform(NSMenuItem* item) {
    const AutoreleasePool pool;
    const auto action = characters(NSStringFromSelector(item.action));
    id const target = item.target;
    if (!target && action == "terminate:") return [NSApp terminate:item];
    if (!target && isStandardAction(action)) return world().note("> responder chain " + action);
    id const receiver = target ? target : delegate();
    if (![receiver respondsToSelector:item.action]) return world().fail("nobody answers " + action);
    forwardAction(receiver, item.action, item);
}

} // namespace

@implementation NSApplication

+ (NSApplication*)sharedApplication {
    if (!NSApp) NSApp = [StandInApplication alloc];
    return NSApp;
}

- (void)run {
    {
        const AutoreleasePool pool;
        if (![delegate() applicationSupportsSecureRestorableState:NSApp])
            world().fail("the system warns of state that is restored insecurely");
        [delegate() applicationDidFinishLaunching:nil];
    }
    world().user();
    if (!hasTerminated()) quit();
}

- (void)terminate:(id)sender {
    const AutoreleasePool pool;
    if (std::exchange(application()->terminated, true)) return;
    [delegate() applicationWillTerminate:nil];
}

- (NSEvent*)currentEvent {
    return static_cast<StandInApplication*>(self)->event;
}

@end

@implementation StandInApplication
@end

@implementation NSWorkspace

- (BOOL)openURL:(NSURL*)url {
    return YES;
}

@end

namespace harbrook::running {

bool World::hasApplication() {
    return NSApp != nil;
}

NSMenuItem* itemIn(NSMenu* menu, const std::vector<std::string>& titles, std::size_t from) {
    for (const auto& item : static_cast<StandInMenu*>(menu)->items) {
        if (static_cast<StandInMenuItem*>(item.get())->isSeparator ||
            characters(item.get().title) != titles[from])
            continue;
        return from + 1 == titles.size() ? item.get() : itemIn(item.get().submenu, titles, from + 1);
    }
    return nil;
}

void chooseFromMenu(NSMenu* menu, const std::vector<std::string>& titles) {
    NSMenuItem* const item = itemIn(menu, titles);
    if (!item || !item.action) return world().fail("there is no command " + titles.back());
    perform(item);
}

void chooseFromMainMenu(const std::vector<std::string>& titles) {
    for (const auto& item : static_cast<StandInMenu*>(NSApp.mainMenu)->items) {
        if (characters(item.get().submenu.title) == titles.front())
            return chooseFromMenu(item.get().submenu, {titles.begin() + 1, titles.end()});
    }
    world().fail("there is no menu " + titles.front());
}

bool reopen(bool hasVisibleWindows) {
    const AutoreleasePool pool;
    return [delegate() applicationShouldHandleReopen:NSApp hasVisibleWindows:hasVisibleWindows];
}

bool closeLastWindow() {
    const AutoreleasePool pool;
    const bool terminates = [delegate() applicationShouldTerminateAfterLastWindowClosed:NSApp];
    if (terminates) quit();
    return terminates;
}

void quit() {
    [NSApp terminate:nil];
}

bool hasTerminated() {
    return application()->terminated;
}

void setCurrentEvent(std::optional<EventType> type) {
    const AutoreleasePool pool;
    NSEvent* const event = type ? objc_autorelease([NSEvent alloc]) : nil;
    if (type) give(event, "type", static_cast<long>(*type));
    application()->event = event;
}

} // namespace harbrook::running
