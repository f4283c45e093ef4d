#include "platform/gtk/window/ResizeEdges.h"

#include "platform/gtk/window/Silent.h"

namespace harbrook::gtk {

namespace {

constexpr int edgeThickness = 4;
constexpr int cornerSize = 10;

void resize(
    GtkWindow* window, GtkWidget* widget, GdkSurfaceEdge edge, GtkGesture* gesture, double x, double y) {
    GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(window));
    graphene_point_t inWindow;
    const graphene_point_t inWidget = {static_cast<float>(x), static_cast<float>(y)};
    if (!gtk_widget_compute_point(widget, GTK_WIDGET(window), &inWidget, &inWindow)) return;
    double surfaceX = 0;
    double surfaceY = 0;
    gtk_native_get_surface_transform(GTK_NATIVE(window), &surfaceX, &surfaceY);
    gtk_gesture_set_state(gesture, GTK_EVENT_SEQUENCE_CLAIMED);
    gdk_toplevel_begin_resize(
        GDK_TOPLEVEL(surface), edge, gtk_gesture_get_device(gesture), GDK_BUTTON_PRIMARY,
        inWindow.x + surfaceX, inWindow.y + surfaceY,
        gtk_event_controller_get_current_event_time(GTK_EVENT_CONTROLLER(gesture)));
    // The release goes to the window manager.
    gtk_event_controller_reset(GTK_EVENT_CONTROLLER(gesture));
}

} // namespace

ResizeEdges::ResizeEdges(GtkWindow* window, GtkOverlay* overlay) : window_(window) {
    constexpr auto start = GTK_ALIGN_START;
    constexpr auto fill = GTK_ALIGN_FILL;
    constexpr auto end = GTK_ALIGN_END;
    add(overlay, GDK_SURFACE_EDGE_NORTH, fill, start, "n-resize");
    add(overlay, GDK_SURFACE_EDGE_SOUTH, fill, end, "s-resize");
    add(overlay, GDK_SURFACE_EDGE_WEST, start, fill, "w-resize");
    add(overlay, GDK_SURFACE_EDGE_EAST, end, fill, "e-resize");
    add(overlay, GDK_SURFACE_EDGE_NORTH_WEST, start, start, "nw-resize");
    add(overlay, GDK_SURFACE_EDGE_NORTH_EAST, end, start, "ne-resize");
    add(overlay, GDK_SURFACE_EDGE_SOUTH_WEST, start, end, "sw-resize");
    add(overlay, GDK_SURFACE_EDGE_SOUTH_EAST, end, end, "se-resize");
    for (const char* property : {"notify::css-classes", "notify::maximized", "notify::fullscreened"}) {
        connections_.add(
            window, property,
            [](GtkWindow*, GParamSpec*, void* self) noexcept { static_cast<ResizeEdges*>(self)->update(); },
            this);
    }
    update();
}

void ResizeEdges::add(
    GtkOverlay* overlay, GdkSurfaceEdge edge, GtkAlign horizontal, GtkAlign vertical, const char* cursor) {
    const auto length = [](GtkAlign along, GtkAlign across) {
        if (along == GTK_ALIGN_FILL) return -1;
        return across == GTK_ALIGN_FILL ? edgeThickness : cornerSize;
    };
    GtkWidget* widget = makeSilent(GTK_TYPE_BOX);
    gtk_widget_set_halign(widget, horizontal);
    gtk_widget_set_valign(widget, vertical);
    gtk_widget_set_size_request(widget, length(horizontal, vertical), length(vertical, horizontal));
    gtk_widget_set_cursor_from_name(widget, cursor);
    gtk_overlay_add_overlay(overlay, widget);

    GtkGesture* press = gtk_gesture_click_new();
    const auto pressed = [](GtkGestureClick* gesture, int, double x, double y, void* data) noexcept {
        const auto& self = *static_cast<Edge*>(data);
        resize(self.window, self.widget, self.edge, GTK_GESTURE(gesture), x, y);
    };
    connections_.add(
        press, "pressed", pressed,
        edges_.emplace_back(std::make_unique<Edge>(Edge{window_, widget, edge})).get());
    gtk_widget_add_controller(widget, GTK_EVENT_CONTROLLER(press));
}

void ResizeEdges::update() {
    // The toolkit's word for a window that has its frame but no shadow.
    const bool hasNoShadow = gtk_widget_has_css_class(GTK_WIDGET(window_), "solid-csd");
    const bool canResize = !gtk_window_is_maximized(window_) && !gtk_window_is_fullscreen(window_);
    for (const auto& edge : edges_)
        gtk_widget_set_visible(edge->widget, hasNoShadow && canResize);
}

} // namespace harbrook::gtk
