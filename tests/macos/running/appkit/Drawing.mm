#include "tests/macos/running/appkit/Drawing.h"

#include "platform/recording/Format.h"
#include "tests/macos/running/messages/Describe.h"

#include <optional>

using namespace harbrook::running;

@interface StandInColor : NSColor {
@public
    harbrook::SRGBColor fixed;
    Kept<id> provider;
    std::string name;
}
@end

@interface StandInImage : NSImage {
@public
    Kept<id> drawing;
    NSSize drawnSize;
}
@end

@interface StandInFont : NSFont {
@public
    double size;
    std::optional<double> weight;
}
@end

@interface StandInAppearance : NSAppearance {
@public
    std::string name;
}
@end

@implementation NSColor

+ (NSColor*)colorWithSRGBRed:(CGFloat)red green:(CGFloat)green blue:(CGFloat)blue alpha:(CGFloat)alpha {
    StandInColor* const made = [StandInColor alloc];
    made->fixed = {red, green, blue, alpha};
    return objc_autorelease(made);
}

+ (NSColor*)colorWithName:(NSString*)name dynamicProvider:(NSColor* (^)(NSAppearance*))provider {
    StandInColor* const made = [StandInColor alloc];
    made->provider = static_cast<id>(provider);
    return objc_autorelease(made);
}

+ (NSColor*)secondaryLabelColor {
    StandInColor* const made = [StandInColor alloc];
    made->name = "secondaryLabelColor";
    return objc_autorelease(made);
}

@end

@implementation StandInColor
@end

@implementation NSAppearance

- (NSString*)bestMatchFromAppearancesWithNames:(NSArray*)names {
    for (NSString* name in names) {
        if (characters(name) == static_cast<StandInAppearance*>(self)->name) return name;
    }
    return nil;
}

@end

@implementation StandInAppearance
@end

@implementation NSFont

+ (NSFont*)systemFontOfSize:(CGFloat)size {
    StandInFont* const made = [StandInFont alloc];
    made->size = size;
    return objc_autorelease(made);
}

+ (NSFont*)systemFontOfSize:(CGFloat)size weight:(CGFloat)weight {
    StandInFont* const made = [StandInFont alloc];
    made->size = size;
    made->weight = weight;
    return objc_autorelease(made);
}

@end

@implementation StandInFont
@end

@implementation NSImage

- (instancetype)initWithContentsOfURL:(NSURL*)url {
    if (std::filesystem::exists(placeOf(url))) return self;
    objc_release(self);
    return nil;
}

+ (instancetype)imageWithSize:(NSSize)size flipped:(BOOL)flipped drawingHandler:(BOOL (^)(NSRect))handler {
    StandInImage* const made = [StandInImage alloc];
    made->drawing = static_cast<id>(handler);
    made->drawnSize = size;
    return objc_autorelease(made);
}

@end

@implementation StandInImage
@end

namespace harbrook::running {

namespace {

NSColor* colorIn(StandInColor* color, const std::string& appearanceName) {
    StandInAppearance* const appearance = objc_autorelease([StandInAppearance alloc]);
    appearance->name = appearanceName;
    return ((NSColor * (^)(NSAppearance*)) color->provider.get())(appearance);
}

} // namespace

std::string describeColor(NSColor* color) {
    const AutoreleasePool pool;
    const World::Describing describing;
    auto* const own = static_cast<StandInColor*>(color);
    if (!own->name.empty()) return own->name;
    if (!own->provider.get()) return recording::format(Color(own->fixed));
    return describeColor(colorIn(own, "NSAppearanceNameAqua")) + " in light, " +
           describeColor(colorIn(own, "NSAppearanceNameDarkAqua")) + " in dark";
}

std::string describeColorIn(NSColor* color, const std::string& appearanceName) {
    const AutoreleasePool pool;
    return describeColor(colorIn(static_cast<StandInColor*>(color), appearanceName));
}

std::string describeFont(NSFont* font) {
    auto* const own = static_cast<StandInFont*>(font);
    const bool isMedium = own->weight == NSFontWeightMedium;
    const auto other = own->weight && !isMedium ? " " + recording::format(*own->weight) : "";
    return recording::format(Font{own->size, isMedium ? std::optional(FontWeight::medium) : std::nullopt}) +
           other;
}

void draw(NSImage* image) {
    auto* const own = static_cast<StandInImage*>(image);
    const auto rect = NSMakeRect(0, 0, own->drawnSize.width, own->drawnSize.height);
    if (own->drawing.get()) ((BOOL(^)(NSRect))own->drawing.get())(rect);
}

} // namespace harbrook::running
