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

    /// Whether an item is where the user can see it.
    [[nodiscard]] bool showsItem() const;

private:
    StatusItem::Perform performAction_;
    std::weak_ptr<const StatusItem> item_;
};

} // namespace harbrook::gtk
