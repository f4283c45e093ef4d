#pragma once

#include "platform/Geometry.h"

#include <optional>

namespace harbrook {

/// Where the band of the title-bar buttons belongs in a window `windowHeight` points high: `row` points along
/// its top edge. None when `container` is there already, to within half a point.
[[nodiscard]] std::optional<Rect> titlebarContainerFrame(Rect container, double windowHeight, double row);

/// The origin of a button `buttonHeight` points high whose left edge is at `x` and whose centre lies `centre`
/// points below the top of a title-bar view `titlebarHeight` points high, rounded to whole points.
[[nodiscard]] Point titlebarButtonOrigin(double titlebarHeight, double buttonHeight, double x, double centre);

} // namespace harbrook
