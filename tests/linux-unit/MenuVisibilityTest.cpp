#include "platform/gtk/status/MenuVisibility.h"

#include <gtest/gtest.h>

namespace harbrook::gtk {

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

class MenuVisibilityTest : public testing::Test {
protected:
    MenuVisibility::Time now{seconds(1000)};
    MenuVisibility visibility;
};

TEST_F(MenuVisibilityTest, IsClosedAtFirst) {
    EXPECT_FALSE(visibility.isOpen(now));
}

TEST_F(MenuVisibilityTest, CountsAnnouncementAndOpeningAsOne) {
    EXPECT_TRUE(visibility.aboutToShow(now));
    EXPECT_FALSE(visibility.opened(now + milliseconds(20)));
    EXPECT_TRUE(visibility.isOpen(now + seconds(1)));
}

TEST_F(MenuVisibilityTest, CountsASlowHostsOpeningWithItsAnnouncement) {
    EXPECT_TRUE(visibility.aboutToShow(now));
    EXPECT_FALSE(visibility.opened(now + seconds(3)));
}

TEST_F(MenuVisibilityTest, CountsRepeatedAnnouncementsAsOne) {
    EXPECT_TRUE(visibility.aboutToShow(now));
    EXPECT_FALSE(visibility.aboutToShow(now + milliseconds(10)));
    EXPECT_FALSE(visibility.aboutToShow(now + milliseconds(100)));
}

TEST_F(MenuVisibilityTest, CountsOpeningsOfAHostThatOnlyAnnounces) {
    EXPECT_TRUE(visibility.aboutToShow(now));
    EXPECT_TRUE(visibility.aboutToShow(now + seconds(2)));
    EXPECT_TRUE(visibility.aboutToShow(now + seconds(4)));
}

TEST_F(MenuVisibilityTest, CountsOpeningsOfAHostThatOnlySaysOpened) {
    EXPECT_TRUE(visibility.opened(now));
    EXPECT_FALSE(visibility.opened(now + milliseconds(10)));
    visibility.closed();
    EXPECT_TRUE(visibility.opened(now + seconds(2)));
}

TEST_F(MenuVisibilityTest, OpensAgainRightAfterItClosed) {
    EXPECT_TRUE(visibility.aboutToShow(now));
    visibility.closed();
    EXPECT_FALSE(visibility.isOpen(now));
    EXPECT_TRUE(visibility.aboutToShow(now + milliseconds(50)));
}

TEST_F(MenuVisibilityTest, RecoversFromAHostThatNeverSaidClosed) {
    EXPECT_TRUE(visibility.opened(now));
    EXPECT_TRUE(visibility.opened(now + seconds(30)));
}

TEST_F(MenuVisibilityTest, IsOpenForAsLongAsAHostThatTellsShowsIt) {
    EXPECT_TRUE(visibility.aboutToShow(now));
    EXPECT_FALSE(visibility.opened(now));
    EXPECT_TRUE(visibility.isOpen(now + seconds(600)));
    visibility.closed();
    EXPECT_FALSE(visibility.isOpen(now + seconds(600)));
}

TEST_F(MenuVisibilityTest, IsNotOpenForEverWhenTheHostDoesNotTell) {
    EXPECT_TRUE(visibility.aboutToShow(now));
    EXPECT_TRUE(visibility.isOpen(now + seconds(15)));
    EXPECT_FALSE(visibility.isOpen(now + seconds(30)));
}

} // namespace

} // namespace harbrook::gtk
