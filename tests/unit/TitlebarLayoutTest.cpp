#include "window/TitlebarLayout.h"

#include <gtest/gtest.h>

namespace harbrook::tests {
namespace {

TEST(TitlebarContainerFrame, is_a_band_along_the_top_edge) {
    EXPECT_EQ(titlebarContainerFrame({{3, 832}, {1320, 28}}, 860, 52), (Rect{{3, 808}, {1320, 52}}));
}

TEST(TitlebarContainerFrame, leaves_a_container_that_is_within_half_a_point) {
    EXPECT_EQ(titlebarContainerFrame({{0, 808}, {1320, 52}}, 860, 52), std::nullopt);
    EXPECT_EQ(titlebarContainerFrame({{0, 808.2}, {1320, 52.3}}, 860, 52), std::nullopt);
    EXPECT_EQ(titlebarContainerFrame({{0, 807.5}, {1320, 51.5}}, 860, 52), std::nullopt);
    EXPECT_EQ(titlebarContainerFrame({{0, 808.5}, {1320, 52.5}}, 860, 52), std::nullopt);
}

TEST(TitlebarContainerFrame, moves_a_container_that_is_further_off_in_either_way) {
    const Rect band = {{0, 808}, {1320, 52}};
    EXPECT_EQ(titlebarContainerFrame({{0, 808}, {1320, 53}}, 860, 52), band);
    EXPECT_EQ(titlebarContainerFrame({{0, 809}, {1320, 52}}, 860, 52), band);
    EXPECT_EQ(titlebarContainerFrame({{0, 807}, {1320, 52}}, 860, 52), band);
    EXPECT_EQ(titlebarContainerFrame({{0, 808}, {1320, 51.25}}, 860, 52), band);
    EXPECT_EQ(titlebarContainerFrame({{0, 808.75}, {1320, 52}}, 860, 52), band);
}

TEST(TitlebarContainerFrame, follows_the_height_of_the_window_and_keeps_the_width) {
    EXPECT_EQ(titlebarContainerFrame({{0, 808}, {900, 52}}, 680, 52), (Rect{{0, 628}, {900, 52}}));
    EXPECT_EQ(titlebarContainerFrame({{0, 0}, {900, 28}}, 30, 52), (Rect{{0, -22}, {900, 52}}));
}

TEST(TitlebarButtonOrigin, has_its_centre_34_points_below_the_top) {
    EXPECT_EQ(titlebarButtonOrigin(52, 14, 20, 34), (Point{20, 11}));
    EXPECT_EQ(titlebarButtonOrigin(52, 16, 40, 34), (Point{40, 10}));
}

TEST(TitlebarButtonOrigin, rounds_halves_away_from_zero) {
    EXPECT_EQ(titlebarButtonOrigin(52, 15, 20, 34).y, 11) << "from 10.5";
    EXPECT_EQ(titlebarButtonOrigin(34, 1, 20, 34).y, -1) << "from -0.5";
    EXPECT_EQ(titlebarButtonOrigin(33, 1, 20, 34).y, -2) << "from -1.5";
    EXPECT_EQ(titlebarButtonOrigin(52, 15.5, 20, 34).y, 10) << "from 10.25";
    EXPECT_EQ(titlebarButtonOrigin(28, 16, 20, 34).y, -14);
}

} // namespace
} // namespace harbrook::tests
