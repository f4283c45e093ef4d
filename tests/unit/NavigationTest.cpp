#include "tests/unit/ShellTest.h"

namespace harbrook::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Navigation : public ShellTest {
protected:
    void SetUp() override { launchReady(4711); }

    [[nodiscard]] recording::WebView& webView() const { return *platform->webView(); }
    NavigationActionPolicy navigateTo(const char* url) {
        return webView().simulateNavigation(URL::reported(url));
    }
    void loadsFail() {
        webView().loadError = [](const URL&) { return Error{"Could not connect to the server."}; };
    }
    [[nodiscard]] Lines loads() const { return log().linesOf("webView loadRequest"); }
};

constexpr auto rootLoad = "webView loadRequest: http://localhost:4711/";

TEST_F(Navigation, within_the_server_stays_in_the_view) {
    EXPECT_EQ(navigateTo("http://localhost:4711/#/ports"), NavigationActionPolicy::allow);
    EXPECT_EQ(webView().simulateNavigation(std::nullopt), NavigationActionPolicy::allow);
    EXPECT_EQ(navigateTo("about:blank"), NavigationActionPolicy::allow);
    EXPECT_THAT(log().lines(), IsEmpty());
}

TEST_F(Navigation, away_from_the_server_opens_outside_and_is_cancelled) {
    for (const std::string url :
         {"http://localhost:3000/", "http://127.0.0.1:4711/", "https://example.com/a?b=c#d",
          "mailto:ada@example.com", "https://h/#/#x", "https://h/a|b?c[0]=100%&d={}#e#f",
          "mailto:a@b.c?subject=[bug]&body=https://c", "http://[not-an-address/x"}) {
        log().clear();
        EXPECT_EQ(navigateTo(url.c_str()), NavigationActionPolicy::cancel);
        EXPECT_THAT(log().lines(), ElementsAre("workspace openURL: " + url));
    }
}

TEST_F(Navigation, an_address_is_opened_first_and_its_navigation_cancelled_then) {
    delegate->decidePolicyForNavigationAction(
        {URL::reported("https://example.com/")}, [this](NavigationActionPolicy policy) {
            EXPECT_EQ(policy, NavigationActionPolicy::cancel);
            log().note("answered");
        });
    EXPECT_THAT(log().lines(), ElementsAre("workspace openURL: https://example.com/", "answered"));
}

TEST_F(Navigation, the_answer_is_the_same_when_nothing_can_open_the_url) {
    platform->sharedWorkspace().setHasPrograms(false);
    EXPECT_EQ(navigateTo("https://example.com/"), NavigationActionPolicy::cancel);
}

TEST_F(Navigation, a_cancelled_navigation_is_followed_by_no_load) {
    navigateTo("https://example.com/");
    platform->advance(10);
    EXPECT_THAT(loads(), IsEmpty());
}

TEST_F(Navigation, new_windows_are_never_made_and_web_addresses_open_outside) {
    for (const std::string url :
         {"https://example.com/", "http://localhost:3000/", "http://localhost:4711/#/ports",
          "mailto:ada@example.com", "https://h/#/#x", "mailto:a@b.c?subject=[bug]&body=https://c"}) {
        log().clear();
        EXPECT_EQ(webView().simulateNewWindow(URL::reported(url)), nullptr);
        EXPECT_THAT(log().lines(), ElementsAre("workspace openURL: " + url));
    }
}

TEST_F(Navigation, new_windows_for_anything_else_do_nothing_at_all) {
    for (const auto* url :
         {"about:blank", "javascript:alert(1)", "data:text/html,hi", "blob:http://x/1", "file:///etc/hosts",
          "custom://x", "/relative"}) {
        EXPECT_EQ(webView().simulateNewWindow(URL::reported(url)), nullptr);
    }
    EXPECT_EQ(webView().simulateNewWindow(std::nullopt), nullptr);
    EXPECT_THAT(log().lines(), IsEmpty());
}

TEST_F(Navigation, a_failed_load_is_tried_again_after_one_and_a_half_seconds_from_the_root) {
    webView().simulateFailedProvisionalNavigation("Could not connect to the server.");
    platform->advance(1.499);
    EXPECT_THAT(loads(), IsEmpty());
    platform->advance(0.001);
    EXPECT_THAT(loads(), ElementsAre(rootLoad));
    const auto& request = webView().loads().back();
    EXPECT_EQ(request.cachePolicy, CachePolicy::useProtocolCachePolicy);
    EXPECT_EQ(request.timeoutInterval, 60.0);
    platform->advance(10);
    EXPECT_EQ(loads().size(), 1U) << "the load succeeded";
}

TEST_F(Navigation, a_retry_goes_to_where_the_server_is_by_then) {
    webView().simulateFailedProvisionalNavigation("Could not connect to the server.");
    platform->advance(1.0);
    globals->setBaseURL(*URL::URLWithString("http://localhost:5000/"));
    platform->advance(0.5);
    EXPECT_THAT(loads(), ElementsAre("webView loadRequest: http://localhost:5000/"));
}

