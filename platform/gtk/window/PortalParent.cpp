#include "platform/gtk/window/PortalParent.h"

#include <gdk/wayland/gdkwayland.h>
#include <gdk/x11/gdkx.h>

#include <cstdio>
#include <memory>
#include <utility>

namespace harbrook::gtk {

namespace {

using Known = std::function<void(const std::string&)>;

GdkSurface* surfaceOf(GtkWindow* window) {
    return window ? gtk_native_get_surface(GTK_NATIVE(window)) : nullptr;
}

} // namespace

void withPortalParent(GtkWindow* window, Known known) {
    GdkSurface* surface = surfaceOf(window);
    if (surface && GDK_IS_X11_SURFACE(surface)) {
        char name[32];
        std::snprintf(name, sizeof name, "x11:%lx", gdk_x11_surface_get_xid(surface));
        known(name);
        return;
    }
    if (surface && GDK_IS_WAYLAND_TOPLEVEL(surface)) {
        const auto exported = [](GdkToplevel*, const char* handle, void* data) noexcept {
            (*static_cast<Known*>(data))(std::string("wayland:") + handle);
        };
        const auto destroy = [](void* data) noexcept {
            const std::unique_ptr<Known> owned(static_cast<Known*>(data));
        };
        auto callback = std::make_unique<Known>(known);
        if (gdk_wayland_toplevel_export_handle(GDK_TOPLEVEL(surface), exported, callback.get(), destroy)) {
            // The toolkit frees it.
            static_cast<void>(callback.release());
            return;
        }
    }
    known({});
}

void forgetPortalParent(GtkWindow* window) {
    GdkSurface* surface = surfaceOf(window);
    if (surface && GDK_IS_WAYLAND_TOPLEVEL(surface)) {
        gdk_wayland_toplevel_unexport_handle(GDK_TOPLEVEL(surface));
    }
}

} // namespace harbrook::gtk
