#include "platform/gtk/window/WindowState.h"

#include <utility>

namespace harbrook::gtk {

WindowState::WindowState(GtkWindow* window, std::function<void(NotificationName)> report)
    : report_(std::move(report)) {
    connections_.add(
        window, "notify::is-active",
        [](GtkWindow* changed, GParamSpec*, void* self) noexcept {
            static_cast<WindowState*>(self)->report_(
                gtk_window_is_active(changed) ? NotificationName::NSWindowDidBecomeKeyNotification
                                              : NotificationName::NSWindowDidResignKeyNotification);
        },
        this);
    connections_.add(
        window, "realize",
        [](GtkWidget* widget, void* self) noexcept { static_cast<WindowState*>(self)->realized(widget); },
        this);
}

void WindowState::realized(GtkWidget* window) {
    if (std::exchange(isListening_, true)) return;
    GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(window));
    connections_.add(
        surface, "notify::state",
        [](GdkToplevel* changed, GParamSpec*, void* self) noexcept {
            static_cast<WindowState*>(self)->surfaceStateChanged(changed);
        },
        this);
    connections_.add(
        surface, "enter-monitor",
        [](GdkSurface*, GdkMonitor*, void* self) noexcept {
            static_cast<WindowState*>(self)->report_(NotificationName::NSWindowDidChangeScreenNotification);
        },
        this);
}

void WindowState::surfaceStateChanged(GdkToplevel* surface) {
    const bool isMiniaturized = gdk_toplevel_get_state(surface) & GDK_TOPLEVEL_STATE_MINIMIZED;
    if (std::exchange(isMiniaturized_, isMiniaturized) && !isMiniaturized) {
        report_(NotificationName::NSWindowDidDeminiaturizeNotification);
    }
}

} // namespace harbrook::gtk
