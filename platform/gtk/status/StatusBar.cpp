#include "platform/gtk/status/StatusBar.h"

namespace harbrook::gtk {

std::shared_ptr<harbrook::StatusItem> StatusBar::statusItemWithLength(double /*length*/) {
    auto item = std::make_shared<StatusItem>(performAction_);
    item->appear();
    item_ = item;
    return item;
}

bool StatusBar::showsItem() const {
    const auto item = item_.lock();
    return item && item->hasPanel();
}

} // namespace harbrook::gtk
