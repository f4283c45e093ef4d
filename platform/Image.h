#pragma once

#include "platform/Color.h"
#include "platform/Geometry.h"

#include <filesystem>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace harbrook {

/// A path to fill or to stroke.
struct BezierPath {
    struct MoveTo {
        Point point;
        bool operator==(const MoveTo&) const = default;
    };
    struct LineTo {
        Point point;
        bool operator==(const LineTo&) const = default;
    };
    struct Close {
        bool operator==(const Close&) const = default;
    };
    struct Oval {
        Rect rect;
        bool operator==(const Oval&) const = default;
    };
    using Element = std::variant<MoveTo, LineTo, Close, Oval>;

    std::vector<Element> elements;
    /// Points. The platform's default is 1.
    double lineWidth = 1.0;

    [[nodiscard]] static BezierPath bezierPathWithOvalInRect(Rect rect) { return {{Oval{rect}}, 1.0}; }
    void moveToPoint(Point point) { elements.emplace_back(MoveTo{point}); }
    void lineToPoint(Point point) { elements.emplace_back(LineTo{point}); }
    void closePath() { elements.emplace_back(Close{}); }

    bool operator==(const BezierPath&) const = default;
};

/// One step of a drawing. Colours are set before the paths that use them.
struct SetFillColor {
    SRGBColor color;
    bool operator==(const SetFillColor&) const = default;
};
struct SetStrokeColor {
    SRGBColor color;
    bool operator==(const SetStrokeColor&) const = default;
};
struct FillPath {
    BezierPath path;
    bool operator==(const FillPath&) const = default;
};
struct StrokePath {
    BezierPath path;
    bool operator==(const StrokePath&) const = default;
};
using DrawingStep = std::variant<SetFillColor, SetStrokeColor, FillPath, StrokePath>;

/// The recipe of a drawn image, carried out at whatever scale the image is shown. When `flipped`, the origin
/// is the top left corner and y grows downward.
struct Drawing {
    bool flipped = false;
    std::vector<DrawingStep> steps;
    bool operator==(const Drawing&) const = default;
};

/// An image: a picture file that was found to load, or a drawing. Sizes are points, whatever the pixels of
/// the file.
struct Image {
    Size size;
    /// Only the alpha channel counts; the platform tints it for its surroundings.
    bool isTemplate = false;
    std::variant<std::filesystem::path, Drawing> source;
    /// What is read out instead of the image.
    std::string accessibilityDescription = {};

    [[nodiscard]] static Image imageWithSize(Size size, Drawing drawing) {
        return {size, false, std::move(drawing), {}};
    }
    void setSize(Size newSize) { size = newSize; }
    void setTemplate(bool flag) { isTemplate = flag; }
    void setAccessibilityDescription(std::string text) { accessibilityDescription = std::move(text); }

    bool operator==(const Image&) const = default;
};

} // namespace harbrook
