#include "platform/gtk/StatusItem.h"

#include "platform/gtk/DBusMenu.h"
#include "platform/gtk/PanelTone.h"
#include "platform/gtk/SessionBus.h"
#include "platform/gtk/StatusNotifier.h"

#include <algorithm>

namespace harbrook::gtk {

namespace {

constexpr const char* applicationName = "Harbrook";
constexpr const char* menuPath = "/StatusNotifierItem/Menu";

class StatusBarButton final : public harbrook::StatusBarButton {
public:
    explicit StatusBarButton(std::weak_ptr<StatusNotifier> notifier) : notifier_(std::move(notifier)) {}

    void setTitle(const std::string& title) override {
        if (std::exchange(title_, title) != title) update();
    }
    void setImage(const Image& image) override {
        if (image_ == image) return;
        image_ = image;
        update();
    }
    /// Where text is shown beside an icon, it always follows it.
    void setImagePosition(ImagePosition /*position*/) override {}

    void setTone(PanelTone tone) {
        if (std::exchange(tone_, tone) != tone) update();
    }

private:
    void update() {
        const auto notifier = notifier_.lock();
        if (!notifier) return;
        const auto badge = badgeText(title_);
        const auto label = title_.substr(std::min(title_.find_first_not_of(' '), title_.size()));
        notifier->setContent(
            {label, badge.empty() ? label : label + " running",
             image_ ? statusPixmaps(*image_, badge, tone_) : std::vector<Pixmap>()});
    }

    std::weak_ptr<StatusNotifier> notifier_;
    std::string title_;
    std::optional<Image> image_;
    PanelTone tone_ = PanelTone::light;
};

class StatusItem final : public harbrook::StatusItem, public std::enable_shared_from_this<StatusItem> {
public:
    explicit StatusItem(DBusMenu::Perform perform) : perform_(perform), menu_(std::move(perform)) {}

    void appear() {
        const auto weak = weak_from_this();
        notifier_ = std::make_shared<StatusNotifier>(
            applicationName,
            StatusNotifier::Handlers{[this] { performFirstItem(); }, [this] { menu_.hostsLeft(); }});
        button_ = std::make_shared<StatusBarButton>(notifier_);
        toneWatch_ = std::make_shared<PanelToneWatch>([this] { button_->setTone(toneWatch_->tone()); });
        button_->setTone(toneWatch_->tone());
        withSessionBus([weak](const auto& connection) {
            if (const auto self = weak.lock()) self->exportOn(connection);
        });
    }

    std::shared_ptr<harbrook::StatusBarButton> button() override { return button_; }
    void setMenu(const Menu& menu, std::weak_ptr<MenuDelegate> delegate) override {
        menu_.setMenu(menu, std::move(delegate));
    }

private:
    void exportOn(const GObjectPtr<GDBusConnection>& connection) {
        menu_.exportOn(connection, menuPath);
        notifier_->exportOn(connection, menuPath);
        toneWatch_->watchOn(connection);
    }

    /// A click on the icon itself does what stands first in the menu: it brings up the application.
    void performFirstItem() {
        const auto items = menu_.published().menu().items;
        const auto first = std::ranges::find_if(
            items, [](const MenuItem& item) { return item.isEnabled() && !item.action.empty(); });
        if (first != items.end()) perform_(*first);
    }

    DBusMenu::Perform perform_;
    DBusMenu menu_;
    // Their callbacks refer to what stands above.
    std::shared_ptr<StatusBarButton> button_;
    std::shared_ptr<StatusNotifier> notifier_;
    std::shared_ptr<PanelToneWatch> toneWatch_;
};

} // namespace

std::shared_ptr<harbrook::StatusItem> StatusBar::statusItemWithLength(double /*length*/) {
    auto item = std::make_shared<StatusItem>(performAction_);
    item->appear();
    return item;
}

} // namespace harbrook::gtk
