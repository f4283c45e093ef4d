#pragma once

#include <gtk/gtk.h>

namespace harbrook::gtk {

/// Keeps from the web engine in `window` the one key that ends the program: F7.
///
/// WebKitGTK 2.50 looks up key bindings by way of a hidden text view of the toolkit's. F7 makes that text
/// view show its cursor, and GTK 4.8 aborts when it is to blink
/// (`gtktextview.c: blink_cb: assertion failed: (cursor_visible (text_view))`). To go when F7
/// in a bare web view does no harm on every supported system.
void withholdUnsafeKeys(GtkWindow* window);

} // namespace harbrook::gtk
