#pragma once

#include <gtk/gtk.h>

namespace harbrook::gtk {

/// The height of the strip along the top of the content that stands for a title bar, in points.
inline constexpr double titlebarStrip = 52;

/// What the desktop has a click on a title bar do.
enum class TitlebarClick { doubleClick, middleClick, rightClick };

/// Does it, by the user's settings ("gtk-titlebar-double-click" and the like): maximizes and back, minimizes,
/// lowers, shows the window's menu, or nothing. `event` is the click, needed for the menu only; may be null.
/// Whether there was something to do.
bool performTitlebarClick(GtkWindow* window, TitlebarClick click, GdkEvent* event = nullptr);

/// Has middle clicks on the strip of `window` do what the settings say.
void followMiddleClicks(GtkWindow* window);

} // namespace harbrook::gtk
