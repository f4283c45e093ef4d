#include "tests/macos/running/appkit/Views.h"
#include "tests/macos/running/appkit/Windows.h"

using namespace harbrook::running;

@implementation NSView

- (instancetype)initWithFrame:(NSRect)frame {
    viewState(self).frame = frame;
    return self;
}

- (NSView*)superview {
    return viewState(self).superview;
}

- (NSRect)frame {
    return viewState(self).frame;
}

- (void)setFrame:(NSRect)frame {
    auto& state = viewState(self);
    const bool isSame = state.frame.origin.x == frame.origin.x && state.frame.origin.y == frame.origin.y &&
                        state.frame.size.width == frame.size.width &&
                        state.frame.size.height == frame.size.height;
    if (isSame) return;
    const bool isResized =
        state.frame.size.width != frame.size.width || state.frame.size.height != frame.size.height;
    state.frame = frame;
    const auto subviews = state.subviews;
    for (const auto& view : subviews) {
        if (isResized && viewState(view).fillsSuperview)
            [view.get() setFrame:NSMakeRect(0, 0, frame.size.width, frame.size.height)];
    }
    if (state.postsFrameChanges) post(NSViewFrameDidChangeNotification, self);
}

- (void)setFrameOrigin:(NSPoint)origin {
    const auto size = viewState(self).frame.size;
    [self setFrame:NSMakeRect(origin.x, origin.y, size.width, size.height)];
}

- (void)setPostsFrameChangedNotifications:(BOOL)flag {
    viewState(self).postsFrameChanges = flag;
}

- (void)addSubview:(NSView*)view {
    adopt(self, view);
}

- (void)dealloc {
    for (const auto& view : viewState(self).subviews)
        viewState(view).superview = nil;
    forgetView(self);
}

@end

@implementation NSTextField

+ (instancetype)labelWithString:(NSString*)string {
    NSTextField* const made = objc_autorelease([NSTextField alloc]);
    give(made, "stringValue", string);
    return made;
}

@end

namespace harbrook::running {

namespace {

std::map<const void*, ViewState>& allViews() {
    static auto* const all = new std::map<const void*, ViewState>;
    return *all;
}

} // namespace

ViewState& viewState(NSView* view) {
    return allViews()[view];
}

void forgetView(NSView* view) {
    // Its subviews go after it is forgotten.
    const auto forgotten = allViews().extract(view);
}

void adopt(NSView* parent, NSView* child) {
    auto& state = viewState(child);
    if (state.superview) world().fail("a view is added to a second superview");
    state.superview = parent;
    viewState(parent).subviews.emplace_back(child);
    const auto size = viewState(parent).frame.size;
    if (state.fillsSuperview) [child setFrame:NSMakeRect(0, 0, size.width, size.height)];
}

void layOut(NSView* view, Rect frame) {
    [view setFrame:NSMakeRect(frame.origin.x, frame.origin.y, frame.size.width, frame.size.height)];
}

} // namespace harbrook::running
