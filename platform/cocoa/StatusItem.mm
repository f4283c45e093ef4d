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
    if (title_.take(title)) button_.title = toNSString(title);
}

void StatusBarButton::setImage(const Image& image) {
    if (image_.take(image)) button_.image = toNSImage(image);
}

void StatusBarButton::setImagePosition(ImagePosition position) {
    button_.imagePosition = static_cast<NSCellImagePosition>(position);
}

StatusItem::~StatusItem() {
    [[NSStatusBar systemStatusBar] removeStatusItem:item_];
}

void StatusItem::setMenu(const Menu& menu, std::weak_ptr<MenuDelegate> delegate) {
    if (menu_.take(menu)) item_.menu = toNSMenu(menu);
    delegate_ = [[HarbrookMenuDelegate alloc] initWithDelegate:std::move(delegate)];
    item_.menu.delegate = delegate_;
}

std::shared_ptr<harbrook::StatusItem> StatusBar::statusItemWithLength(double length) {
    return std::make_shared<StatusItem>([[NSStatusBar systemStatusBar] statusItemWithLength:length]);
}

} // namespace harbrook::cocoa
