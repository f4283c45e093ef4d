#include "window/TitlebarLayout.h"

#include <cmath>

namespace harbrook {

std::optional<Rect> titlebarContainerFrame(Rect container, double windowHeight, double row) {
    constexpr double tolerance = 0.5;
    const double y = windowHeight - row;
    const bool isInPlace =
        std::abs(container.size.height - row) <= tolerance && std::abs(container.origin.y - y) <= tolerance;
    if (isInPlace) return std::nullopt;
    return Rect{{container.origin.x, y}, {container.size.width, row}};
}

Point titlebarButtonOrigin(double titlebarHeight, double buttonHeight, double x, double centre) {
    return {x, std::round((titlebarHeight - centre) - 0.5 * buttonHeight)};
}

} // namespace harbrook
