#include "platform/Latest.h"

#include <gtest/gtest.h>

#include <string>

namespace harbrook {

namespace {

TEST(Latest, the_first_value_differs_from_none_even_when_it_is_empty) {
    Latest<std::string> latest;
    EXPECT_TRUE(latest.take(""));
    EXPECT_FALSE(latest.take(""));
}

TEST(Latest, a_value_differs_from_the_one_before_it_only) {
    Latest<std::string> latest;
    EXPECT_TRUE(latest.take("one"));
    EXPECT_FALSE(latest.take("one"));
    EXPECT_TRUE(latest.take("two"));
    EXPECT_TRUE(latest.take("one"));
}

} // namespace

} // namespace harbrook
