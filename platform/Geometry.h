#pragma once

namespace harbrook {

/// Lengths are points: logical pixels, before the display's scale factor is applied.
/// Unless a type says otherwise, y grows upward from the bottom edge of the enclosing view.
struct Point {
    double x = 0;
    double y = 0;
    bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;
    bool operator==(const Size&) const = default;
};

struct Rect {
    Point origin;
    Size size;
    bool operator==(const Rect&) const = default;
};

} // namespace harbrook
