#include "tests/contract/Desktop.h"

#include <gmock/gmock.h>

#include <cstdint>

namespace harbrook::contract {

namespace {

using testing::ElementsAre;

constexpr std::uint32_t usualStyle = NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                                     NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskResizable |
                                     NSWindowStyleMaskFullSizeContentView;

/// Views and their notifications, tried on what every window brings along: the buttons of its title bar.
class Views : public Contract {
protected:
    void SetUp() override {
        Contract::SetUp();
        if (const auto reason = desktop().provideDisplay()) GTEST_SKIP() << *reason;
        window_ = platform().makeWindow({{0, 0}, {800, 600}}, usualStyle, BackingStore::buffered, false);
        ASSERT_NE(window_, nullptr);
        button_ = window_->standardWindowButton(WindowButton::close);
        ASSERT_NE(button_, nullptr);
    }

    /// Has `word` noted at each change of the frame.
    void observe(const std::shared_ptr<View>& view, const std::string& word) {
        token_ = platform().notificationCenter().addObserverForName(
            NotificationName::NSViewFrameDidChangeNotification, view, ObserverQueue::none,
            [this, word] { notes_.push_back(word); });
    }

    // Outlives the window, which may still move its views as it goes.
    std::vector<std::string> notes_;
    std::shared_ptr<Window> window_;
    std::shared_ptr<View> button_;
    std::shared_ptr<ObserverToken> token_;
};

TEST_P(Views, a_window_has_three_buttons_and_they_are_the_same_every_time) {
    for (const auto which : {WindowButton::close, WindowButton::miniaturize, WindowButton::zoom}) {
        const auto button = window_->standardWindowButton(which);
        ASSERT_NE(button, nullptr);
        EXPECT_EQ(window_->standardWindowButton(which), button);
        EXPECT_GT(button->frame().size.width, 0);
        EXPECT_GT(button->frame().size.height, 0);
    }
}

TEST_P(Views, buttons_stand_in_a_title_bar_inside_a_container) {
    const auto titlebar = button_->superview();
    ASSERT_NE(titlebar, nullptr);
    EXPECT_EQ(button_->superview(), titlebar);
    EXPECT_EQ(window_->standardWindowButton(WindowButton::zoom)->superview(), titlebar);
    ASSERT_NE(titlebar->superview(), nullptr);
}

TEST_P(Views, a_frame_that_is_set_is_the_frame) {
    const auto size = button_->frame().size;
    button_->setFrameOrigin({31, 7});
    EXPECT_EQ(button_->frame(), (Rect{{31, 7}, size}));
    const auto container = button_->superview()->superview();
    container->setFrame({{0, 540}, {800, 60}});
    EXPECT_EQ(container->frame(), (Rect{{0, 540}, {800, 60}}));
}

TEST_P(Views, a_change_is_posted_before_the_call_returns_if_that_was_asked_for) {
    observe(button_, "moved");
    button_->setFrameOrigin({40, 8});
    EXPECT_THAT(notes_, ElementsAre());
    button_->setPostsFrameChangedNotifications(true);
    button_->setFrameOrigin({41, 8});
    EXPECT_THAT(notes_, ElementsAre("moved"));
}

TEST_P(Views, a_frame_that_stays_posts_nothing) {
    button_->setPostsFrameChangedNotifications(true);
    observe(button_, "moved");
    button_->setFrameOrigin(button_->frame().origin);
    button_->setFrame(button_->frame());
    EXPECT_THAT(notes_, ElementsAre());
}

TEST_P(Views, observers_hear_of_their_own_view_in_the_order_in_which_they_came) {
    const auto other = window_->standardWindowButton(WindowButton::zoom);
    other->setPostsFrameChangedNotifications(true);
    button_->setPostsFrameChangedNotifications(true);
    observe(button_, "first");
    observe(other, "other");
    // The token of an earlier observer is gone; its registration is not.
    observe(button_, "second");
    button_->setFrameOrigin({50, 9});
    EXPECT_THAT(notes_, ElementsAre("first", "second"));
}

TEST_P(Views, an_observer_may_change_the_frame_again_and_may_add_observers) {
    button_->setPostsFrameChangedNotifications(true);
    const auto token = platform().notificationCenter().addObserverForName(
        NotificationName::NSViewFrameDidChangeNotification, button_, ObserverQueue::mainQueue, [this] {
            notes_.push_back(std::to_string(static_cast<int>(button_->frame().origin.x)));
            if (button_->frame().origin.x < 60) {
                observe(button_, "added");
                button_->setFrameOrigin({60, 9});
            }
        });
    button_->setFrameOrigin({55, 9});
    EXPECT_EQ(button_->frame().origin.x, 60);
    // The outer change was posted to those who were there when it happened.
    EXPECT_THAT(notes_, ElementsAre("55", "60", "added"));
}

TEST_P(Views, an_observer_does_not_outlive_what_it_observes) {
    button_->setPostsFrameChangedNotifications(true);
    observe(button_, "the earlier window's");
    button_.reset();
    window_.reset();
    notes_.clear();
    // New windows may get the places in memory that the earlier one had.
    std::vector<std::shared_ptr<Window>> windows;
    for (int i = 0; i < 4; ++i) {
        windows.push_back(
            platform().makeWindow({{0, 0}, {800, 600}}, usualStyle, BackingStore::buffered, false));
        const auto button = windows.back()->standardWindowButton(WindowButton::close);
        button->setPostsFrameChangedNotifications(true);
        button->setFrameOrigin({70.0 + i, 3});
    }
    EXPECT_THAT(notes_, ElementsAre());
}

TEST_P(Views, a_window_tells_its_style) {
    EXPECT_EQ(window_->styleMask() & NSWindowStyleMaskResizable, NSWindowStyleMaskResizable);
    EXPECT_EQ(window_->styleMask() & NSWindowStyleMaskFullScreen, 0U);
}

INSTANTIATE_TEST_SUITE_P(On, Views, testing::Values(implementation()), nameOf);

} // namespace

} // namespace harbrook::contract
