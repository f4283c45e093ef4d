#include "platform/gtk/web/PageZoom.h"

#include <gtest/gtest.h>

namespace harbrook::tests {

namespace {

using gtk::nextZoom;

TEST(PageZoom, goes_in_steps_and_back_by_the_same) {
    EXPECT_DOUBLE_EQ(nextZoom(1.0, 1), 1.1);
    EXPECT_DOUBLE_EQ(nextZoom(1.1, 1), 1.25);
    EXPECT_DOUBLE_EQ(nextZoom(1.25, -1), 1.1);
    EXPECT_DOUBLE_EQ(nextZoom(1.0, -1), 0.9);
}

TEST(PageZoom, stays_at_its_ends) {
    EXPECT_DOUBLE_EQ(nextZoom(3.0, 1), 3.0);
    EXPECT_DOUBLE_EQ(nextZoom(0.5, -1), 0.5);
}

TEST(PageZoom, takes_the_next_step_from_between_two) {
    EXPECT_DOUBLE_EQ(nextZoom(1.17, 1), 1.25);
    EXPECT_DOUBLE_EQ(nextZoom(1.17, -1), 1.1);
    // As the engine may give back what it was told.
    EXPECT_DOUBLE_EQ(nextZoom(1.1000001, 1), 1.25);
}

} // namespace

} // namespace harbrook::tests
