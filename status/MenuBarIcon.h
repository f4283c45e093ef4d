#pragma once

#include "platform/Image.h"

namespace harbrook {

/// The side of the menu-bar icon, in points.
inline constexpr double menuBarIconSide = 18;

/// The mark as a drawing on a canvas of 18 by 18 points, y downward: two slabs and a dot, which is a disc
/// while projects run and a ring while none does.
[[nodiscard]] Drawing menuBarIconDrawing(bool idle);

} // namespace harbrook
