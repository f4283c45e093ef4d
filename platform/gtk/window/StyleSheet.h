#pragma once

namespace harbrook::gtk {

/// Installs the program's own styles on the display, once. They build on the theme's colours, so that they
/// follow it from light to dark.
void installStyleSheet();

} // namespace harbrook::gtk
