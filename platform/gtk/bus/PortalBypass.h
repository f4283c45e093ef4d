#pragma once

#include "platform/gtk/foundation/GObjectPtr.h"

#include <gio/gio.h>

namespace harbrook::gtk {

/// While this exists, a desktop portal seems to be missing from the session bus.
///
/// GTK 4.8 waits for the portal while an application starts (`gtk_application_impl_dbus_startup` makes a
/// proxy of the Inhibit interface, synchronously): for as long as it takes to start one, and for 25 seconds
/// if it has hung. Nothing here needs that proxy. Whatever has a use for the portal asks later, without
/// waiting.
class PortalBypass {
public:
    PortalBypass();
    PortalBypass(const PortalBypass&) = delete;
    PortalBypass& operator=(const PortalBypass&) = delete;
    ~PortalBypass();

private:
    GObjectPtr<GDBusConnection> bus_;
    guint filter_ = 0;
};

} // namespace harbrook::gtk
