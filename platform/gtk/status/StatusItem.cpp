#include "platform/gtk/status/StatusItem.h"

#include "platform/gtk/bus/SessionConnection.h"
#include "platform/gtk/foundation/Identity.h"

#include <algorithm>

namespace harbrook::gtk {

namespace {

constexpr const char* menuPath = "/StatusNotifierItem/Menu";

} // namespace

void StatusBarButton::setTitle(const std::string& title) {
    if (std::exchange(title_, title) != title) update();
}

void StatusBarButton::setImage(const Image& image) {
    if (image_ == image) return;
    image_ = image;
    update();
}

void StatusBarButton::setTone(PanelTone tone) {
    if (std::exchange(tone_, tone) != tone) update();
}

void StatusBarButton::update() {
    const auto notifier = notifier_.lock();
    if (!notifier) return;
    const auto badge = badgeText(title_);
    const auto label = title_.substr(std::min(title_.find_first_not_of(' '), title_.size()));
    notifier->setContent(
        {image_ ? statusPixmaps(*image_, badge, tone_) : std::vector<Pixmap>(), label,
         badge.empty() ? label : label + " running"});
}

StatusItem::StatusItem(Perform perform)
    : perform_(std::move(perform)),
      menu_([this](const MenuItem& item) { this->perform(item); }),
      notifier_(std::make_shared<StatusNotifier>(
          applicationName, StatusNotifier::Handlers{
                               [this] { performFirstItem(); },
                               [this](std::string token) { activationToken_ = std::move(token); },
                               [this] { menu_.hostsLeft(); }})),
      button_(std::make_shared<StatusBarButton>(notifier_)),
      toneWatch_(std::make_shared<PanelToneWatch>([this] { button_->setTone(toneWatch_->tone()); })) {
    button_->setTone(toneWatch_->tone());
}

void StatusItem::appear() {
    withSessionBus([weak = weak_from_this()](const auto& connection) {
        if (const auto self = weak.lock()) self->exportOn(connection);
    });
}

void StatusItem::exportOn(const GObjectPtr<GDBusConnection>& connection) {
    menu_.exportOn(connection, menuPath);
    notifier_->exportOn(connection, menuPath);
    toneWatch_->askOn(connection);
}

/// A click on the icon itself does what stands first in the menu: it brings up the application.
void StatusItem::performFirstItem() {
    const auto& items = menu_.published().menu().items;
    const auto first = std::ranges::find_if(
        items, [](const MenuItem& item) { return item.isEnabled() && !item.action.empty(); });
    if (first == items.end()) return;
    // A copy: what it does may replace the menu.
    perform(MenuItem(*first));
}

void StatusItem::perform(const MenuItem& item) {
    perform_(item, std::exchange(activationToken_, {}));
}

} // namespace harbrook::gtk
