#include "tests/unit/ShellTest.h"

#include <algorithm>

namespace harbrook::tests {
namespace {

using testing::ElementsAre;
using testing::Eq;
using testing::IsEmpty;

constexpr auto addsFullScreen =
    "webView evaluateJavaScript: document.documentElement.classList.add('fullscreen')";
constexpr auto removesFullScreen =
    "webView evaluateJavaScript: document.documentElement.classList.remove('fullscreen')";

class TitlebarButtons : public ShellTest {
protected:
    void build(const recording::TitlebarLayout& layout = {}) {
        platform->setTitlebarLayout(layout);
        makeShell();
        delegate->buildWindow();
        log().clear();
    }

    [[nodiscard]] recording::Window& window() const { return *platform->window(); }
    [[nodiscard]] std::vector<std::optional<Point>> buttonOrigins() const {
        std::vector<std::optional<Point>> origins;
        for (const auto which : {WindowButton::close, WindowButton::miniaturize, WindowButton::zoom}) {
            const auto& button = window().button(which);
            origins.push_back(button ? std::optional(button->frame().origin) : std::nullopt);
        }
        return origins;
    }
    /// Puts everything where the desktop would have it, without the shell being told.
    void displaceUnseen() {
        std::vector<std::shared_ptr<recording::View>> views = {
            window().titlebar(), window().titlebarContainer()};
        for (const auto& view : window().titlebar()->subviews())
            views.push_back(view);
        for (const auto& view : views)
            view->setPostsFrameChangedNotifications(false);
        window().layOutTitlebar();
        log().clear();
    }
    /// How many views have been moved since the last time.
    std::int64_t viewChanges() {
        return std::ranges::count_if(
            log().take(), [](const auto& line) { return line.find("setFrame") != std::string::npos; });
    }
    void expectInPlace() {
        const double height = window().frame().size.height;
        const double width = window().frame().size.width;
        EXPECT_EQ(window().titlebarContainer()->frame(), (Rect{{0, height - 52}, {width, 52}}));
        EXPECT_THAT(buttonOrigins(), ElementsAre(Eq(Point{20, 10}), Eq(Point{40, 10}), Eq(Point{60, 10})));
    }

