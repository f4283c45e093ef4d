#include "platform/gtk/window/Constraints.h"

#include "platform/gtk/window/TextField.h"

namespace harbrook::gtk {

void activateConstraints(const std::vector<LayoutConstraint>& constraints) {
    for (const auto& constraint : constraints) {
        const auto item = std::dynamic_pointer_cast<View>(constraint.item);
        if (!item) continue;
        const bool isCentred = constraint.relation == LayoutRelation::equal && constraint.constant == 0 &&
                               constraint.toItem && constraint.toItem == item->superview();
        const auto text = std::dynamic_pointer_cast<TextField>(constraint.item);
        switch (constraint.attribute) {
        case LayoutAttribute::centerX:
            if (isCentred) gtk_widget_set_halign(item->widget(), GTK_ALIGN_CENTER);
            break;
        case LayoutAttribute::centerY:
            if (isCentred) gtk_widget_set_valign(item->widget(), GTK_ALIGN_CENTER);
            break;
        case LayoutAttribute::width:
            if (text && constraint.relation == LayoutRelation::lessThanOrEqual && !constraint.toItem) {
                text->setMaximumWidth(constraint.constant);
            }
            break;
        }
    }
}

} // namespace harbrook::gtk
