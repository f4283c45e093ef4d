#include "platform/gtk/status/Drawing.h"

#include "platform/Overloaded.h"
#include "platform/gtk/status/Images.h"

#include <numbers>

namespace harbrook::gtk {

namespace {

void addToPath(cairo_t* context, const BezierPath& path) {
    cairo_new_path(context);
    const Overloaded add = {
        [&](const BezierPath::MoveTo& move) { cairo_move_to(context, move.point.x, move.point.y); },
        [&](const BezierPath::LineTo& line) { cairo_line_to(context, line.point.x, line.point.y); },
        [&](const BezierPath::Close&) { cairo_close_path(context); },
        [&](const BezierPath::Oval& oval) {
            const auto& [origin, size] = oval.rect;
            cairo_save(context);
            cairo_translate(context, origin.x + size.width / 2, origin.y + size.height / 2);
            cairo_scale(context, size.width / 2, size.height / 2);
            cairo_new_sub_path(context);
            cairo_arc(context, 0, 0, 1, 0, 2 * std::numbers::pi);
            cairo_close_path(context);
            cairo_restore(context);
        },
    };
    for (const auto& element : path.elements)
        std::visit(add, element);
}

void setColor(cairo_t* context, const SRGBColor& color) {
    cairo_set_source_rgba(context, color.red, color.green, color.blue, color.alpha);
}

void carryOut(cairo_t* context, const Drawing& drawing) {
    SRGBColor fillColor;
    SRGBColor strokeColor;
    const Overloaded step = {
        [&](const SetFillColor& set) { fillColor = set.color; },
        [&](const SetStrokeColor& set) { strokeColor = set.color; },
        [&](const FillPath& fill) {
            addToPath(context, fill.path);
            setColor(context, fillColor);
            cairo_fill(context);
        },
        [&](const StrokePath& stroke) {
            addToPath(context, stroke.path);
            setColor(context, strokeColor);
            cairo_set_line_width(context, stroke.path.lineWidth);
            cairo_stroke(context);
        },
    };
    for (const auto& element : drawing.steps)
        std::visit(step, element);
}

void paintTexture(cairo_t* context, GdkTexture* texture, int side) {
    const auto width = gdk_texture_get_width(texture);
    const auto height = gdk_texture_get_height(texture);
    const auto pixels = makeSurface(width, height);
    gdk_texture_download(
        texture, cairo_image_surface_get_data(pixels.get()),
        static_cast<gsize>(cairo_image_surface_get_stride(pixels.get())));
    cairo_surface_mark_dirty(pixels.get());
    cairo_scale(context, static_cast<double>(side) / width, static_cast<double>(side) / height);
    cairo_set_source_surface(context, pixels.get(), 0, 0);
    cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_GOOD);
    cairo_paint(context);
}

} // namespace

CairoSurfacePtr makeSurface(int width, int height) {
    return CairoSurfacePtr(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
}

CairoSurfacePtr renderImage(const Image& image, int side) {
    auto surface = makeSurface(side, side);
    const CairoPtr context(cairo_create(surface.get()));
    if (const auto* path = std::get_if<std::filesystem::path>(&image.source)) {
        if (const auto texture = loadTexture(*path, side)) paintTexture(context.get(), texture.get(), side);
        return surface;
    }
    const auto& drawing = std::get<Drawing>(image.source);
    cairo_scale(context.get(), side / image.size.width, side / image.size.height);
    if (!drawing.flipped) {
        cairo_translate(context.get(), 0, image.size.height);
        cairo_scale(context.get(), 1, -1);
    }
    carryOut(context.get(), drawing);
    return surface;
}

} // namespace harbrook::gtk
