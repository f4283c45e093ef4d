#include "platform/gtk/window/TextField.h"

#include "platform/gtk/window/Appearance.h"
#include "platform/gtk/window/TextStyle.h"
#include "platform/gtk/window/WidthLimit.h"

#include <utility>

namespace harbrook::gtk {

namespace {

GObjectPtr<GtkWidget> makeWidget(const std::string& text) {
    GtkWidget* label = gtk_label_new(text.c_str());
    gtk_label_set_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
    gtk_label_set_natural_wrap_mode(GTK_LABEL(label), GTK_NATURAL_WRAP_NONE);
    auto widget = makeWidthLimit(label);
    gtk_widget_set_can_target(widget.get(), FALSE);
    return widget;
}

} // namespace

TextField::TextField(NotificationCenter& center, const std::string& text) : View(makeWidget(text), center) {}

GtkLabel* TextField::label() const {
    return GTK_LABEL(gtk_widget_get_first_child(widget()));
}

void TextField::setStringValue(const std::string& text) {
    gtk_label_set_text(label(), text.c_str());
}

void TextField::setFont(Font font) {
    font_ = font;
    applyStyle();
}

void TextField::setTextColor(Color color) {
    color_ = std::move(color);
    if (!appearanceObserver_) {
        appearanceObserver_ = Appearance::current().onChange([this] { applyStyle(); });
    }
    applyStyle();
}

void TextField::applyStyle() {
    const auto attributes = color_ ? textAttributes(font_, *color_) : textAttributes(font_);
    gtk_label_set_attributes(label(), attributes.get());
}

void TextField::setAlignment(TextAlignment alignment) {
    const bool centred = alignment == TextAlignment::center;
    gtk_label_set_justify(label(), centred ? GTK_JUSTIFY_CENTER : GTK_JUSTIFY_LEFT);
    gtk_label_set_xalign(label(), centred ? 0.5F : 0.0F);
}

void TextField::setMaximumNumberOfLines(int lines) {
    gtk_label_set_lines(label(), lines > 0 ? lines : -1);
    gtk_label_set_ellipsize(label(), lines > 0 ? PANGO_ELLIPSIZE_END : PANGO_ELLIPSIZE_NONE);
}

void TextField::setHidden(bool flag) {
    gtk_widget_set_visible(widget(), !flag);
}

void TextField::setMaximumWidth(double width) {
    setWidthLimit(widget(), static_cast<int>(width));
}

std::shared_ptr<harbrook::TextField> makeLabel(NotificationCenter& center, const std::string& text) {
    return std::make_shared<TextField>(center, text);
}

} // namespace harbrook::gtk
