#pragma once

#include <gtk/gtk.h>

#include <string_view>

namespace harbrook::gtk {

/// Answers a standard editing action (`undo:`, `redo:`, `cut:`, `copy:`, `paste:`, `delete:`, `selectAll:`)
/// in the web page or text field that `focused` is, or is part of. Whether it was answered. `focused` may be
/// null.
bool performEditingAction(GtkWidget* focused, std::string_view selector);

} // namespace harbrook::gtk
