#include "tests/unit/ShellTest.h"

#include "platform/recording/Appearance.h"

namespace harbrook::tests {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

class MainWindow : public ShellTest {
protected:
    /// Builds the window alone. The log holds what that took.
    void build() {
        makeShell();
        log().clear();
        delegate->buildWindow();
    }
};

constexpr auto canvas = "#F3F4F0 in light, #161816 in dark";

TEST_F(MainWindow, it_is_built_in_exactly_this_order) {
    build();
    const std::string onCanvas = canvas;
    const auto frameChanges = [](const std::string& view) {
        return Lines{
            view + " setPostsFrameChangedNotifications: true",
            "notifications addObserver: NSViewFrameDidChangeNotification of " + view};
    };
    Lines expected = {
        "webView init: (0, 0) 0 x 0",
        "webView setNavigationDelegate",
        "webView setUIDelegate",
        "webView setValueForKey: false \"drawsBackground\"",
        "webView setUnderPageBackgroundColor: " + onCanvas,
        "webView setFrame: (0, 0) 1320 x 860",
        "webView setAutoresizingMask: 18",
        "window init: (0, 0) 1320 x 860 style 32783 backing 2 defer false",
        "window setTitle: \"Harbrook\"",
        "window setTitleVisibility: hidden",
        "window setTitlebarAppearsTransparent: true",
        "window setTitlebarSeparatorStyle: none",
        "window setBackgroundColor: " + onCanvas,
        "window setMinSize: 1040 x 680",
        "window setContentView: webView",
        "window center",
    };
    for (const auto* view :
         {"closeButton", "miniaturizeButton", "zoomButton", "titlebar", "titlebarContainer"}) {
        const auto lines = frameChanges(view);
        expected.insert(expected.end(), lines.begin(), lines.end());
    }
    for (const auto* name :
         {"NSWindowDidResizeNotification", "NSWindowDidEndLiveResizeNotification",
          "NSWindowDidBecomeKeyNotification", "NSWindowDidResignKeyNotification",
          "NSWindowDidDeminiaturizeNotification", "NSWindowDidChangeScreenNotification",
          "NSWindowWillEnterFullScreenNotification", "NSWindowDidExitFullScreenNotification"}) {
        expected.push_back(
            "notifications addObserver: " + std::string(name) + " of window on the main queue");
    }
    const Lines rest = {
        "titlebarContainer setFrame: (0, 808) 1320 x 52",
        "closeButton setFrameOrigin: (20, 10)",
        "miniaturizeButton setFrameOrigin: (40, 10)",
        "zoomButton setFrameOrigin: (60, 10)",
        "window setFrameAutosaveName: \"HarbrookMain\"",
        "window setReleasedWhenClosed: false",
        "label init: \"Starting Harbrook…\"",
        "label setFont: system 15 medium",
        "label setTextColor: secondaryLabelColor",
        "label setAlignment: center",
        "label setMaximumNumberOfLines: 3",
        "label setTranslatesAutoresizingMaskIntoConstraints: false",
        "webView addSubview: label",
        "layout activateConstraints: label.centerX = webView.centerX, label.centerY = webView.centerY, "
        "label.width <= 520",
        "window makeKeyAndOrderFront",
        "application activateIgnoringOtherApps: true",
    };
    expected.insert(expected.end(), rest.begin(), rest.end());

    // Being shown makes the window key, and that places the buttons again.
    auto lines = log().take();
    std::erase_if(lines, [shown = false](const std::string& line) mutable {
        shown = shown || line == "window makeKeyAndOrderFront";
        return shown && line.find(" setFrame") != std::string::npos;
    });
    EXPECT_THAT(lines, ElementsAreArray(expected));
}

TEST_F(MainWindow, no_page_is_loaded_by_building_it) {
    build();
    EXPECT_THAT(platform->webView()->loads(), IsEmpty());
    EXPECT_THAT(log().linesOf("webView evaluateJavaScript"), IsEmpty());
}

TEST_F(MainWindow, the_page_gets_the_token_and_the_class_at_document_start_in_the_main_frame_only) {
    build();
    const auto& configuration = platform->webView()->configuration();
    EXPECT_THAT(
        configuration.userContentController.userScripts,
        ElementsAre(UserScript{
            "window.__FC_TOKEN='" + globals->apiToken + "';document.documentElement.classList.add('native');",
            UserScriptInjectionTime::atDocumentStart, true}));
    EXPECT_EQ(static_cast<int>(UserScriptInjectionTime::atDocumentStart), 0);
}

TEST_F(MainWindow, the_delegate_listens_to_the_channel_fc_and_the_data_store_is_the_lasting_one) {
    build();
    const auto& configuration = platform->webView()->configuration();
    EXPECT_EQ(configuration.websiteDataStore, WebsiteDataStore::defaultDataStore);
    ASSERT_EQ(configuration.userContentController.messageChannels.size(), 1U);
    const auto& channel = configuration.userContentController.messageChannels.front();
    EXPECT_EQ(channel.name, "fc");
    EXPECT_EQ(channel.handler.lock(), std::static_pointer_cast<ScriptMessageHandler>(delegate));
}

TEST_F(MainWindow, the_fields_hold_what_was_built) {
    build();
    EXPECT_EQ(delegate->window, platform->window());
    EXPECT_EQ(delegate->webView, platform->webView());
    EXPECT_EQ(delegate->loadingLabel, platform->label());
    EXPECT_EQ(delegate->loadingLabel->superview(), delegate->webView);
    EXPECT_EQ(platform->label()->stringValue(), "Starting Harbrook\xE2\x80\xA6");
    EXPECT_FALSE(platform->label()->isHidden());
}

TEST_F(MainWindow, at_the_first_start_it_is_centred_with_a_page_of_1320_by_860) {
    build();
    EXPECT_EQ(platform->window()->frame(), (Rect{{300, 110}, {1320, 860}}));
    EXPECT_EQ(platform->webView()->frame(), (Rect{{0, 0}, {1320, 860}}));
}

TEST_F(MainWindow, a_frame_that_an_earlier_run_left_replaces_the_centred_one) {
    platform->setSavedFrame({{10, 20}, {1500, 900}});
    build();
    EXPECT_EQ(platform->window()->frame(), (Rect{{10, 20}, {1500, 900}}));
    EXPECT_EQ(platform->webView()->frame().size, (Size{1500, 900}));
    EXPECT_EQ(platform->window()->titlebarContainer()->frame(), (Rect{{0, 848}, {1500, 52}}));
}

TEST_F(MainWindow, it_cannot_be_smaller_than_1040_by_680) {
    build();
    platform->window()->simulateResize({100, 100});
    EXPECT_EQ(platform->window()->frame().size, (Size{1040, 680}));
}

TEST_F(MainWindow, showing_it_does_two_things_and_no_more) {
    launch();
    platform->settle();
    log().clear();
    delegate->showWindow();
    EXPECT_THAT(
        log().take(),
        ElementsAre("window makeKeyAndOrderFront", "application activateIgnoringOtherApps: true"));
}

TEST_F(MainWindow, a_missing_window_stops_the_process) {
    makeShell();
    EXPECT_DEATH(delegate->showWindow(), "missing");
}

TEST_F(MainWindow, it_is_not_built_off_the_main_thread) {
    makeShell();
    EXPECT_DEATH(
        {
            platform->globalQueue().async([this] { delegate->buildWindow(); });
            platform->settle();
        },
        "off the main thread");
}

SRGBColor canvasIn(const Appearance& appearance) {
    return (*std::get<Color::Dynamic>(AppDelegate::canvas().source()))(appearance);
}

TEST(Canvas, is_dark_in_a_dark_appearance_and_light_in_any_other) {
    const SRGBColor dark = {0.08627450980392157, 0.09411764705882353, 0.08627450980392157, 1.0};
    const SRGBColor light = {0.9529411764705882, 0.9568627450980393, 0.9411764705882353, 1.0};
    EXPECT_EQ(canvasIn(recording::Appearance::dark()), dark);
    EXPECT_EQ(canvasIn(recording::Appearance::light()), light);
    EXPECT_EQ(canvasIn(recording::Appearance::neither()), light);
}

TEST(Canvas, asks_for_dark_first_and_light_second) {
    const auto appearance = recording::Appearance::light();
    canvasIn(appearance);
    EXPECT_THAT(
        appearance.asked(),
        ElementsAre(AppearanceName::NSAppearanceNameDarkAqua, AppearanceName::NSAppearanceNameAqua));
}

TEST(Canvas, is_one_object) {
    EXPECT_EQ(&AppDelegate::canvas(), &AppDelegate::canvas());
}

TEST_F(MainWindow, page_and_window_stand_on_the_very_same_canvas) {
    build();
    EXPECT_EQ(platform->webView()->underPageBackgroundColor(), AppDelegate::canvas());
    EXPECT_EQ(platform->window()->backgroundColor(), AppDelegate::canvas());
    const auto& provider = *std::get<Color::Dynamic>(AppDelegate::canvas().source());
    EXPECT_NE(AppDelegate::canvas(), Color::colorWithDynamicProvider(provider)) << "looks are not enough";
}

} // namespace
} // namespace harbrook::tests
