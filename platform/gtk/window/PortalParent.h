#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>

namespace harbrook::gtk {

/// Calls `known`, at once or later, with the name by which a portal can make its dialogs belong to `window`:
/// empty where there is none. On Wayland the name holds until `forgetPortalParent`.
void withPortalParent(GtkWindow* window, std::function<void(const std::string&)> known);
void forgetPortalParent(GtkWindow* window);

} // namespace harbrook::gtk
