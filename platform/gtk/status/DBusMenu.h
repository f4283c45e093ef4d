#pragma once

#include "platform/Menu.h"
#include "platform/gtk/bus/DBusObject.h"
#include "platform/gtk/status/MenuLayout.h"
#include "platform/gtk/status/MenuVariant.h"
#include "platform/gtk/status/MenuVisibility.h"

#include <functional>
#include <memory>
#include <optional>

namespace harbrook::gtk {

/// A menu on the bus as com.canonical.dbusmenu. Hosts hear of a new menu only if it differs from the one they
/// have, and while they show one they keep it: the new one is theirs when the menu has closed, or opens
/// again. Everything is answered from memory. Main thread.
class DBusMenu final : public DBusHandler {
public:
    using Perform = std::function<void(const MenuItem&)>;

    /// `perform` is called for an item that the user chooses.
    explicit DBusMenu(Perform perform) : perform_(std::move(perform)) {}

    void exportOn(GObjectPtr<GDBusConnection> connection, const std::string& path);
    /// Installs a menu for the next opening, of which `delegate` is told.
    void setMenu(const Menu& menu, std::weak_ptr<MenuDelegate> delegate);
    /// All hosts have gone, and with them whatever they showed.
    void hostsLeft() { menuClosed(); }

    [[nodiscard]] const MenuLayout& published() const { return *published_; }

    void handleMethod(
        std::string_view method, GVariant* arguments, GObjectPtr<GDBusMethodInvocation> invocation) override;
    [[nodiscard]] GVariant* property(std::string_view name) override;

private:
    using Invocation = GObjectPtr<GDBusMethodInvocation>;
    /// How hosts learn of a changed structure: by a signal to all of them, or first of all by the answer to
    /// the one that asks. A strict host closes an open menu at the signal.
    enum class Announcement { signal, answer };

    /// `makeValue` may run on another thread.
    void answer(
        Invocation invocation, const PropertyNames& names, std::function<GVariant*()> makeValue) const;
    void getLayout(GVariant* arguments, Invocation invocation);
    void getGroupProperties(GVariant* arguments, Invocation invocation);
    void getProperty(GVariant* arguments, Invocation invocation);
    void event(GVariant* arguments, Invocation invocation);
    void eventGroup(GVariant* arguments, Invocation invocation);
    void aboutToShow(GVariant* arguments, Invocation invocation);
    void aboutToShowGroup(GVariant* arguments, Invocation invocation);

    /// Whether the menu has changed because of it.
    bool hostIsAboutToShow(std::int32_t id, Announcement announcement);
    void hostSent(std::int32_t id, std::string_view event);
    void menuClosed();
    void tellDelegate();

    bool publishWaiting(Announcement announcement);
    bool publish(const Menu& menu, Announcement announcement);
    void announceProperties(const std::vector<std::int32_t>& changed);
    void announceLayout();

    Perform perform_;
    std::weak_ptr<MenuDelegate> delegate_;
    MenuIds ids_;
    std::shared_ptr<const MenuLayout> published_ = std::make_shared<const MenuLayout>();
    /// Came while the published menu was open.
    std::optional<Menu> waiting_;
    std::uint32_t revision_ = 1;
    /// The published structure was handed to the host that asked for it, and to no other.
    bool owesAnnouncement_ = false;
    MenuVisibility visibility_;
    std::unique_ptr<DBusObject> object_;
};

} // namespace harbrook::gtk
