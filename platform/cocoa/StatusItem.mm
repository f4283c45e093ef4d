#include "platform/cocoa/StatusItem.h"

#include "platform/cocoa/Conversions.h"
#include "platform/cocoa/Drawing.h"
#include "platform/cocoa/Menus.h"

@interface HarbrookMenuDelegate : NSObject <NSMenuDelegate>
- (instancetype)initWithDelegate:(std::weak_ptr<harbrook::MenuDelegate>)delegate;
@end

@implementation HarbrookMenuDelegate {
    std::weak_ptr<harbrook::MenuDelegate> _delegate;
}

- (instancetype)initWithDelegate:(std::weak_ptr<harbrook::MenuDelegate>)delegate {
    if ((self = [super init])) _delegate = std::move(delegate);
    return self;
}

- (void)menuWillOpen:(NSMenu*)menu {
    if (const auto delegate = _delegate.lock()) delegate->menuWillOpen();
}

@end

namespace harbrook::cocoa {

void StatusBarButton::setTitle(const std::string& title) {
    button_.title = toNSString(title);
}

void StatusBarButton::setImage(const Image& image) {
    button_.image = toNSImage(image);
}

void StatusBarButton::setImagePosition(ImagePosition position) {
    button_.imagePosition = static_cast<NSCellImagePosition>(position);
}

StatusItem::~StatusItem() {
    [[NSStatusBar systemStatusBar] removeStatusItem:item_];
}

std::shared_ptr<harbrook::StatusBarButton> StatusItem::button() {
    return std::make_shared<StatusBarButton>(item_.button);
}

void StatusItem::setMenu(const Menu& menu, std::weak_ptr<MenuDelegate> delegate) {
    NSMenu* const native = toNSMenu(menu);
    delegate_ = [[HarbrookMenuDelegate alloc] initWithDelegate:std::move(delegate)];
    native.delegate = delegate_;
    item_.menu = native;
}

std::shared_ptr<harbrook::StatusItem> StatusBar::statusItemWithLength(double length) {
    return std::make_shared<StatusItem>([[NSStatusBar systemStatusBar] statusItemWithLength:length]);
}

} // namespace harbrook::cocoa
