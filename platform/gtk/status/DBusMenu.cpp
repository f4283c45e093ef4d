#include "platform/gtk/status/DBusMenu.h"

#include "platform/gtk/status/MenuVariant.h"

namespace harbrook::gtk {

namespace {

auto now() {
    return std::chrono::steady_clock::now();
}

} // namespace

void DBusMenu::setMenu(const Menu& menu, std::weak_ptr<MenuDelegate> delegate) {
    delegate_ = std::move(delegate);
    const auto isPublished = menu == published_->menu();
    if (visibility_.isOpen(now())) {
        waiting_ = isPublished ? std::nullopt : std::optional(menu);
        return;
    }
    waiting_.reset();
    if (!isPublished) publish(menu, Announcement::signal);
    if (owesAnnouncement_) announceLayout();
}

bool DBusMenu::publishWaiting(Announcement announcement) {
    if (!waiting_) return false;
    const auto menu = *std::exchange(waiting_, std::nullopt);
    return publish(menu, announcement);
}

bool DBusMenu::publish(const Menu& menu, Announcement announcement) {
    auto update = updatedLayout(*published_, menu, ids_);
    published_ = std::make_shared<const MenuLayout>(std::move(update.layout));
    if (update.kind == MenuUpdate::Kind::nothing) return false;
    // Of rows that stay, some hosts ask nothing anew for a changed layout alone.
    if (!update.changed.empty()) announceProperties(update.changed);
    if (update.kind == MenuUpdate::Kind::properties) return true;
    ++revision_;
    if (announcement == Announcement::answer) {
        owesAnnouncement_ = true;
    } else {
        announceLayout();
    }
    return true;
}

void DBusMenu::announceProperties(const std::vector<std::int32_t>& changed) {
    if (!object_) return;
    GVariantBuilder updated;
    g_variant_builder_init(&updated, G_VARIANT_TYPE("a(ia{sv})"));
    for (const auto id : changed) {
        const auto& row = published_->rows()[*published_->indexOf(id)];
        g_variant_builder_add(&updated, "(i@a{sv})", id, changeableMenuProperties(*row.item));
    }
    object_->emitSignal("ItemsPropertiesUpdated", g_variant_new("(a(ia{sv})a(ias))", &updated, nullptr));
}

void DBusMenu::announceLayout() {
    owesAnnouncement_ = false;
    if (object_) object_->emitSignal("LayoutUpdated", g_variant_new("(ui)", revision_, 0));
}

bool DBusMenu::hostIsAboutToShow(std::int32_t id, Announcement announcement) {
    if (id != 0 || !visibility_.aboutToShow(now())) return false;
    const auto hasChanged = publishWaiting(announcement);
    tellDelegate();
    return hasChanged;
}

void DBusMenu::hostSent(std::int32_t id, std::string_view event) {
    if (event == "clicked") {
        const auto index = published_->indexOf(id);
        const auto* item = index ? published_->rows()[*index].item : nullptr;
        if (!item) return;
        // The action may install another menu.
        const auto chosen = *item;
        menuClosed();
        if (chosen.isEnabled() && !chosen.action.empty()) perform_(chosen);
    } else if (id == 0 && event == "opened" && visibility_.opened(now())) {
        publishWaiting(Announcement::signal);
        tellDelegate();
    } else if (id == 0 && event == "closed") {
        menuClosed();
    }
}

void DBusMenu::menuClosed() {
    visibility_.closed();
    publishWaiting(Announcement::signal);
    if (owesAnnouncement_) announceLayout();
}

void DBusMenu::tellDelegate() {
    if (const auto delegate = delegate_.lock()) delegate->menuWillOpen();
}

} // namespace harbrook::gtk
