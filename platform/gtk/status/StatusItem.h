#pragma once

#include "platform/StatusItem.h"
#include "platform/gtk/status/DBusMenu.h"
#include "platform/gtk/status/PanelTone.h"
#include "platform/gtk/status/StatusNotifier.h"

#include <memory>
#include <optional>
#include <string>

namespace harbrook::gtk {

/// The icon in the panel with its count.
class StatusBarButton final : public harbrook::StatusBarButton {
public:
    explicit StatusBarButton(std::weak_ptr<StatusNotifier> notifier) : notifier_(std::move(notifier)) {}

    void setTitle(const std::string& title) override;
    void setImage(const Image& image) override;
    /// Where text is shown beside an icon, it always follows it.
    void setImagePosition(ImagePosition /*position*/) override {}
    void setTone(PanelTone tone);

private:
    void update();

    std::weak_ptr<StatusNotifier> notifier_;
    std::string title_;
    std::optional<Image> image_;
    PanelTone tone_ = PanelTone::light;
};

/// An item of the panel: button, menu and their place on the session bus. Without a session bus, or without
/// a panel, it is just not seen.
class StatusItem final : public harbrook::StatusItem, public std::enable_shared_from_this<StatusItem> {
public:
    /// Called for an item that the user chooses, with the token by which it may raise a window, or none.
    using Perform = std::function<void(const MenuItem&, const std::string& activationToken)>;

    explicit StatusItem(Perform perform);

    /// Puts the item into the panel, as soon as there is one.
    void appear();
    /// Whether there is a panel to see it in.
    [[nodiscard]] bool hasPanel() const { return notifier_->hasWatcher(); }
    std::shared_ptr<harbrook::StatusBarButton> button() override { return button_; }
    void setMenu(const Menu& menu, std::weak_ptr<MenuDelegate> delegate) override {
        menu_.setMenu(menu, std::move(delegate));
    }

private:
    void exportOn(const GObjectPtr<GDBusConnection>& connection);
    void perform(const MenuItem& item);
    void performFirstItem();

    Perform perform_;
    /// For the click that it came with.
    std::string activationToken_;
    DBusMenu menu_;
    // Their callbacks refer to what stands above.
    std::shared_ptr<StatusNotifier> notifier_;
    std::shared_ptr<StatusBarButton> button_;
    std::shared_ptr<PanelToneWatch> toneWatch_;
};

} // namespace harbrook::gtk
