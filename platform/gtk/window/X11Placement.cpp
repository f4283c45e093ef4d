#include "platform/gtk/window/X11Placement.h"

#include <gdk/x11/gdkx.h>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace harbrook::gtk {

namespace {

GdkSurface* x11Surface(GtkWindow* window) {
    GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(window));
    return surface && GDK_IS_X11_SURFACE(surface) ? surface : nullptr;
}

/// The part of the surface, to its left and above, that is shadow.
Point shadow(GtkWindow* window) {
    Point margin;
    gtk_native_get_surface_transform(GTK_NATIVE(window), &margin.x, &margin.y);
    return margin;
}

template <typename Visit>
void forEachMonitor(Visit visit) {
    GListModel* monitors = gdk_display_get_monitors(gdk_display_get_default());
    for (guint index = 0; index < g_list_model_get_n_items(monitors); ++index) {
        const auto monitor =
            GObjectPtr<GdkMonitor>::adopt(GDK_MONITOR(g_list_model_get_item(monitors, index)));
        visit(monitor.get());
    }
}

} // namespace

Size screenSize() {
    Size size;
    forEachMonitor([&](GdkMonitor* monitor) {
        if (size.width > 0) return;
        GdkRectangle area;
        gdk_monitor_get_geometry(monitor, &area);
        size = {static_cast<double>(area.width), static_cast<double>(area.height)};
    });
    return size;
}

bool isReachable(Point topLeft, Size size) {
    // Room for the pointer to take hold of the top of the window.
    constexpr double grip = 80;
    bool isOnOne = false;
    forEachMonitor([&](GdkMonitor* monitor) {
        GdkRectangle area;
        gdk_monitor_get_geometry(monitor, &area);
        const double visibleWidth =
            std::min(topLeft.x + size.width, 1.0 * area.x + area.width) - std::max(topLeft.x, 1.0 * area.x);
        isOnOne |= visibleWidth >= grip && topLeft.y >= area.y && topLeft.y <= area.y + area.height - grip;
    });
    return isOnOne;
}

X11Placement::X11Placement(GtkWindow* window, std::function<void()> moved)
    : window_(window), moved_(std::move(moved)) {
    connections_.add(
        window, "realize",
        [](GtkWidget*, void* self) noexcept { static_cast<X11Placement*>(self)->realized(); }, this);
    // Runs after the toolkit's own handler. What it asks of the X server follows the request to map the
    // window at once, so that the window manager finds the wish when it looks at the new window.
    connections_.add(
        window, "map", [](GtkWidget*, void* self) noexcept { static_cast<X11Placement*>(self)->place(); },
        this);
}

void X11Placement::setTopLeft(Point topLeft) {
    wanted_ = topLeft;
}

void X11Placement::center(Size size) {
    GdkDisplay* display = gdk_display_get_default();
    if (!GDK_IS_X11_DISPLAY(display)) return;
    GdkMonitor* monitor = gdk_x11_display_get_primary_monitor(display);
    if (!monitor) return;
    GdkRectangle area;
    gdk_x11_monitor_get_workarea(monitor, &area);
    wanted_ = Point{
        area.x + std::max(0.0, std::floor((area.width - size.width) / 2)),
        area.y + std::max(0.0, std::floor((area.height - size.height) / 2))};
}

void X11Placement::realized() {
    if (!x11Surface(window_) || std::exchange(isListening_, true)) return;
    const auto happened = [](GdkDisplay*, gpointer data, void* self) noexcept -> gboolean {
        const auto& event = *static_cast<const XEvent*>(data);
        auto& placement = *static_cast<X11Placement*>(self);
        if (event.type == ConfigureNotify) {
            GdkSurface* surface = x11Surface(placement.window_);
            if (surface && event.xconfigure.window == gdk_x11_surface_get_xid(surface)) {
                placement.surfaceMoved(
                    event.xconfigure.send_event != 0, event.xconfigure.x, event.xconfigure.y);
            }
        }
        return FALSE;
    };
    connections_.add(gtk_widget_get_display(GTK_WIDGET(window_)), "xevent", happened, this);
}

void X11Placement::place() {
    GdkSurface* surface = x11Surface(window_);
    if (!surface || !wanted_) return;
    const Point margin = shadow(window_);
    const int scale = gdk_surface_get_scale_factor(surface);
    const int x = static_cast<int>((wanted_->x - margin.x) * scale);
    const int y = static_cast<int>((wanted_->y - margin.y) * scale);
    Display* display = gdk_x11_display_get_xdisplay(gdk_surface_get_display(surface));
    const auto xid = gdk_x11_surface_get_xid(surface);

    XSizeHints hints = {};
    long supplied = 0;
    XGetWMNormalHints(display, xid, &hints, &supplied);
    hints.flags |= USPosition | PPosition;
    hints.x = x;
    hints.y = y;
    XSetWMNormalHints(display, xid, &hints);
    XMoveWindow(display, xid, x, y);
    wanted_.reset();
}

void X11Placement::surfaceMoved(bool isRelativeToScreen, int x, int y) {
    GdkSurface* surface = x11Surface(window_);
    // What the window manager tells is relative to the screen; what the server tells, to the frame that the
    // window manager has put around the window.
    if (!isRelativeToScreen) {
        Display* display = gdk_x11_display_get_xdisplay(gdk_surface_get_display(surface));
        const auto xid = gdk_x11_surface_get_xid(surface);
        ::Window child = 0;
        if (!XTranslateCoordinates(display, xid, DefaultRootWindow(display), 0, 0, &x, &y, &child)) return;
    }
    const double scale = gdk_surface_get_scale_factor(surface);
    const Point now = {std::floor(x / scale), std::floor(y / scale)};
    if (surfaceTopLeft_ == now) return;
    surfaceTopLeft_ = now;
    moved_();
}

std::optional<Point> X11Placement::topLeft() const {
    if (!surfaceTopLeft_) return std::nullopt;
    // Read late: a window that stops being maximized moves first and gets its shadow back then.
    const Point margin = shadow(window_);
    return Point{surfaceTopLeft_->x + margin.x, surfaceTopLeft_->y + margin.y};
}

std::uint32_t X11Placement::serverTime() const {
    GdkSurface* surface = x11Surface(window_);
    return surface ? gdk_x11_get_server_time(surface) : GDK_CURRENT_TIME;
}

std::int64_t X11Placement::identifier() const {
    GdkSurface* surface = x11Surface(window_);
    return surface ? static_cast<std::int64_t>(gdk_x11_surface_get_xid(surface)) : 0;
}

} // namespace harbrook::gtk
