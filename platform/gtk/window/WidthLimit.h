#pragma once

#include "platform/gtk/foundation/GObjectPtr.h"

#include <gtk/gtk.h>

namespace harbrook::gtk {

/// A widget around `child` that asks for as much width as the child would like, up to a limit, and for the
/// height that the child needs at the width it then gets.
[[nodiscard]] GObjectPtr<GtkWidget> makeWidthLimit(GtkWidget* child);
/// Points; unlimited at first.
void setWidthLimit(GtkWidget* widthLimit, int points);

} // namespace harbrook::gtk
