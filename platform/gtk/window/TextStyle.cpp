#include "platform/gtk/window/TextStyle.h"

#include "platform/gtk/window/Appearance.h"

#include <cmath>

namespace harbrook::gtk {

PangoAttributes textAttributes(const Font& font) {
    // The seam's points are logical pixels; the toolkit's are 1/72 inch, at 96 pixels to the inch unless the
    // user has texts scaled.
    constexpr double typographicPointsPerPixel = 72.0 / 96.0;
    const auto size = static_cast<int>(std::lround(font.size * typographicPointsPerPixel * PANGO_SCALE));
    const auto weight = font.weight == FontWeight::medium ? PANGO_WEIGHT_MEDIUM : PANGO_WEIGHT_NORMAL;
    PangoAttributes attributes(pango_attr_list_new());
    pango_attr_list_insert(attributes.get(), pango_attr_size_new(size));
    pango_attr_list_insert(attributes.get(), pango_attr_weight_new(weight));
    return attributes;
}

PangoAttributes textAttributes(const Font& font, const Color& color) {
    const GdkRGBA concrete = Appearance::current().resolve(color);
    const auto component = [](float value) { return static_cast<guint16>(std::lround(value * 65535)); };
    auto attributes = textAttributes(font);
    pango_attr_list_insert(
        attributes.get(), pango_attr_foreground_new(
                              component(concrete.red), component(concrete.green), component(concrete.blue)));
    pango_attr_list_insert(attributes.get(), pango_attr_foreground_alpha_new(component(concrete.alpha)));
    return attributes;
}

} // namespace harbrook::gtk
