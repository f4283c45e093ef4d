#include "platform/gtk/status/MenuVisibility.h"

#include <gtest/gtest.h>

namespace harbrook::tests {

namespace {

using namespace gtk;

using std::chrono::milliseconds;
using std::chrono::seconds;

class MenuVisible : public testing::Test {
protected:
    MenuVisibility::Time now{seconds(1000)};
    MenuVisibility visibility;
};

TEST_F(MenuVisible, is_closed_at_first) {
    EXPECT_FALSE(visibility.isOpen(now));
}

TEST_F(MenuVisible, counts_announcement_and_opening_as_one) {
    EXPECT_TRUE(visibility.aboutToShow(now));
    EXPECT_FALSE(visibility.opened(now + milliseconds(20)));
    EXPECT_TRUE(visibility.isOpen(now + seconds(1)));
}

TEST_F(MenuVisible, counts_a_slow_hosts_opening_with_its_announcement) {
    EXPECT_TRUE(visibility.aboutToShow(now));
    EXPECT_FALSE(visibility.opened(now + seconds(3)));
}

TEST_F(MenuVisible, counts_repeated_announcements_as_one) {
    EXPECT_TRUE(visibility.aboutToShow(now));
    EXPECT_FALSE(visibility.aboutToShow(now + milliseconds(10)));
    EXPECT_FALSE(visibility.aboutToShow(now + milliseconds(100)));
}

TEST_F(MenuVisible, counts_openings_of_a_host_that_only_announces) {
    EXPECT_TRUE(visibility.aboutToShow(now));
    EXPECT_TRUE(visibility.aboutToShow(now + seconds(2)));
    EXPECT_TRUE(visibility.aboutToShow(now + seconds(4)));
}

TEST_F(MenuVisible, counts_openings_of_a_host_that_only_says_opened) {
    EXPECT_TRUE(visibility.opened(now));
    EXPECT_FALSE(visibility.opened(now + milliseconds(10)));
    visibility.closed();
    EXPECT_TRUE(visibility.opened(now + seconds(2)));
}

TEST_F(MenuVisible, opens_again_right_after_it_closed) {
    EXPECT_TRUE(visibility.aboutToShow(now));
    visibility.closed();
    EXPECT_FALSE(visibility.isOpen(now));
    EXPECT_TRUE(visibility.aboutToShow(now + milliseconds(50)));
}

TEST_F(MenuVisible, recovers_from_a_host_that_never_said_closed) {
    EXPECT_TRUE(visibility.opened(now));
    EXPECT_TRUE(visibility.opened(now + seconds(30)));
}

TEST_F(MenuVisible, is_open_for_as_long_as_a_host_that_tells_shows_it) {
    EXPECT_TRUE(visibility.aboutToShow(now));
    EXPECT_FALSE(visibility.opened(now));
    EXPECT_TRUE(visibility.isOpen(now + seconds(600)));
    visibility.closed();
    EXPECT_FALSE(visibility.isOpen(now + seconds(600)));
}

TEST_F(MenuVisible, is_not_open_for_ever_when_the_host_does_not_tell) {
    EXPECT_TRUE(visibility.aboutToShow(now));
    EXPECT_TRUE(visibility.isOpen(now + seconds(15)));
    EXPECT_FALSE(visibility.isOpen(now + seconds(30)));
}

} // namespace

} // namespace harbrook::tests
