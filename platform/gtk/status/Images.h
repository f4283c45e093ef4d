#pragma once

#include "platform/Image.h"
#include "platform/gtk/foundation/GObjectPtr.h"

#include <gdk/gdk.h>

#include <filesystem>
#include <optional>

namespace harbrook::gtk {

/// The picture in a file at its own size in pixels, or none when the file cannot be decoded as an image. Main
/// thread.
[[nodiscard]] std::optional<Image> imageWithContentsOfURL(const std::filesystem::path& path);

/// The pixels of a picture file that is to be shown at `side` pixels, or null when it cannot be read. Of a
/// file whose name ends in "@2x", a sibling that ends in "@4x" is taken where the file itself is too coarse.
[[nodiscard]] GObjectPtr<GdkTexture> loadTexture(const std::filesystem::path& path, int side);

} // namespace harbrook::gtk
