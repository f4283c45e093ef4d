#pragma once

#include "platform/Notifications.h"
#include "platform/gtk/foundation/GObjectPtr.h"

#include <gio/gio.h>

#include <memory>
#include <vector>

namespace harbrook::gtk {

/// Notifications between programs as signals on the session bus. A notification "a.b.c" is the signal `c` of
/// the interface `a.b`, from any sender and object; its user information is the one argument, a dictionary
/// (`a{sv}` or `a{ss}`). Without a session bus nothing is ever heard.
class DistributedNotificationCenter final : public harbrook::DistributedNotificationCenter {
public:
    DistributedNotificationCenter();
    ~DistributedNotificationCenter() override;
    void addObserverForName(const std::string& name, std::function<void(const UserInfo&)> block) override;

private:
    struct Subscriptions;

    std::shared_ptr<Subscriptions> subscriptions_;
};

/// The user information in the arguments of a signal: none unless they are one dictionary with string keys.
[[nodiscard]] DistributedNotificationCenter::UserInfo userInfoFromArguments(GVariant* arguments);

} // namespace harbrook::gtk
