#include "status/MenuBarIcon.h"

#include <array>

namespace harbrook {

namespace {

using Slab = std::array<Point, 4>;

// In design units.
constexpr Slab upperSlab = {{{55, 0}, {110, 0}, {55, 89}, {0, 89}}};
constexpr Slab lowerSlab = {{{51.908, 94}, {140.908, 94}, {119.896, 128}, {30.896, 128}}};

// In points.
constexpr Rect busyDot = {{11.9375, 6.25}, {3.25, 3.25}};
constexpr Rect idleDot = {{12.2625, 6.575}, {2.6, 2.6}};
constexpr double idleDotOutline = 0.625;

constexpr SRGBColor black = {0, 0, 0, 1};

Point mapped(Point design) {
    constexpr Point offset = {2.5, 8.0};
    constexpr double scale = 0.125;
    return {(design.x + offset.x) * scale, (design.y + offset.y) * scale};
}

BezierPath slabPath(const Slab& slab) {
    BezierPath path;
    path.moveToPoint(mapped(slab[0]));
    for (std::size_t i = 1; i < slab.size(); ++i)
        path.lineToPoint(mapped(slab[i]));
    path.closePath();
    return path;
}

} // namespace

Drawing menuBarIconDrawing(bool idle) {
    Drawing drawing;
    drawing.flipped = true;
    drawing.steps = {
        SetFillColor{black}, SetStrokeColor{black}, FillPath{slabPath(upperSlab)},
        FillPath{slabPath(lowerSlab)}};

    auto dot = BezierPath::bezierPathWithOvalInRect(busyDot);
    if (idle) {
        // The thinner line belongs to an oval that is not drawn; the ring has the default width. It is meant
        // so.
        dot.lineWidth = idleDotOutline;
        drawing.steps.emplace_back(StrokePath{BezierPath::bezierPathWithOvalInRect(idleDot)});
    } else {
        drawing.steps.emplace_back(FillPath{dot});
    }
    return drawing;
}

} // namespace harbrook
