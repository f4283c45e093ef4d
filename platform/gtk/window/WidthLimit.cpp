#include "platform/gtk/window/WidthLimit.h"

#include <algorithm>

namespace harbrook::gtk {

namespace {

constexpr auto limitKey = "width-limit";

GtkSizeRequestMode requestMode(GtkWidget* /*widget*/) noexcept {
    return GTK_SIZE_REQUEST_HEIGHT_FOR_WIDTH;
}

void measure(
    GtkWidget* widget, GtkOrientation orientation, int forSize, int* minimum, int* natural,
    int* minimumBaseline, int* naturalBaseline) noexcept {
    gtk_widget_measure(
        gtk_widget_get_first_child(widget), orientation, forSize, minimum, natural, minimumBaseline,
        naturalBaseline);
    const int limit = GPOINTER_TO_INT(g_object_get_data(G_OBJECT(widget), limitKey));
    if (orientation == GTK_ORIENTATION_HORIZONTAL && limit > 0) {
        *natural = std::max(*minimum, std::min(*natural, limit));
    }
}

void allocate(GtkWidget* widget, int width, int height, int baseline) noexcept {
    gtk_widget_allocate(gtk_widget_get_first_child(widget), width, height, baseline, nullptr);
}

} // namespace

GObjectPtr<GtkWidget> makeWidthLimit(GtkWidget* child) {
    auto widget = GObjectPtr<GtkWidget>::sink(gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0));
    gtk_box_append(GTK_BOX(widget.get()), child);
    gtk_widget_set_layout_manager(widget.get(), gtk_custom_layout_new(requestMode, measure, allocate));
    return widget;
}

void setWidthLimit(GtkWidget* widthLimit, int points) {
    g_object_set_data(G_OBJECT(widthLimit), limitKey, GINT_TO_POINTER(points));
    gtk_widget_queue_resize(widthLimit);
}

} // namespace harbrook::gtk