TEST_F(Navigation, a_load_that_fails_after_it_began_is_treated_the_same) {
    webView().simulateFailedNavigation("The network connection was lost.");
    platform->advance(1.5);
    EXPECT_THAT(loads(), ElementsAre(rootLoad));
}

TEST_F(Navigation, the_error_is_not_looked_at) {
    webView().simulateFailedProvisionalNavigation("cancelled");
    platform->advance(1.5);
    EXPECT_THAT(loads(), ElementsAre(rootLoad));
}

TEST_F(Navigation, each_failure_has_its_own_retry) {
    webView().simulateFailedProvisionalNavigation("one");
    platform->advance(0.5);
    webView().simulateFailedNavigation("two");
    platform->advance(1.0);
    EXPECT_EQ(loads().size(), 1U);
    platform->advance(0.5);
    EXPECT_EQ(loads().size(), 2U);
}

TEST_F(Navigation, retries_go_on_without_limit_or_growth_until_the_server_answers) {
    loadsFail();
    webView().loadTakes = 0.25;
    webView().reload();
    platform->advance(0.25 + 1.5);
    const int pending = platform->scheduler().pendingMainBlocks();
    platform->advance(199 * 1.75);
    EXPECT_EQ(loads().size(), 200U);
    EXPECT_EQ(platform->scheduler().pendingMainBlocks(), pending);
    webView().loadError = {};
    platform->advance(20);
    EXPECT_EQ(loads().size(), 200U) << "the load that was under way came through";
    EXPECT_LT(platform->scheduler().pendingMainBlocks(), pending);
}

TEST_F(Navigation, retries_leave_label_and_window_alone) {
    loadsFail();
    webView().reload();
    log().clear();
    platform->advance(2.9);
    EXPECT_THAT(log().linesOf("label"), IsEmpty());
    EXPECT_THAT(log().linesOf("window"), IsEmpty());
    EXPECT_THAT(log().linesOf("application"), IsEmpty());
}

TEST_F(Navigation, a_retry_does_nothing_when_the_delegate_is_gone) {
    const auto view = platform->webView();
    view->simulateFailedNavigation("lost");
    dropDelegate();
    platform->advance(2);
    EXPECT_THAT(loads(), IsEmpty());
}

TEST_F(Navigation, an_alert_is_a_sheet_with_one_button) {
    int answers = 0;
    webView().simulateAlert("Saved \"all\"", [&] { ++answers; });
    EXPECT_THAT(
        log().lines(), ElementsAre(
                           "alert init", R"(alert setMessageText: "Saved \"all\"")",
                           "alert addButtonWithTitle: \"OK\"", "alert beginSheetModalForWindow"));
    EXPECT_EQ(answers, 0);
    platform->sheets().simulateEnd(NSAlertFirstButtonReturn);
    EXPECT_EQ(answers, 1);
}

TEST_F(Navigation, an_alert_is_answered_however_it_ends) {
    int answers = 0;
    for (const ModalResponse response : {1000L, 1001L, 0L, -1000L}) {
        webView().simulateAlert("Saved", [&] { ++answers; });
        platform->sheets().simulateEnd(response);
    }
    EXPECT_EQ(answers, 4);
}

TEST_F(Navigation, a_confirmation_has_ok_first_and_cancel_second) {
    webView().simulateConfirm("Stop it?", [](bool) {});
    EXPECT_THAT(
        log().lines(),
        ElementsAre(
            "alert init", R"(alert setMessageText: "Stop it?")", "alert addButtonWithTitle: \"OK\"",
            "alert addButtonWithTitle: \"Cancel\"", "alert beginSheetModalForWindow"));
    platform->sheets().simulateEnd(NSAlertSecondButtonReturn);
}

TEST_F(Navigation, only_the_first_button_confirms) {
    std::vector<bool> answers;
    for (const ModalResponse response : {1000L, 1001L, 1002L, 1L, 0L, -1000L}) {
        webView().simulateConfirm("Stop it?", [&](bool yes) { answers.push_back(yes); });
        platform->sheets().simulateEnd(response);
    }
    EXPECT_THAT(answers, ElementsAre(true, false, false, false, false, false));
}

TEST_F(Navigation, polling_and_commands_go_on_while_a_sheet_is_open) {
    bool answered = false;
    webView().simulateConfirm("Stop it?", [&](bool) { answered = true; });
    log().clear();
    platform->advance(9);
    application().simulateChoice({"View", "Ports"});
    EXPECT_EQ(log().linesOf("session GET").size(), 3U);
    EXPECT_EQ(log().linesOf("webView evaluateJavaScript").size(), 1U);
    EXPECT_FALSE(answered);
    platform->sheets().simulateEnd(NSAlertFirstButtonReturn);
    EXPECT_TRUE(answered);
}

} // namespace
} // namespace harbrook::tests
