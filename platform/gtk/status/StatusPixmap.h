#pragma once

#include "platform/Image.h"
#include "platform/gtk/status/CairoPtr.h"

#include <cstdint>
#include <string>
#include <vector>

namespace harbrook::gtk {

/// What the panel behind the icon is believed to be.
enum class PanelTone { light, dark };

/// A picture in the format of a status item: pixels in reading order, four bytes each, alpha, red, green and
/// blue, not premultiplied.
struct Pixmap {
    int side = 0;
    std::vector<std::uint8_t> argb;
    bool operator==(const Pixmap&) const = default;
};

/// The short text that a badge shows for the title beside the icon: a count up to 99, "99+" above, and
/// nothing for a title that is no count.
[[nodiscard]] std::string badgeText(const std::string& title);

/// The icon of a status item on a transparent surface of `side` by `side` pixels: a template tinted for the
/// panel, any other image in its own colours; in front of it the badge, if there is one. A thin edge of the
/// opposite tone keeps it legible when the panel is not what it was believed to be.
[[nodiscard]] CairoSurfacePtr renderStatusIcon(
    const Image& image, const std::string& badge, PanelTone tone, int side);

/// `renderStatusIcon` at every size that panels show at scales 1 and 2, smallest first.
[[nodiscard]] std::vector<Pixmap> statusPixmaps(const Image& image, const std::string& badge, PanelTone tone);

} // namespace harbrook::gtk
