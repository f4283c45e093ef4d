#include "platform/gtk/RenderingPolicy.h"

#include "platform/gtk/SandboxPreflight.h"

#include <glib.h>

#include <filesystem>
#include <system_error>

namespace harbrook::gtk {

RenderingPolicy::RenderingPolicy() {
    constexpr gboolean unlessTheUserHas = FALSE;
    if (!hasRenderNode()) g_setenv("GSK_RENDERER", "cairo", unlessTheUserHas);
    // WebKitGTK 2.50 asks for the machine's power profile in each web process before its first page, and in
    // the sandbox GLib does that by a blocking call to the desktop portal: a portal that is slow to start
    // delays the page, and one that hangs keeps it away for 25 seconds. The other source of that answer does
    // not block.
    g_setenv("GIO_USE_POWER_PROFILE_MONITOR", "dbus", unlessTheUserHas);
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
