#pragma once

#include <webkit/webkit.h>

namespace harbrook::gtk {

/// The step that follows `level` in that direction (1 or -1), as browsers have them; the last one stays.
[[nodiscard]] double nextZoom(double level, int direction);

/// The zoom of the page, which the user sets with Ctrl and +, - or 0 wherever the keyboard is in the window.
/// It is remembered between runs (group "Page" of "page.ini" in the user's state directory). Lives as long as
/// the view.
void letUserZoom(WebKitWebView* view);

} // namespace harbrook::gtk
