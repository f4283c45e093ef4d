#include "platform/gtk/window/Canvas.h"

namespace {

struct HarbrookCanvas {
    GtkWidget parent;
    GdkRGBA color;
};

struct HarbrookCanvasClass {
    GtkWidgetClass parent;
};

G_DEFINE_TYPE(HarbrookCanvas, harbrook_canvas, GTK_TYPE_WIDGET)

HarbrookCanvas* canvasOf(gpointer instance) {
    return G_TYPE_CHECK_INSTANCE_CAST(instance, harbrook_canvas_get_type(), HarbrookCanvas);
}

void snapshot(GtkWidget* widget, GtkSnapshot* into) {
    const auto width = static_cast<float>(gtk_widget_get_width(widget));
    const auto height = static_cast<float>(gtk_widget_get_height(widget));
    const graphene_rect_t area = GRAPHENE_RECT_INIT(0, 0, width, height);
    gtk_snapshot_append_color(into, &canvasOf(widget)->color, &area);
    GTK_WIDGET_CLASS(harbrook_canvas_parent_class)->snapshot(widget, into);
}

gboolean grabFocus(GtkWidget* widget) {
    GtkWidget* child = gtk_widget_get_first_child(widget);
    return child && gtk_widget_grab_focus(child);
}

void dispose(GObject* object) {
    while (GtkWidget* child = gtk_widget_get_first_child(GTK_WIDGET(object)))
        gtk_widget_unparent(child);
    G_OBJECT_CLASS(harbrook_canvas_parent_class)->dispose(object);
}

void harbrook_canvas_class_init(HarbrookCanvasClass* type) {
    G_OBJECT_CLASS(type)->dispose = dispose;
    GTK_WIDGET_CLASS(type)->snapshot = snapshot;
    GTK_WIDGET_CLASS(type)->grab_focus = grabFocus;
    gtk_widget_class_set_layout_manager_type(GTK_WIDGET_CLASS(type), GTK_TYPE_BIN_LAYOUT);
}

void harbrook_canvas_init(HarbrookCanvas* canvas) {
    gtk_widget_set_hexpand(GTK_WIDGET(canvas), TRUE);
    gtk_widget_set_vexpand(GTK_WIDGET(canvas), TRUE);
}

} // namespace

namespace harbrook::gtk {

GObjectPtr<GtkWidget> makeCanvas() {
    return GObjectPtr<GtkWidget>::sink(GTK_WIDGET(g_object_new(harbrook_canvas_get_type(), nullptr)));
}

void setCanvasColor(GtkWidget* canvas, const GdkRGBA& color) {
    auto& current = canvasOf(canvas)->color;
    if (gdk_rgba_equal(&current, &color)) return;
    current = color;
    gtk_widget_queue_draw(canvas);
}

} // namespace harbrook::gtk
