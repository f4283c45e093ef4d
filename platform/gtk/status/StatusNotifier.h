#pragma once

#include "platform/gtk/bus/DBusObject.h"
#include "platform/gtk/status/StatusPixmap.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace harbrook::gtk {

/// What a panel shows of a status item.
struct StatusContent {
    /// The picture, with the count in it.
    std::vector<Pixmap> pixmaps;
    /// The count, for the hosts that take no pixmaps and show text beside the icon instead.
    std::string label;
    std::string tooltip;
};

/// An item on the bus as org.kde.StatusNotifierItem, registered with every watcher that comes. No watcher is
/// a normal state. Main thread.
class StatusNotifier final : public DBusHandler, public std::enable_shared_from_this<StatusNotifier> {
public:
    struct Handlers {
        /// The user clicked the icon itself.
        std::function<void()> activate;
        /// A click is about to arrive, and this token allows what it does to raise a window.
        std::function<void(std::string)> activationTokenArrived;
        /// The watcher has gone, and the panel with it.
        std::function<void()> hostsLeft;
    };

    StatusNotifier(std::string title, Handlers handlers);
    ~StatusNotifier() override;

    /// Begins to watch for watchers. `menuPath` is where the item's menu is on the same connection.
    void exportOn(GObjectPtr<GDBusConnection> connection, const std::string& menuPath);
    /// Whether there is a watcher, and with it a panel that may show the item.
    [[nodiscard]] bool hasWatcher() const { return hasWatcher_; }
    /// Shows `content`; what is equal to what is shown already goes unmentioned.
    void setContent(StatusContent content);

    void handleMethod(
        std::string_view method, GVariant* arguments, GObjectPtr<GDBusMethodInvocation> invocation) override;
    [[nodiscard]] GVariant* property(std::string_view name) override;

private:
    struct Callbacks;

    void watcherAppeared(const std::string& owner);
    void watcherVanished();
    void registerItem();
    void registrationFailed();

    std::string title_;
    Handlers handlers_;
    StatusContent content_;
    std::string menuPath_;
    std::unique_ptr<DBusObject> object_;
    bool hasWatcher_ = false;
    /// The watcher's host knows icons by name only.
    bool wantsNames_ = false;
    guint watch_ = 0;
    guint retry_ = 0;
    int retries_ = 0;
};

} // namespace harbrook::gtk
