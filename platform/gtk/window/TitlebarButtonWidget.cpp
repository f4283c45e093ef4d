#include "platform/gtk/window/TitlebarButtonWidget.h"

#include "platform/gtk/window/Silent.h"

#include <cstddef>

namespace harbrook::gtk {

namespace {

// Each sign stands in a square of the button's size. Lines are one point thick and lie on whole points, so
// that they are as sharp on a plain screen as on a dense one.

void drawClose(cairo_t* cairo) {
    cairo_move_to(cairo, 4.5, 4.5);
    cairo_line_to(cairo, 9.5, 9.5);
    cairo_move_to(cairo, 9.5, 4.5);
    cairo_line_to(cairo, 4.5, 9.5);
}

void drawMiniaturize(cairo_t* cairo) {
    cairo_move_to(cairo, 4, 7.5);
    cairo_line_to(cairo, 10, 7.5);
}

void drawZoom(cairo_t* cairo) {
    cairo_rectangle(cairo, 4.5, 4.5, 5, 5);
}

struct Kind {
    const char* name;
    const char* styleClass;
    const char* action;
    void (*draw)(cairo_t*);
};

constexpr Kind kinds[] = {
    {"Close", "close", "window.close", drawClose},
    {"Minimize", "miniaturize", "window.minimize", drawMiniaturize},
    {"Zoom", "zoom", "window.toggle-maximized", drawZoom},
};

void drawSign(GtkDrawingArea* area, cairo_t* cairo, int /*width*/, int /*height*/, void* kind) noexcept {
    GdkRGBA color;
    gtk_style_context_get_color(gtk_widget_get_style_context(GTK_WIDGET(area)), &color);
    gdk_cairo_set_source_rgba(cairo, &color);
    cairo_set_line_width(cairo, 1);
    static_cast<const Kind*>(kind)->draw(cairo);
    cairo_stroke(cairo);
}

} // namespace

GObjectPtr<GtkWidget> makeTitlebarButton(WindowButton which) {
    const Kind& kind = kinds[static_cast<std::size_t>(which)];
    GtkWidget* sign = makeSilent(GTK_TYPE_DRAWING_AREA);
    gtk_widget_set_can_target(sign, FALSE);
    gtk_drawing_area_set_draw_func(GTK_DRAWING_AREA(sign), drawSign, const_cast<Kind*>(&kind), nullptr);

    auto button = GObjectPtr<GtkWidget>::sink(GTK_WIDGET(gtk_button_new()));
    gtk_button_set_child(GTK_BUTTON(button.get()), sign);
    // A click leaves the keyboard to the page.
    gtk_widget_set_focus_on_click(button.get(), FALSE);
    gtk_actionable_set_action_name(GTK_ACTIONABLE(button.get()), kind.action);
    gtk_widget_set_tooltip_text(button.get(), kind.name);
    gtk_accessible_update_property(
        GTK_ACCESSIBLE(button.get()), GTK_ACCESSIBLE_PROPERTY_LABEL, kind.name, -1);
    gtk_widget_add_css_class(button.get(), "titlebar-button");
    gtk_widget_add_css_class(button.get(), kind.styleClass);
    return button;
}

} // namespace harbrook::gtk
