#include "platform/gtk/status/MenuVisibility.h"

namespace harbrook::gtk {

bool MenuVisibility::aboutToShow(Time now) {
    if (isOpen_ && now - since_ <= sameOpening) return false;
    return begin(now);
}

bool MenuVisibility::opened(Time now) {
    const auto announced = isOpen(now) && (!willClose_ || now - since_ <= sameOpening);
    const auto isNew = !announced && begin(now);
    willClose_ = true;
    return isNew;
}

bool MenuVisibility::isOpen(Time now) const {
    return isOpen_ && (willClose_ || now - since_ < longestLook);
}

bool MenuVisibility::begin(Time now) {
    isOpen_ = true;
    willClose_ = false;
    since_ = now;
    return true;
}

} // namespace harbrook::gtk
