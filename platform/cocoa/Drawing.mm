#include "platform/cocoa/Drawing.h"

#include "platform/Overloaded.h"
#include "platform/cocoa/Conversions.h"

#include <map>

namespace harbrook::cocoa {

namespace {

NSColor* fixedColor(SRGBColor color) {
    return [NSColor colorWithSRGBRed:color.red green:color.green blue:color.blue alpha:color.alpha];
}

NSAppearanceName toNSAppearanceName(AppearanceName name) {
    switch (name) {
    case AppearanceName::NSAppearanceNameAqua:
        return NSAppearanceNameAqua;
    case AppearanceName::NSAppearanceNameDarkAqua:
        return NSAppearanceNameDarkAqua;
    }
}

class NativeAppearance final : public Appearance {
public:
    explicit NativeAppearance(NSAppearance* appearance) : appearance_(appearance) {}

    std::optional<AppearanceName> bestMatchFromAppearancesWithNames(
        const std::vector<AppearanceName>& names) const override {
        NSMutableArray<NSAppearanceName>* const candidates = [NSMutableArray arrayWithCapacity:names.size()];
        for (const auto name : names)
            [candidates addObject:toNSAppearanceName(name)];
        NSAppearanceName const best = [appearance_ bestMatchFromAppearancesWithNames:candidates];
        for (const auto name : names) {
            if ([best isEqualToString:toNSAppearanceName(name)]) return name;
        }
        return std::nullopt;
    }

private:
    NSAppearance* appearance_;
};

NSColor* newDynamicColor(const Color::Dynamic& provider) {
    const auto kept = provider;
    return [NSColor colorWithName:nil
                  dynamicProvider:^NSColor*(NSAppearance* appearance) {
                      return fixedColor((*kept)(NativeAppearance(appearance)));
                  }];
}

/// One object for all uses of a colour. They are few, and each is kept. Main thread.
NSColor* dynamicColor(const Color::Dynamic& provider) {
    static std::map<Color::Dynamic, NSColor*> made;
    const auto [entry, isNew] = made.try_emplace(provider);
    if (isNew) entry->second = newDynamicColor(provider);
    return entry->second;
}

NSColor* systemColor(SystemColor color) {
    switch (color) {
    case SystemColor::secondaryLabelColor:
        return NSColor.secondaryLabelColor;
    }
}

NSPoint toNSPoint(Point point) {
    return NSMakePoint(point.x, point.y);
}

NSBezierPath* toNSBezierPath(const BezierPath& path) {
    NSBezierPath* const result = [NSBezierPath bezierPath];
    for (const auto& element : path.elements) {
        std::visit(
            Overloaded{
                [&](BezierPath::MoveTo move) { [result moveToPoint:toNSPoint(move.point)]; },
                [&](BezierPath::LineTo line) { [result lineToPoint:toNSPoint(line.point)]; },
                [&](BezierPath::Close) { [result closePath]; },
                [&](BezierPath::Oval oval) { [result appendBezierPathWithOvalInRect:toNSRect(oval.rect)]; },
            },
            element);
    }
    result.lineWidth = path.lineWidth;
    return result;
}

void draw(const DrawingStep& step) {
    std::visit(
        Overloaded{
            [](SetFillColor fill) { [fixedColor(fill.color) setFill]; },
            [](SetStrokeColor stroke) { [fixedColor(stroke.color) setStroke]; },
            [](const FillPath& fill) { [toNSBezierPath(fill.path) fill]; },
            [](const StrokePath& stroke) { [toNSBezierPath(stroke.path) stroke]; },
        },
        step);
}

NSImage* drawnImage(NSSize size, const Drawing& drawing) {
    const auto steps = drawing.steps;
    return [NSImage imageWithSize:size
                          flipped:drawing.flipped
                   drawingHandler:^BOOL(NSRect) {
                       for (const auto& step : steps)
                           draw(step);
                       return YES;
                   }];
}

} // namespace

NSColor* toNSColor(const Color& color) {
    return std::visit(
        Overloaded{
            [](SRGBColor fixed) { return fixedColor(fixed); },
            [](SystemColor system) { return systemColor(system); },
            [](const Color::Dynamic& provider) { return dynamicColor(provider); },
        },
        color.source());
}

NSFont* toNSFont(Font font) {
    if (!font.weight) return [NSFont systemFontOfSize:font.size];
    switch (*font.weight) {
    case FontWeight::medium:
        return [NSFont systemFontOfSize:font.size weight:NSFontWeightMedium];
    }
}

NSAttributedString* toNSAttributedString(const AttributedString& text) {
    return [[NSMutableAttributedString alloc]
        initWithString:toNSString(text.string)
            attributes:@{
                NSFontAttributeName : toNSFont(text.font),
                NSForegroundColorAttributeName : toNSColor(text.foregroundColor),
            }];
}

NSImage* _Nullable toNSImage(const Image& image) {
    const auto size = NSMakeSize(image.size.width, image.size.height);
    NSImage* const result = std::visit(
        Overloaded{
            [&](const std::filesystem::path& path) {
                return [[NSImage alloc] initWithContentsOfURL:fileURL(path)];
            },
            [&](const Drawing& drawing) { return drawnImage(size, drawing); },
        },
        image.source);
    result.size = size;
    [result setTemplate:image.isTemplate];
    result.accessibilityDescription = toNSString(image.accessibilityDescription);
    return result;
}

} // namespace harbrook::cocoa
