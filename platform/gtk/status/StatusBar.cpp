#include "platform/gtk/status/StatusBar.h"

namespace harbrook::gtk {

std::shared_ptr<harbrook::StatusItem> StatusBar::statusItemWithLength(double /*length*/) {
    auto item = std::make_shared<StatusItem>(performAction_);
    item->appear();
    return item;
}

} // namespace harbrook::gtk
