#include "tests/macos/running/appkit/Windows.h"

#include "tests/macos/running/appkit/Views.h"

#include <algorithm>
#include <array>
#include <optional>

using namespace harbrook::running;

// A window with a title bar in a container, and three buttons in it, laid out as the platform lays them out.

@class StandInWindow;

namespace {

constexpr NSSize screenSize = {1920, 1080};
constexpr double titlebarHeight = 28;
constexpr double buttonPitch = 20;
constexpr NSRect firstButton = {{7, 6}, {14, 16}};

StandInWindow* current = nil;

} // namespace

@interface StandInWindow : NSWindow {
@public
    NSRect frame;
    NSUInteger style;
    NSSize minimum;
    std::optional<NSRect> ownFrame;
    Kept<NSView*> frameView;
    Kept<NSView*> container;
    Kept<NSView*> titlebar;
    Kept<NSView*> content;
    std::array<Kept<NSButton*>, 3> buttons;
    bool isVisible;
    bool staysWhenClosed;
}
- (void)layOutTitlebar;
- (void)fillScreen;
- (void)leaveScreen;
@end

@implementation NSWindow

+ (instancetype)alloc {
    return make([StandInWindow class]);
}

- (instancetype)initWithContentRect:(NSRect)rect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)defer {
    auto* const made = static_cast<StandInWindow*>(self);
    made->frame = rect;
    made->style = style;
    for (auto* const view : {&made->frameView, &made->container, &made->titlebar}) {
        NSView* const each = [NSView alloc];
        *view = each;
        objc_release(each);
    }
    adopt(made->frameView, made->container);
    adopt(made->container, made->titlebar);
    viewState(made->titlebar).fillsSuperview = true;
    for (auto& button : made->buttons) {
        NSButton* const each = [NSButton alloc];
        button = each;
        objc_release(each);
        adopt(made->titlebar, each);
    }
    [made layOutTitlebar];
    current = made;
    return made;
}

- (NSButton*)standardWindowButton:(NSWindowButton)which {
    return static_cast<StandInWindow*>(self)->buttons.at(static_cast<std::size_t>(which));
}

- (NSWindowStyleMask)styleMask {
    return static_cast<StandInWindow*>(self)->style;
}

- (NSRect)frame {
    return static_cast<StandInWindow*>(self)->frame;
}

- (NSInteger)windowNumber {
    return 77;
}

- (void)setMinSize:(NSSize)size {
    static_cast<StandInWindow*>(self)->minimum = size;
}

- (void)setContentView:(NSView*)view {
    auto* const own = static_cast<StandInWindow*>(self);
    own->content = view;
    viewState(view).fillsSuperview = true;
    layOut(own->frameView, {{0, 0}, {own->frame.size.width, own->frame.size.height}});
    adopt(own->frameView, view);
}

- (void)setReleasedWhenClosed:(BOOL)flag {
    static_cast<StandInWindow*>(self)->staysWhenClosed = !flag;
}

- (void)setTitle:(NSString*)title {
    [static_cast<StandInWindow*>(self) layOutTitlebar];
}

- (void)makeKeyAndOrderFront:(id)sender {
    auto* const own = static_cast<StandInWindow*>(self);
    if (std::exchange(own->isVisible, true)) return;
    [own layOutTitlebar];
    post(NSWindowDidBecomeKeyNotification, self);
}

- (void)zoom:(id)sender {
    auto* const own = static_cast<StandInWindow*>(self);
    if (own->ownFrame) {
        [own leaveScreen];
    } else {
        [own fillScreen];
    }
}

@end

@implementation StandInWindow

- (void)layOutTitlebar {
    layOut(container, {{0, frame.size.height - titlebarHeight}, {frame.size.width, titlebarHeight}});
    double x = firstButton.origin.x;
    for (const auto& button : buttons) {
        layOut(button, {{x, firstButton.origin.y}, {firstButton.size.width, firstButton.size.height}});
        x += buttonPitch;
    }
}

- (void)fillScreen {
    ownFrame = frame;
    frame.origin = {0, 0};
    resizeWindow({screenSize.width, screenSize.height});
}

- (void)leaveScreen {
    const auto before = *std::exchange(ownFrame, {});
    frame.origin = before.origin;
    resizeWindow({before.size.width, before.size.height});
}

- (void)dealloc {
    if (current == self) current = nil;
}

@end

namespace harbrook::running {

NSWindow* theWindow() {
    return current;
}

void closeWindow() {
    if (!current->staysWhenClosed) world().fail("the window goes when it is closed");
    current->isVisible = false;
}

void resizeWindow(Size size) {
    const AutoreleasePool pool;
    current->frame.size = {
        std::max(size.width, current->minimum.width), std::max(size.height, current->minimum.height)};
    layOut(current->frameView, {{0, 0}, {current->frame.size.width, current->frame.size.height}});
    [current layOutTitlebar];
    post(NSWindowDidResizeNotification, current);
}

void enterFullScreen() {
    const AutoreleasePool pool;
    post(NSWindowWillEnterFullScreenNotification, current);
    current->style |= NSWindowStyleMaskFullScreen;
    [current fillScreen];
}

void exitFullScreen() {
    const AutoreleasePool pool;
    current->style &= ~static_cast<NSUInteger>(NSWindowStyleMaskFullScreen);
    [current leaveScreen];
    [current layOutTitlebar];
    post(NSWindowDidExitFullScreenNotification, current);
}

} // namespace harbrook::running
