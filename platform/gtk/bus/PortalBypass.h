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

/// Keeps the processes of the web engine from waiting for the portal. Where they have to do with one (in
/// their sandbox, or because the user has told programs to use it), GIO asks it for the power profile and the
/// state of the network, synchronously, before the first page. Both have another source: the system bus and
/// the kernel. What the user has set stays. Only while the process has a single thread.
void keepEngineFromPortal();

} // namespace harbrook::gtk
