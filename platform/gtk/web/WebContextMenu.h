#pragma once

#include <webkit/webkit.h>

namespace harbrook::gtk {

/// Shows the menu of the window instead, where the page's strip along the top edge was clicked that stands
/// for a title bar, but no link, text field or selection in it. Whether it did, or the desktop wants nothing
/// there.
bool showsWindowMenu(GtkWidget* view, WebKitContextMenu* menu, WebKitHitTestResult* hit);

/// Leaves in `menu` only what makes sense in the shell: editing, copying a link, reloading, and in debug
/// builds the inspector. Whether anything is left.
bool keepSensibleItems(WebKitContextMenu* menu);

} // namespace harbrook::gtk
