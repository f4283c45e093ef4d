#pragma once

#include "platform/gtk/foundation/GObjectPtr.h"

#include <cairo.h>

namespace harbrook::gtk {

using CairoSurfacePtr = std::unique_ptr<cairo_surface_t, FreeWith<cairo_surface_destroy>>;
using CairoPtr = std::unique_ptr<cairo_t, FreeWith<cairo_destroy>>;
using CairoPatternPtr = std::unique_ptr<cairo_pattern_t, FreeWith<cairo_pattern_destroy>>;

} // namespace harbrook::gtk
