#pragma once

#include "platform/Image.h"
#include "platform/gtk/status/CairoPtr.h"

namespace harbrook::gtk {

/// A transparent surface of `width` by `height` pixels.
[[nodiscard]] CairoSurfacePtr makeSurface(int width, int height);

/// `image` filling a transparent surface of `side` by `side` pixels, in its own colours. A picture file that
/// cannot be read any more leaves the surface empty.
[[nodiscard]] CairoSurfacePtr renderImage(const Image& image, int side);

} // namespace harbrook::gtk
