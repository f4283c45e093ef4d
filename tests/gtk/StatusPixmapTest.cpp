#include "platform/gtk/status/StatusPixmap.h"

#include "platform/gtk/status/Drawing.h"
#include "platform/gtk/status/Images.h"
#include "platform/gtk/status/PanelTone.h"
#include "status/MenuBarIcon.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <fstream>

namespace harbrook::tests {

namespace {

using namespace gtk;

Image mark(bool idle) {
    auto image = Image::imageWithSize({menuBarIconSide, menuBarIconSide}, menuBarIconDrawing(idle));
    image.setTemplate(true);
    return image;
}

/// Alpha of one pixel of the drawn mark, at ten pixels to the point.
int alphaAt(cairo_surface_t* surface, double x, double y) {
    cairo_surface_flush(surface);
    const auto* data = cairo_image_surface_get_data(surface);
    const auto stride = cairo_image_surface_get_stride(surface);
    const auto* row = reinterpret_cast<const std::uint32_t*>(data + static_cast<int>(y * 10) * stride);
    return static_cast<int>(row[static_cast<int>(x * 10)] >> 24);
}

const Pixmap& pixmapOfSide(const std::vector<Pixmap>& pixmaps, int side) {
    for (const auto& pixmap : pixmaps) {
        if (pixmap.side == side) return pixmap;
    }
    throw std::out_of_range("no pixmap of this size");
}

double luminance(double red, double green, double blue) {
    const auto linear = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(red) + 0.7152 * linear(green) + 0.0722 * linear(blue);
}

/// The best contrast with the panel that any run of pixels gives, weighted by how much of the icon has it:
/// the contrast that the most visible tenth of the drawn pixels reaches at least.
double contrastOnPanel(const Pixmap& pixmap, double panel) {
    std::vector<double> ratios;
    for (std::size_t i = 0; i < pixmap.argb.size(); i += 4) {
        const double alpha = pixmap.argb[i] / 255.0;
        if (alpha < 0.1) continue;
        const auto over = [&](std::size_t k) {
            return pixmap.argb[i + k] / 255.0 * alpha + panel * (1 - alpha);
        };
        const auto shown = luminance(over(1), over(2), over(3));
        const auto behind = luminance(panel, panel, panel);
        ratios.push_back((std::max(shown, behind) + 0.05) / (std::min(shown, behind) + 0.05));
    }
    std::ranges::sort(ratios, std::greater());
    return ratios.at(ratios.size() / 10);
}

TEST(Drawing, draws_the_busy_mark_where_it_belongs) {
    const auto surface = renderImage(mark(false), 180);
    EXPECT_EQ(alphaAt(surface.get(), 7, 6), 255) << "upper slab";
    EXPECT_EQ(alphaAt(surface.get(), 11, 15), 255) << "lower slab";
    EXPECT_EQ(alphaAt(surface.get(), 13.56, 7.87), 255) << "disc";
    EXPECT_EQ(alphaAt(surface.get(), 7, 12.4), 0) << "between the slabs";
    EXPECT_EQ(alphaAt(surface.get(), 1, 1), 0) << "beside the upper slab";
    EXPECT_EQ(alphaAt(surface.get(), 1, 17.5), 0) << "below";
}

TEST(Drawing, draws_the_idle_mark_with_a_ring_one_point_wide) {
    const auto surface = renderImage(mark(true), 180);
    EXPECT_EQ(alphaAt(surface.get(), 13.56, 7.87), 0) << "inside the ring";
    EXPECT_EQ(alphaAt(surface.get(), 13.56 + 1.3, 7.87), 255) << "on the ring";
    EXPECT_EQ(alphaAt(surface.get(), 13.56 + 1.3 + 0.4, 7.87), 255) << "near its outer edge";
    EXPECT_EQ(alphaAt(surface.get(), 13.56 + 1.3 - 0.4, 7.87), 255) << "near its inner edge";
    EXPECT_EQ(alphaAt(surface.get(), 13.56 + 1.3 + 0.6, 7.87), 0) << "outside";
}

TEST(Drawing, puts_the_origin_of_an_unflipped_drawing_at_the_bottom) {
    Drawing drawing;
    drawing.steps = {FillPath{BezierPath::bezierPathWithOvalInRect({{0, 0}, {9, 9}})}};
    const auto surface = renderImage(Image::imageWithSize({18, 18}, drawing), 180);
    EXPECT_EQ(alphaAt(surface.get(), 4.5, 13.5), 255);
    EXPECT_EQ(alphaAt(surface.get(), 4.5, 4.5), 0);
}

TEST(Drawing, uses_the_colours_that_were_set_before) {
    Drawing drawing;
    drawing.flipped = true;
    drawing.steps = {
        SetFillColor{{1, 0, 0, 1}}, SetStrokeColor{{0, 0, 1, 0.5}},
        FillPath{BezierPath::bezierPathWithOvalInRect({{0, 0}, {18, 18}})}};
    const auto surface = renderImage(Image::imageWithSize({18, 18}, drawing), 18);
    cairo_surface_flush(surface.get());
    const auto* row = reinterpret_cast<const std::uint32_t*>(
        cairo_image_surface_get_data(surface.get()) + 9 * cairo_image_surface_get_stride(surface.get()));
    EXPECT_EQ(row[9], 0xffff0000U);
}

TEST(Badge, shows_counts_only) {
    EXPECT_EQ(badgeText(""), "");
    EXPECT_EQ(badgeText(" "), "");
    EXPECT_EQ(badgeText(" 2"), "2");
    EXPECT_EQ(badgeText(" 99"), "99");
    EXPECT_EQ(badgeText(" 100"), "99+");
    EXPECT_EQ(badgeText(" 3000"), "99+");
    EXPECT_EQ(badgeText("busy"), "");
}

TEST(StatusPixmaps, cover_what_panels_show_at_scales_one_and_two) {
    std::vector<int> sides;
    for (const auto& pixmap : statusPixmaps(mark(false), "", PanelTone::dark)) {
        sides.push_back(pixmap.side);
        EXPECT_EQ(pixmap.argb.size(), static_cast<std::size_t>(pixmap.side * pixmap.side) * 4);
    }
    EXPECT_THAT(sides, testing::IsSupersetOf({18, 22, 24, 32, 36, 44, 48}));
    EXPECT_TRUE(std::ranges::is_sorted(sides));
}

TEST(StatusPixmaps, are_alpha_red_green_blue_and_not_premultiplied) {
    auto image = Image::imageWithSize({18, 18}, {});
    Drawing drawing;
    drawing.steps = {
        SetFillColor{{1, 0.5, 0, 0.5}}, FillPath{BezierPath::bezierPathWithOvalInRect({{-9, -9}, {36, 36}})}};
    image.source = drawing;
    const auto pixmaps = statusPixmaps(image, "", PanelTone::light);
    const auto& pixmap = pixmapOfSide(pixmaps, 22);
    const std::size_t middle = (11 * 22 + 11) * 4;
    EXPECT_NEAR(pixmap.argb[middle], 128, 1);
    EXPECT_NEAR(pixmap.argb[middle + 1], 255, 2);
    EXPECT_NEAR(pixmap.argb[middle + 2], 128, 2);
    EXPECT_EQ(pixmap.argb[middle + 3], 0);
}

TEST(StatusPixmaps, are_legible_on_panels_of_either_tone) {
    for (const auto tone : {PanelTone::light, PanelTone::dark}) {
        for (const char* badge : {"", "2", "99+"}) {
            for (const auto& pixmap : statusPixmaps(mark(true), badge, tone)) {
                // 3:1 is what graphics need to be told from their background.
                EXPECT_GT(contrastOnPanel(pixmap, 0.15), 3) << pixmap.side << ' ' << badge;
                EXPECT_GT(contrastOnPanel(pixmap, 0.95), 3) << pixmap.side << ' ' << badge;
            }
        }
    }
}

TEST(StatusPixmaps, differ_by_what_they_tell) {
    const auto busy = statusPixmaps(mark(false), "", PanelTone::dark);
    EXPECT_EQ(busy, statusPixmaps(mark(false), "", PanelTone::dark));
    EXPECT_NE(busy, statusPixmaps(mark(true), "", PanelTone::dark));
    EXPECT_NE(busy, statusPixmaps(mark(false), "2", PanelTone::dark));
    EXPECT_NE(busy, statusPixmaps(mark(false), "", PanelTone::light));
    EXPECT_NE(
        statusPixmaps(mark(false), "2", PanelTone::dark), statusPixmaps(mark(false), "3", PanelTone::dark));
}

class MenuBarPicture : public testing::Test {
protected:
    void SetUp() override {
        const GCharPtr path(g_dir_make_tmp("harbrook-pictures-XXXXXX", nullptr));
        folder = path.get();
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    std::filesystem::path write(const char* name, int side, bool idle) const {
        const auto path = folder / name;
        cairo_surface_write_to_png(renderImage(mark(idle), side).get(), path.c_str());
        return path;
    }

    std::filesystem::path folder;
};

TEST_F(MenuBarPicture, has_the_size_of_its_pixels) {
    const auto path = write("mark@2x.png", 36, false);
    const auto image = imageWithContentsOfURL(path);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size, (Size{36, 36}));
    EXPECT_FALSE(image->isTemplate);
    EXPECT_EQ(std::get<std::filesystem::path>(image->source), path);
}

TEST_F(MenuBarPicture, is_none_when_it_cannot_be_decoded) {
    EXPECT_EQ(imageWithContentsOfURL(folder / "missing.png"), std::nullopt);
    std::ofstream(folder / "text.png") << "not a picture";
    EXPECT_EQ(imageWithContentsOfURL(folder / "text.png"), std::nullopt);
    std::ofstream(folder / "empty.png");
    EXPECT_EQ(imageWithContentsOfURL(folder / "empty.png"), std::nullopt);
}

TEST_F(MenuBarPicture, shows_the_same_as_the_drawing_at_its_own_size) {
    Image picture{{18, 18}, true, write("mark@2x.png", 36, false)};
    const auto shown = statusPixmaps(picture, "", PanelTone::dark);
    EXPECT_EQ(pixmapOfSide(shown, 36), pixmapOfSide(statusPixmaps(mark(false), "", PanelTone::dark), 36));
}

TEST_F(MenuBarPicture, takes_the_finer_file_where_its_own_is_too_coarse) {
    const Image picture{{18, 18}, true, write("mark@2x.png", 36, false)};
    const auto coarse = statusPixmaps(picture, "", PanelTone::dark);
    write("mark@4x.png", 72, false);
    const auto fine = statusPixmaps(picture, "", PanelTone::dark);
    EXPECT_EQ(pixmapOfSide(coarse, 36), pixmapOfSide(fine, 36));
    EXPECT_NE(pixmapOfSide(coarse, 48), pixmapOfSide(fine, 48));
}

TEST_F(MenuBarPicture, leaves_the_icon_empty_when_its_file_has_gone) {
    const Image picture{{18, 18}, true, folder / "gone.png"};
    for (const auto& pixmap : statusPixmaps(picture, "", PanelTone::dark)) {
        EXPECT_THAT(pixmap.argb, testing::Each(0));
    }
}

TEST(PanelTone, knows_the_desktops_with_dark_panels) {
    EXPECT_TRUE(hasDarkPanel("GNOME"));
    EXPECT_TRUE(hasDarkPanel("ubuntu:GNOME"));
    EXPECT_TRUE(hasDarkPanel("X-Cinnamon"));
    EXPECT_FALSE(hasDarkPanel("XFCE"));
    EXPECT_FALSE(hasDarkPanel("KDE"));
    EXPECT_FALSE(hasDarkPanel("LXQt"));
    EXPECT_FALSE(hasDarkPanel(""));
    EXPECT_FALSE(hasDarkPanel("GNOMEISH"));
}

TEST_F(MenuBarPicture, of_a_file_that_has_changed_is_the_new_one) {
    const auto path = write("mark@2x.png", 36, false);
    ASSERT_EQ(imageWithContentsOfURL(path)->size, (Size{36, 36}));
    write("mark@2x.png", 72, false);
    std::filesystem::last_write_time(
        path, std::filesystem::file_time_type::clock::now() + std::chrono::hours(1));
    EXPECT_EQ(imageWithContentsOfURL(path)->size, (Size{72, 72}));
}

class PlasmaPanel : public MenuBarPicture {
protected:
    [[nodiscard]] std::optional<PanelTone> toneOf(const std::string& user, const std::string& system) const {
        std::ofstream(folder / "user") << user;
        std::ofstream(folder / "system") << system;
        return plasmaPanelTone({folder / "none", folder / "user", folder / "system"});
    }
};

TEST_F(PlasmaPanel, has_the_tone_that_its_theme_names) {
    EXPECT_EQ(toneOf("[Theme]\nname=breeze-dark\n", ""), PanelTone::dark);
    EXPECT_EQ(toneOf("[Theme]\nname=breeze-light\n", ""), PanelTone::light);
}

TEST_F(PlasmaPanel, follows_the_windows_where_its_theme_does) {
    EXPECT_EQ(toneOf("[Theme]\nname=default\n", "[Theme]\nname=breeze-dark\n"), std::nullopt);
    EXPECT_EQ(toneOf("", ""), std::nullopt);
    EXPECT_EQ(toneOf("not a settings file", "[Other]\nname=breeze-dark\n"), std::nullopt);
}

TEST_F(PlasmaPanel, takes_the_systems_theme_where_the_user_has_chosen_none) {
    EXPECT_EQ(toneOf("[Wallpapers]\nusersWallpapers=a\n", "[Theme]\nname=breeze-dark\n"), PanelTone::dark);
}

} // namespace

} // namespace harbrook::tests
