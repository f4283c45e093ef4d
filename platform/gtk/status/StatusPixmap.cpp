#include "platform/gtk/status/StatusPixmap.h"

#include "platform/gtk/status/Drawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace harbrook::gtk {

namespace {

constexpr std::array sides = {16, 18, 22, 24, 32, 36, 44, 48, 64};

constexpr SRGBColor darkInk = {0.14, 0.15, 0.16, 1};
constexpr SRGBColor lightInk = {0.96, 0.96, 0.95, 1};
constexpr SRGBColor badgeFill = {0.11, 0.44, 0.85, 1};
constexpr double edgeOpacity = 0.75;

void setColor(cairo_t* context, const SRGBColor& color, double opacity = 1) {
    cairo_set_source_rgba(context, color.red, color.green, color.blue, color.alpha * opacity);
}

/// One point of an 18-point icon, but never less than a pixel.
double pixels(double points, int side) {
    return std::max(1.0, std::round(points * side / 18.0));
}

/// The shape of `mask` in one colour, moved by whole or part pixels.
void stamp(cairo_t* context, cairo_surface_t* mask, double dx, double dy) {
    cairo_mask_surface(context, mask, dx, dy);
}

void paintTemplate(cairo_t* context, cairo_surface_t* mask, PanelTone tone, int side) {
    const auto& ink = tone == PanelTone::dark ? lightInk : darkInk;
    const auto& edge = tone == PanelTone::dark ? darkInk : lightInk;
    const double reach = pixels(0.75, side);
    cairo_push_group(context);
    setColor(context, edge);
    constexpr int directions = 8;
    for (int i = 0; i < directions; ++i) {
        const double angle = 2 * std::numbers::pi * i / directions;
        stamp(context, mask, reach * std::cos(angle), reach * std::sin(angle));
    }
    cairo_pop_group_to_source(context);
    cairo_paint_with_alpha(context, edgeOpacity);
    setColor(context, ink);
    stamp(context, mask, 0, 0);
}

void roundedRectangle(cairo_t* context, Rect rect, double radius) {
    constexpr double quarter = std::numbers::pi / 2;
    const double left = rect.origin.x + radius;
    const double top = rect.origin.y + radius;
    const double right = rect.origin.x + rect.size.width - radius;
    const double bottom = rect.origin.y + rect.size.height - radius;
    cairo_new_path(context);
    cairo_arc(context, right, top, radius, -quarter, 0);
    cairo_arc(context, right, bottom, radius, 0, quarter);
    cairo_arc(context, left, bottom, radius, quarter, 2 * quarter);
    cairo_arc(context, left, top, radius, 2 * quarter, 3 * quarter);
    cairo_close_path(context);
}

/// A pill in the lower right corner, clear of the dot that is half-way up.
void paintBadge(cairo_t* context, const std::string& text, int side) {
    const double height = std::round(side * 0.5);
    cairo_select_font_face(context, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_BOLD);
    cairo_set_font_size(context, height * 0.95);
    cairo_text_extents_t extents;
    cairo_text_extents(context, text.c_str(), &extents);
    const double padding = height * 0.25;
    const double width = std::clamp(std::ceil(extents.width + 2 * padding), height, side * 1.0);
    const Rect pill = {{side - width, side - height}, {width, height}};

    // The gap around it is cleared, so that the mark behind does not run into it.
    const double gap = pixels(0.75, side);
    roundedRectangle(
        context, {{pill.origin.x - gap, pill.origin.y - gap}, {width + 2 * gap, height + 2 * gap}},
        height / 2);
    cairo_set_operator(context, CAIRO_OPERATOR_CLEAR);
    cairo_fill(context);
    cairo_set_operator(context, CAIRO_OPERATOR_OVER);

    roundedRectangle(context, pill, height * 0.4);
    setColor(context, badgeFill);
    cairo_fill(context);

    const double squeeze = std::min(1.0, (width - padding) / extents.width);
    cairo_translate(context, pill.origin.x + width / 2, pill.origin.y + height / 2);
    cairo_scale(context, squeeze, 1);
    cairo_move_to(context, -extents.x_bearing - extents.width / 2, -extents.y_bearing - extents.height / 2);
    cairo_set_source_rgb(context, 1, 1, 1);
    cairo_show_text(context, text.c_str());
}

Pixmap pixmapFromSurface(cairo_surface_t* surface, int side) {
    Pixmap pixmap{side, {}};
    pixmap.argb.reserve(static_cast<std::size_t>(side * side) * 4);
    cairo_surface_flush(surface);
    const auto* data = cairo_image_surface_get_data(surface);
    const auto stride = cairo_image_surface_get_stride(surface);
    for (int y = 0; y < side; ++y) {
        const auto* row =
            reinterpret_cast<const std::uint32_t*>(data + static_cast<std::ptrdiff_t>(y) * stride);
        for (int x = 0; x < side; ++x) {
            const auto alpha = row[x] >> 24;
            pixmap.argb.push_back(static_cast<std::uint8_t>(alpha));
            for (const int shift : {16, 8, 0}) {
                const auto component = row[x] >> shift & 0xff;
                const auto straight = alpha == 0 ? 0 : (component * 255 + alpha / 2) / alpha;
                pixmap.argb.push_back(static_cast<std::uint8_t>(straight));
            }
        }
    }
    return pixmap;
}

} // namespace

std::string badgeText(const std::string& title) {
    const auto start = title.find_first_not_of(' ');
    const auto count = start == std::string::npos ? std::string() : title.substr(start);
    if (!std::ranges::all_of(count, [](char c) { return c >= '0' && c <= '9'; })) return {};
    return count.size() > 2 ? "99+" : count;
}

CairoSurfacePtr renderStatusIcon(const Image& image, const std::string& badge, PanelTone tone, int side) {
    auto surface = makeSurface(side, side);
    const CairoPtr context(cairo_create(surface.get()));
    const auto picture = renderImage(image, side);
    if (image.isTemplate) {
        paintTemplate(context.get(), picture.get(), tone, side);
    } else {
        cairo_set_source_surface(context.get(), picture.get(), 0, 0);
        cairo_paint(context.get());
    }
    if (!badge.empty()) paintBadge(context.get(), badge, side);
    return surface;
}

std::vector<Pixmap> statusPixmaps(const Image& image, const std::string& badge, PanelTone tone) {
    std::vector<Pixmap> pixmaps;
    pixmaps.reserve(sides.size());
    for (const int side : sides) {
        pixmaps.push_back(pixmapFromSurface(renderStatusIcon(image, badge, tone, side).get(), side));
    }
    return pixmaps;
}

} // namespace harbrook::gtk
