#include "platform/recording/StatusItem.h"

#include "platform/recording/Format.h"

namespace harbrook::recording {

void StatusBarButton::setTitle(const std::string& title) {
    world_->noteOnMain("statusButton setTitle: " + inQuotes(title));
    title_ = title;
}

void StatusBarButton::setImage(const Image& image) {
    world_->noteOnMain("statusButton setImage: " + format(image));
    image_ = image;
}

void StatusBarButton::setImagePosition(ImagePosition position) {
    world_->noteOnMain("statusButton setImagePosition: " + std::to_string(static_cast<int>(position)));
}

void StatusItem::setMenu(const Menu& menu, std::weak_ptr<MenuDelegate> delegate) {
    world_->noteOnMain("statusItem setMenu: " + std::to_string(menu.items.size()) + " items");
    menu_ = menu;
    delegate_ = std::move(delegate);
}

const Menu& StatusItem::simulateOpen() {
    refuseIf(!menu_, "the status item has no menu to open");
    menuOnScreen_ = menu_;
    if (const auto delegate = delegate_.lock()) delegate->menuWillOpen();
    return *menuOnScreen_;
}

std::shared_ptr<harbrook::StatusItem> StatusBar::statusItemWithLength(double length) {
    world_->noteOnMain("statusBar statusItemWithLength: " + format(length));
    const auto item = std::make_shared<StatusItem>(world_);
    item_ = item;
    return item;
}

} // namespace harbrook::recording
