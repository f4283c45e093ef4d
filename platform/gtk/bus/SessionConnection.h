#pragma once

#include "platform/gtk/foundation/GObjectPtr.h"

#include <gio/gio.h>

#include <functional>

namespace harbrook::gtk {

/// Calls `ready` on the main thread with the connection to the session bus: at once when the application
/// already has it, otherwise when it is made, and never when there is no session bus.
void withSessionBus(std::function<void(GObjectPtr<GDBusConnection>)> ready);

} // namespace harbrook::gtk
