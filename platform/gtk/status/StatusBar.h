#pragma once

#include "platform/gtk/status/StatusItem.h"

namespace harbrook::gtk {

/// The panel of the desktop, wherever there is one.
class StatusBar final : public harbrook::StatusBar {
public:
    /// `performAction` carries out an item of a status menu that the user has chosen, as it does for the main
    /// menu.
    explicit StatusBar(StatusItem::Perform performAction) : performAction_(std::move(performAction)) {}

    std::shared_ptr<harbrook::StatusItem> statusItemWithLength(double length) override;

private:
    StatusItem::Perform performAction_;
};

} // namespace harbrook::gtk
