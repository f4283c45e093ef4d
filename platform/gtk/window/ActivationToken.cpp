#include "platform/gtk/window/ActivationToken.h"

#include <gdk/wayland/gdkwayland.h>

namespace harbrook::gtk {

namespace {

/// GTK 4.8 takes the token from the display whenever it presents a window. `gtk_window_set_startup_id` does
/// not reach it there.
void setToken(const char* token) {
    auto* display = gdk_display_get_default();
    if (GDK_IS_WAYLAND_DISPLAY(display)) gdk_wayland_display_set_startup_notification_id(display, token);
}

} // namespace

ActivationToken::ActivationToken(const std::string& token) {
    if (!token.empty()) setToken(token.c_str());
}

ActivationToken::~ActivationToken() {
    setToken(nullptr);
}

} // namespace harbrook::gtk