    const Lines placement = {
        "titlebarContainer setFrame: (0, 808) 1320 x 52", "closeButton setFrameOrigin: (20, 10)",
        "miniaturizeButton setFrameOrigin: (40, 10)", "zoomButton setFrameOrigin: (60, 10)"};
};

TEST_F(TitlebarButtons, a_step_of_a_live_resize_moves_each_view_once_and_none_that_is_in_place) {
    build();
    for (double height = 700; height < 720; ++height) {
        window().simulateResize({1320, height});
        EXPECT_LE(viewChanges(), 4);
        delegate->placeTrafficLights();
        EXPECT_EQ(viewChanges(), 0);
        expectInPlace();
    }
}

TEST_F(TitlebarButtons, the_measures_are_52_34_and_20) {
    EXPECT_EQ(AppDelegate::lightsRow, 52);
    EXPECT_EQ(AppDelegate::lightsCentre, 34);
    EXPECT_EQ(AppDelegate::lightsX, 20);
}

TEST_F(TitlebarButtons, are_in_place_before_the_window_is_first_shown) {
    makeShell();
    delegate->buildWindow();
    const auto lines = log().take();
    const auto shown = std::ranges::find(lines, "window makeKeyAndOrderFront");
    for (const auto& line : placement)
        EXPECT_NE(std::find(lines.begin(), shown, line), shown) << line;
    expectInPlace();
}

TEST_F(TitlebarButtons, placing_changes_nothing_when_nothing_is_out_of_place) {
    build();
    delegate->placeTrafficLights();
    EXPECT_THAT(log().lines(), IsEmpty());
}

TEST_F(TitlebarButtons, placing_moves_container_and_buttons_in_this_order) {
    build();
    displaceUnseen();
    delegate->placeTrafficLights();
    EXPECT_EQ(log().lines(), placement);
    EXPECT_FALSE(delegate->placingLights);
}

TEST_F(TitlebarButtons, only_what_is_out_of_place_is_moved) {
    build();
    window().button(WindowButton::miniaturize)->layOut({{41, 10}, {14, 16}});
    EXPECT_THAT(log().lines(), ElementsAre("miniaturizeButton setFrameOrigin: (40, 10)"));
    log().clear();
    window().button(WindowButton::zoom)->layOut({{60, 10.25}, {14, 16}});
    EXPECT_THAT(log().lines(), ElementsAre("zoomButton setFrameOrigin: (60, 10)"));
}

TEST_F(TitlebarButtons, a_container_within_half_a_point_is_left_and_one_further_off_is_moved) {
    build();
    window().titlebarContainer()->layOut({{0, 808.2}, {1320, 52.3}});
    EXPECT_THAT(log().linesOf("titlebarContainer"), IsEmpty());
    window().titlebarContainer()->layOut({{0, 809}, {1320, 52}});
    EXPECT_THAT(
        log().linesOf("titlebarContainer"), ElementsAre("titlebarContainer setFrame: (0, 808) 1320 x 52"));
}

TEST_F(TitlebarButtons, the_height_of_the_title_bar_is_read_after_the_container_was_moved) {
    build({.height = 28, .fillsContainer = true});
    displaceUnseen();
    EXPECT_EQ(window().titlebar()->frame().size.height, 28);
    delegate->placeTrafficLights();
    EXPECT_EQ(buttonOrigins().at(0), (Point{20, 10}));
}

TEST_F(TitlebarButtons, the_height_of_the_title_bar_is_read_anew_for_each_button) {
    build();
    displaceUnseen();
    // A title bar that grows while its first button is moved.
    const auto close = std::shared_ptr<View>(window().button(WindowButton::close));
    close->setPostsFrameChangedNotifications(true);
    (void)platform->notificationCenter().addObserverForName(
        NotificationName::NSViewFrameDidChangeNotification, close, ObserverQueue::none, [&] {
            window().titlebar()->layOut({{0, 0}, {1320, 60}});
        });
    delegate->placeTrafficLights();
    EXPECT_THAT(buttonOrigins(), ElementsAre(Eq(Point{20, 10}), Eq(Point{40, 18}), Eq(Point{60, 18})));
}

TEST_F(TitlebarButtons, a_target_of_ten_and_a_half_is_eleven_and_one_of_minus_a_half_is_minus_one) {
    build({.button = {14, 15}});
    EXPECT_EQ(buttonOrigins().at(0), (Point{20, 11}));
}

TEST_F(TitlebarButtons, in_a_very_short_title_bar_halves_are_rounded_away_from_zero) {
    build({.height = 34, .button = {14, 1}, .fillsContainer = false});
    EXPECT_EQ(buttonOrigins().at(0), (Point{20, -1}));
}

TEST_F(TitlebarButtons, a_missing_zoom_button_is_skipped) {
    build({.has = {true, true, false}});
    EXPECT_THAT(buttonOrigins(), ElementsAre(Eq(Point{20, 10}), Eq(Point{40, 10}), Eq(std::nullopt)));
    EXPECT_EQ(delegate->lightObservers.size(), 4U + 8U);
}

TEST_F(TitlebarButtons, a_missing_middle_button_leaves_its_gap) {
    build({.has = {true, false, true}});
    EXPECT_THAT(buttonOrigins(), ElementsAre(Eq(Point{20, 10}), Eq(std::nullopt), Eq(Point{60, 10})));
}

TEST_F(TitlebarButtons, without_a_close_button_nothing_is_placed) {
    build({.has = {false, true, true}});
    EXPECT_EQ(window().titlebarContainer()->frame().size.height, 28);
    EXPECT_EQ(buttonOrigins().at(1), (Point{27, 6}));
    EXPECT_EQ(delegate->lightObservers.size(), 2U + 8U) << "the title bar cannot be reached";
    EXPECT_FALSE(delegate->placingLights);
}

TEST_F(TitlebarButtons, without_a_title_bar_or_its_container_nothing_is_placed) {
    build();
    displaceUnseen();
    window().titlebar()->removeFromSuperview();
    delegate->placeTrafficLights();
    window().button(WindowButton::close)->removeFromSuperview();
    delegate->placeTrafficLights();
    EXPECT_THAT(log().lines(), IsEmpty());
    EXPECT_FALSE(delegate->placingLights);
}

TEST_F(TitlebarButtons, without_a_window_nothing_happens) {
    makeShell();
    log().clear();
    delegate->placeTrafficLights();
    delegate->watchTrafficLights();
    EXPECT_THAT(log().lines(), IsEmpty());
    EXPECT_THAT(delegate->lightObservers, IsEmpty());
}

TEST_F(TitlebarButtons, all_observers_are_kept) {
    build();
    EXPECT_EQ(delegate->lightObservers.size(), 5U + 8U);
    EXPECT_EQ(platform->notificationCenter().count(), 13U);
    for (const auto& token : delegate->lightObservers)
        EXPECT_NE(token, nullptr);
}

TEST_F(TitlebarButtons, a_change_of_any_watched_view_is_answered_inside_the_change) {
    build();
    const std::vector<std::shared_ptr<recording::View>> views = {
        window().button(WindowButton::close), window().button(WindowButton::miniaturize),
        window().button(WindowButton::zoom), window().titlebar(), window().titlebarContainer()};
    for (const auto& view : views) {
        auto frame = view->frame();
        frame.origin.x += 3;
        frame.size.height += 2;
        log().clear();
        view->layOut(frame);
        EXPECT_FALSE(log().lines().empty()) << view->name();
    }
    EXPECT_EQ(platform->scheduler().pendingMainBlocks(), 0) << "nothing is put off";
}

TEST_F(TitlebarButtons, the_moves_of_a_placement_do_not_start_another_one) {
    build();
    displaceUnseen();
    std::vector<bool> placing;
    for (const auto& view : {window().titlebarContainer(), window().button(WindowButton::close)}) {
        view->setPostsFrameChangedNotifications(true);
        (void)platform->notificationCenter().addObserverForName(
            NotificationName::NSViewFrameDidChangeNotification, std::shared_ptr<View>(view),
            ObserverQueue::none, [&] { placing.push_back(delegate->placingLights); });
    }
    log().clear();
    delegate->placeTrafficLights();
    EXPECT_EQ(log().lines(), placement) << "each view is moved once";
    EXPECT_THAT(placing, ElementsAre(true, true));
    EXPECT_FALSE(delegate->placingLights);
}

using WindowEvent = void (recording::Window::*)();
class WindowEvents : public TitlebarButtons, public testing::WithParamInterface<WindowEvent> {};

TEST_P(WindowEvents, put_the_buttons_back_by_themselves) {
    build();
    displaceUnseen();
    (window().*GetParam())();
    EXPECT_EQ(log().lines(), placement);
}

INSTANTIATE_TEST_SUITE_P(
    All, WindowEvents,
    testing::Values(
        &recording::Window::simulateEndOfLiveResize, &recording::Window::simulateBecomeKey,
        &recording::Window::simulateResignKey, &recording::Window::simulateDeminiaturize,
        &recording::Window::simulateChangeOfScreen));

TEST_F(TitlebarButtons, a_resize_puts_them_back_by_itself) {
    build();
    displaceUnseen();
    window().simulateResize({1400, 900});
    expectInPlace();
}

TEST_F(TitlebarButtons, three_hundred_steps_of_a_live_resize_find_them_in_place_after_each) {
    build();
    for (int step = 1; step <= 300; ++step) {
        window().simulateResize({1320.0 - step / 2, 860.0 - step / 3});
        expectInPlace();
    }
}

TEST_F(TitlebarButtons, a_change_of_title_puts_them_back_at_once) {
    build();
    displaceUnseen();
    platform->webView()->simulateMessage("fc", Value::Dictionary{{"k", "title"}, {"v", "Docs"}});
    Lines expected = {"window setTitle: \"Docs\""};
    expected.insert(expected.end(), placement.begin(), placement.end());
    EXPECT_EQ(log().lines(), expected);
}

TEST_F(TitlebarButtons, full_screen_is_announced_to_the_page_and_leaves_the_buttons_alone) {
    build();
    window().simulateEnterFullScreen();
    EXPECT_EQ(log().take(), Lines{addsFullScreen});
    EXPECT_EQ(window().titlebarContainer()->frame().size.height, 28) << "the desktop's own title bar";
}

TEST_F(TitlebarButtons, in_full_screen_nothing_is_placed) {
    build();
    window().simulateEnterFullScreen();
    log().clear();
    delegate->placeTrafficLights();
    window().simulateResize({1600, 900});
    window().simulateBecomeKey();
    platform->webView()->simulateMessage("fc", Value::Dictionary{{"k", "title"}, {"v", "Docs"}});
    EXPECT_THAT(log().lines(), ElementsAre("window setTitle: \"Docs\""));
}

TEST_F(TitlebarButtons, after_full_screen_the_class_goes_and_then_the_buttons_are_placed) {
    build();
    window().simulateEnterFullScreen();
    displaceUnseen();
    window().simulateExitFullScreen();
    EXPECT_THAT(log().linesOf("webView evaluateJavaScript"), ElementsAre(removesFullScreen));
    expectInPlace();
}

TEST_F(TitlebarButtons, leaving_full_screen_by_itself_places_after_the_class_is_gone) {
    build();
    displaceUnseen();
    platform->notificationCenter().post(
        NotificationName::NSWindowDidExitFullScreenNotification,
        static_cast<harbrook::Window*>(platform->window().get()));
    Lines expected = {removesFullScreen};
    expected.insert(expected.end(), placement.begin(), placement.end());
    EXPECT_EQ(log().lines(), expected);
}

TEST_F(TitlebarButtons, a_page_that_is_loaded_during_full_screen_is_not_told_again) {
    launchReady();
    window().simulateEnterFullScreen();
    log().clear();
    platform->webView()->reload();
    platform->advance(1);
    EXPECT_THAT(log().linesOf("webView evaluateJavaScript"), IsEmpty());
}

TEST_F(TitlebarButtons, observers_do_nothing_when_the_delegate_is_gone) {
    build();
    const auto kept = platform->window();
    const auto view = platform->webView();
    dropDelegate();
    log().clear();
    kept->simulateResize({1400, 900});
    kept->simulateEnterFullScreen();
    kept->simulateExitFullScreen();
    EXPECT_THAT(log().lines(), IsEmpty());
}

} // namespace
} // namespace harbrook::tests
