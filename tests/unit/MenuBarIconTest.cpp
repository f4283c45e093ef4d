#include "tests/unit/ShellTest.h"

#include "status/MenuBarIcon.h"

namespace harbrook::tests {
namespace {

using testing::ElementsAre;

constexpr auto busyPicture = "/opt/harbrook/resources/menubarTemplate@2x.png";
constexpr auto idlePicture = "/opt/harbrook/resources/menubarIdleTemplate@2x.png";

BezierPath slab(const std::vector<Point>& corners) {
    BezierPath path;
    path.moveToPoint(corners[0]);
    for (std::size_t i = 1; i < corners.size(); ++i)
        path.lineToPoint(corners[i]);
    path.closePath();
    return path;
}

/// Whether two drawings are the same to within a millionth of a point.
void expectSameSlab(const DrawingStep& step, const std::vector<Point>& corners) {
    const auto* fill = std::get_if<FillPath>(&step);
    ASSERT_NE(fill, nullptr);
    const auto expected = slab(corners);
    ASSERT_EQ(fill->path.elements.size(), expected.elements.size());
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const auto& element = fill->path.elements[i];
        ASSERT_EQ(element.index(), expected.elements[i].index()) << i;
        const auto point = i == 0 ? std::get<BezierPath::MoveTo>(element).point
                                  : std::get<BezierPath::LineTo>(element).point;
        EXPECT_NEAR(point.x, corners[i].x, 1e-6);
        EXPECT_NEAR(point.y, corners[i].y, 1e-6);
    }
    EXPECT_TRUE(std::holds_alternative<BezierPath::Close>(fill->path.elements.back()));
}

void expectBlackSlabs(const Drawing& drawing) {
    EXPECT_TRUE(drawing.flipped);
    ASSERT_EQ(drawing.steps.size(), 5U);
    EXPECT_EQ(drawing.steps[0], DrawingStep(SetFillColor{{0, 0, 0, 1}}));
    EXPECT_EQ(drawing.steps[1], DrawingStep(SetStrokeColor{{0, 0, 0, 1}}));
    expectSameSlab(drawing.steps[2], {{7.1875, 1.0}, {14.0625, 1.0}, {7.1875, 12.125}, {0.3125, 12.125}});
    expectSameSlab(drawing.steps[3], {{6.801, 12.75}, {17.926, 12.75}, {15.2995, 17.0}, {4.1745, 17.0}});
}

TEST(MenuBarIconDrawing, of_the_busy_form_ends_in_a_filled_disc) {
    const auto drawing = menuBarIconDrawing(false);
    expectBlackSlabs(drawing);
    EXPECT_EQ(
        drawing.steps[4],
        DrawingStep(FillPath{BezierPath::bezierPathWithOvalInRect({{11.9375, 6.25}, {3.25, 3.25}})}));
}

TEST(MenuBarIconDrawing, of_the_idle_form_ends_in_a_ring_of_the_default_width) {
    const auto drawing = menuBarIconDrawing(true);
    expectBlackSlabs(drawing);
    const auto& ring = std::get<StrokePath>(drawing.steps[4]).path;
    EXPECT_THAT(
        ring.elements, ElementsAre(BezierPath::Element(BezierPath::Oval{{{12.2625, 6.575}, {2.6, 2.6}}})));
    EXPECT_EQ(ring.lineWidth, 1.0);
}

class MenuBarIcon : public ShellTest {};

TEST_F(MenuBarIcon, is_the_picture_at_18_points_as_a_template) {
    platform->addPicture(busyPicture, {36, 36});
    platform->addPicture(idlePicture, {36, 36});
    EXPECT_EQ(
        AppDelegate::menuBarIcon(*platform),
        (Image{{18, 18}, true, std::filesystem::path(busyPicture), "Harbrook"}));
    EXPECT_EQ(AppDelegate::menuBarIcon(*platform, false), AppDelegate::menuBarIcon(*platform));
    EXPECT_EQ(
        AppDelegate::menuBarIcon(*platform, true),
        (Image{{18, 18}, true, std::filesystem::path(idlePicture), "Harbrook"}));
}

TEST_F(MenuBarIcon, has_18_points_whatever_the_size_of_the_picture) {
    platform->addPicture(busyPicture, {640, 3});
    EXPECT_EQ(AppDelegate::menuBarIcon(*platform).size, (Size{18, 18}));
}

TEST_F(MenuBarIcon, is_drawn_when_there_is_no_picture) {
    EXPECT_EQ(
        AppDelegate::menuBarIcon(*platform), (Image{{18, 18}, true, menuBarIconDrawing(false), "Harbrook"}));
    EXPECT_EQ(
        AppDelegate::menuBarIcon(*platform, true),
        (Image{{18, 18}, true, menuBarIconDrawing(true), "Harbrook"}));
}

TEST_F(MenuBarIcon, is_drawn_when_the_picture_does_not_decode) {
    platform->files().addFile(idlePicture, "not a picture");
    EXPECT_EQ(
        AppDelegate::menuBarIcon(*platform, true),
        (Image{{18, 18}, true, menuBarIconDrawing(true), "Harbrook"}));
}

TEST_F(MenuBarIcon, the_two_forms_fall_back_independently) {
    platform->addPicture(busyPicture, {36, 36});
    EXPECT_TRUE(std::holds_alternative<std::filesystem::path>(AppDelegate::menuBarIcon(*platform).source));
    EXPECT_TRUE(std::holds_alternative<Drawing>(AppDelegate::menuBarIcon(*platform, true).source));
}

} // namespace
} // namespace harbrook::tests
