#include "platform/gtk/window/TitlebarActions.h"

#include "platform/gtk/foundation/GObjectPtr.h"

#include <string_view>

namespace harbrook::gtk {

namespace {

const char* settingFor(TitlebarClick click) {
    switch (click) {
    case TitlebarClick::doubleClick:
        return "gtk-titlebar-double-click";
    case TitlebarClick::middleClick:
        return "gtk-titlebar-middle-click";
    case TitlebarClick::rightClick:
        return "gtk-titlebar-right-click";
    }
    return nullptr;
}

void toggleMaximized(GtkWindow* window) {
    const auto change = gtk_window_is_maximized(window) ? gtk_window_unmaximize : gtk_window_maximize;
    change(window);
}

} // namespace

bool performTitlebarClick(GtkWindow* window, TitlebarClick click, GdkEvent* event) {
    char* value = nullptr;
    g_object_get(gtk_widget_get_settings(GTK_WIDGET(window)), settingFor(click), &value, nullptr);
    const GCharPtr owned(value);
    const std::string_view action = value ? value : "";
    auto* surface = GDK_TOPLEVEL(gtk_native_get_surface(GTK_NATIVE(window)));
    if (action == "toggle-maximize") {
        toggleMaximized(window);
    } else if (action == "minimize") {
        gtk_window_minimize(window);
    } else if (action == "lower" && surface) {
        gdk_toplevel_lower(surface);
    } else {
        // Not every window manager has one to show.
        return action == "menu" && surface && event && gdk_toplevel_show_window_menu(surface, event);
    }
    return true;
}

void followMiddleClicks(GtkWindow* window) {
    GtkGesture* click = gtk_gesture_click_new();
    gtk_gesture_single_set_button(GTK_GESTURE_SINGLE(click), GDK_BUTTON_MIDDLE);
    gtk_event_controller_set_propagation_phase(GTK_EVENT_CONTROLLER(click), GTK_PHASE_CAPTURE);
    const auto pressed = [](GtkGestureClick* gesture, int, double, double y, void*) noexcept {
        if (y >= titlebarStrip) return;
        auto* controller = GTK_EVENT_CONTROLLER(gesture);
        auto* clicked = GTK_WINDOW(gtk_event_controller_get_widget(controller));
        auto* event = gtk_event_controller_get_current_event(controller);
        if (!performTitlebarClick(clicked, TitlebarClick::middleClick, event)) return;
        gtk_gesture_set_state(GTK_GESTURE(gesture), GTK_EVENT_SEQUENCE_CLAIMED);
    };
    g_signal_connect(click, "pressed", G_CALLBACK(+pressed), nullptr);
    gtk_widget_add_controller(GTK_WIDGET(window), GTK_EVENT_CONTROLLER(click));
}

} // namespace harbrook::gtk
