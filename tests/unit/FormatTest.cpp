#include "platform/recording/Format.h"

#include <gtest/gtest.h>

#include <limits>

namespace harbrook::recording {

namespace {

TEST(Format, a_number_has_as_many_decimals_as_tell_it_from_others) {
    EXPECT_EQ(format(0.0), "0");
    EXPECT_EQ(format(1320.0), "1320");
    EXPECT_EQ(format(-1.5), "-1.5");
    EXPECT_EQ(format(0.1), "0.1");
    EXPECT_EQ(format(0.1 + 0.2), "0.30000000000000004");
    EXPECT_EQ(format(100.0 / 3), "33.333333333333336");
    EXPECT_EQ(format(1e-9), "0.000000001");
}

TEST(Format, the_largest_number_has_room) {
    const auto text = format(std::numeric_limits<double>::max());
    EXPECT_EQ(text.size(), 309U);
    EXPECT_EQ(text.substr(0, 9), "179769313");
}

} // namespace

} // namespace harbrook::recording
