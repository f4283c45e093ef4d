#include "platform/gtk/web/RenderingPolicy.h"

#include "platform/gtk/web/SandboxPreflight.h"

#include <glib.h>

#include <filesystem>
#include <system_error>

namespace harbrook::gtk {

RenderingPolicy::RenderingPolicy() {
    constexpr gboolean unlessTheUserHas = FALSE;
    if (!hasRenderNode()) g_setenv("GSK_RENDERER", "cairo", unlessTheUserHas);
    // Before its first page the engine (WebKitGTK 2.50) asks for the power profile in each web process, and
    // for the state of the network in the network process. In the sandbox, or with GTK_USE_PORTAL, GLib asks
    // the desktop portal, and waits: a portal that is slow to start delays the page, and one that hangs keeps
    // it away for 25 seconds. These two sources do not wait.
    g_setenv("GIO_USE_POWER_PROFILE_MONITOR", "dbus", unlessTheUserHas);
    g_setenv("GIO_USE_NETWORK_MONITOR", "netlink", unlessTheUserHas);
    beginSandboxPreflight();
}

bool hasRenderNode() {
    std::error_code error;
    for (std::filesystem::directory_iterator entry("/dev/dri", error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->path().filename().string().starts_with("renderD")) return true;
    }
    return false;
}

} // namespace harbrook::gtk
