#pragma once

#include "platform/gtk/foundation/GObjectPtr.h"

#include <gtk/gtk.h>

namespace harbrook::gtk {

/// A widget filled with one colour, with its children stacked on top, each with the whole of its area (less
/// what the child's own alignment and margins leave). Focus given to it goes to its first child.
[[nodiscard]] GObjectPtr<GtkWidget> makeCanvas();
void setCanvasColor(GtkWidget* canvas, const GdkRGBA& color);

} // namespace harbrook::gtk
