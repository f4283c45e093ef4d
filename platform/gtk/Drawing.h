#pragma once

#include "platform/Image.h"
#include "platform/gtk/CairoPtr.h"

#include <filesystem>
#include <optional>

namespace harbrook::gtk {

/// The picture in a file at its own size in pixels, or none when the file cannot be decoded as an image.
[[nodiscard]] std::optional<Image> imageWithContentsOfURL(const std::filesystem::path& path);

/// A transparent surface of `width` by `height` pixels.
[[nodiscard]] CairoSurfacePtr makeSurface(int width, int height);

/// `image` filling a transparent surface of `side` by `side` pixels, in its own colours. A picture file that
/// cannot be read any more leaves the surface empty. Of a file whose name ends in "@2x", a sibling that ends
/// in "@4x" is used where it is sharper.
[[nodiscard]] CairoSurfacePtr renderImage(const Image& image, int side);

} // namespace harbrook::gtk
