#include "app/AppDelegate.h"
#include "app/Invariant.h"
#include "app/Product.h"
#include "status/MenuBarIcon.h"
#include "status/StatusMenu.h"

namespace harbrook {

Image AppDelegate::menuBarIcon(Platform& platform, bool idle) {
    const auto* name = idle ? "menubarIdleTemplate@2x" : "menubarTemplate@2x";
    const auto url = platform.mainBundle().URLForResource(name, "png");
    auto image = url ? platform.imageWithContentsOfURL(*url) : std::nullopt;
    constexpr Size size = {menuBarIconSide, menuBarIconSide};
    if (!image) image = Image::imageWithSize(size, menuBarIconDrawing(idle));
    image->setSize(size);
    image->setTemplate(true);
    image->setAccessibilityDescription(std::string(product::name));
    return *image;
}

void AppDelegate::buildStatusItem() {
    assertMainThread();
    statusItem = platform_->systemStatusBar().statusItemWithLength(NSVariableStatusItemLength);
    const auto button = required(statusItem).button();
    required(button).setImage(menuBarIcon(*platform_));
    button->setImagePosition(ImagePosition::imageLeading);
    statusItem->setMenu({}, {});
    refreshStatus();
}

void AppDelegate::renderStatus(const std::optional<State>& state) {
    assertMainThread();
    const auto button = required(statusItem).button();
    required(button).setTitle(statusTitle(state));
    // Without a snapshot the icon stays as it was.
    if (state) button->setImage(menuBarIcon(*platform_, listedProjectCount(*state) == 0));
    statusItem->setMenu(statusMenu(state), weak_from_this());
}

void AppDelegate::menuWillOpen() {
    refreshStatus();
}

void AppDelegate::openFromMenu() {
    showWindow();
}

} // namespace harbrook
