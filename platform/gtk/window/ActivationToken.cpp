#include "platform/gtk/window/ActivationToken.h"

#include <gdk/wayland/gdkwayland.h>

#include <utility>

namespace harbrook::gtk {

namespace {

GdkDisplay* waylandDisplay() {
    auto* display = gdk_display_get_default();
    return GDK_IS_WAYLAND_DISPLAY(display) ? display : nullptr;
}

} // namespace

ActivationToken::ActivationToken(std::string token) : token_(std::move(token)) {
    auto* display = waylandDisplay();
    if (token_.empty() || !display) return;
    // GTK 4.8 takes the token from the display whenever it presents a window. `gtk_window_set_startup_id`
    // does not reach it there.
    gdk_wayland_display_set_startup_notification_id(display, token_.c_str());
}

ActivationToken::~ActivationToken() {
    auto* display = waylandDisplay();
    if (token_.empty() || !display) return;
    gdk_display_notify_startup_complete(display, token_.c_str());
    gdk_wayland_display_set_startup_notification_id(display, nullptr);
}

} // namespace harbrook::gtk
