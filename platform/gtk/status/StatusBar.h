#pragma once

#include "platform/StatusItem.h"

#include <functional>

namespace harbrook::gtk {

/// The panel of the desktop, wherever there is one.
class StatusBar final : public harbrook::StatusBar {
public:
    /// `performAction` carries out an item of a status menu that the user has chosen, as it does for the main
    /// menu.
    explicit StatusBar(std::function<void(const MenuItem&)> performAction)
        : performAction_(std::move(performAction)) {}

    std::shared_ptr<harbrook::StatusItem> statusItemWithLength(double length) override;

private:
    std::function<void(const MenuItem&)> performAction_;
};

} // namespace harbrook::gtk
