#pragma once

#include "platform/gtk/foundation/GObjectPtr.h"

#include <gio/gio.h>

#include <functional>

namespace harbrook::gtk {

/// Calls `ready` on the main thread with the connection to the session bus: at once when the application
/// already has it, otherwise when it is made, however slow the bus is, and never when there is none. Main
/// thread.
void withSessionBus(std::function<void(GObjectPtr<GDBusConnection>)> ready);

} // namespace harbrook::gtk
