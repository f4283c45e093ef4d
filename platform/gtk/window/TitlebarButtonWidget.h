#pragma once

#include "platform/Window.h"
#include "platform/gtk/foundation/GObjectPtr.h"

#include <gtk/gtk.h>

namespace harbrook::gtk {

/// The diameter of a title-bar button in points.
inline constexpr int titlebarButtonSize = 14;

/// A round button that closes, miniaturizes or zooms the window it is in: a plain disc, whose sign shows
/// while it has the style class "near" or the keyboard.
[[nodiscard]] GObjectPtr<GtkWidget> makeTitlebarButton(WindowButton which);

} // namespace harbrook::gtk
