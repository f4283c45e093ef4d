#pragma once

#include <gtk/gtk.h>

namespace harbrook::gtk {

/// Makes a widget, with a floating reference, that assistive technology is not told of: it only serves the
/// looks or the handling of the pointer.
[[nodiscard]] inline GtkWidget* makeSilent(GType type) {
    return GTK_WIDGET(g_object_new(type, "accessible-role", GTK_ACCESSIBLE_ROLE_PRESENTATION, nullptr));
}

} // namespace harbrook::gtk
