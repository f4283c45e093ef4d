#include "tests/unit/ShellTest.h"

#include "shots/ScreenshotRequest.h"

namespace harbrook::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Dictionary = Value::Dictionary;

constexpr auto notification = "com.brackenforge.harbrook.shot";
constexpr auto windowFile = "/home/ada/.harbrook/shot-window";
constexpr auto readyFile = "/home/ada/.harbrook/shot-ready";
constexpr std::string_view probe =
    "(() => { const p = document.querySelector('#page'); return !!p && !p.querySelector('.spin') && "
    "p.innerText.length > 50; })()";
constexpr std::string_view overlays = "document.querySelectorAll('.modal-bg').forEach(x => x.remove())";

class ScreenshotMode : public ShellTest {
protected:
    /// Brings the shell up with the switch set to `value`.
    void launchWith(const std::string& value) {
        platform->processInfo().setVariable("HARBROOK_SHOTS", value);
        platform->files().addDirectory(platform->files().homeDirectoryForCurrentUser() / ".harbrook");
        launch();
        platform->settle();
        delegate->pollTimer.reset();
        log().clear();
        if (!platform->webView()) return;
        platform->webView()->evaluate = [this](const std::string& script) -> std::optional<Value> {
            if (script != probe) return std::nullopt;
            checks.push_back(elapsed());
            return answer(static_cast<int>(checks.size()));
        };
    }
    void request(const Dictionary& userInfo) {
        started = platform->now();
        platform->distributedNotificationCenter().simulateNotification(notification, userInfo);
        platform->settle();
    }
    [[nodiscard]] double elapsed() const { return platform->now() - started; }
    /// Moves on until the token is written; the seconds that took, or none.
    std::optional<double> secondsUntilReady(double limit = 60) {
        for (int step = 0; elapsed() < limit; ++step) {
            if (!log().linesOf("files writeAtomically").empty()) return elapsed();
            platform->advance(0.1);
        }
        return std::nullopt;
    }
    [[nodiscard]] Lines scripts() const {
        Lines found;
        for (const auto& line : log().linesOf("webView evaluateJavaScript: ")) {
            found.push_back(line.substr(std::string_view("webView evaluateJavaScript: ").size()));
        }
        return found;
    }
    [[nodiscard]] Lines clicks() const {
        auto found = scripts();
        std::erase_if(
            found, [](const std::string& script) { return script.find("?.click()") == std::string::npos; });
        return found;
    }
    [[nodiscard]] std::optional<std::string> token() const { return platform->files().contents(readyFile); }

    std::function<std::optional<Value>(int check)> answer = [](int) { return Value(true); };
    std::vector<double> checks;
    double started = 0;
};

class SwitchedOff : public ScreenshotMode, public testing::WithParamInterface<const char*> {};

TEST_P(SwitchedOff, writes_no_file_and_hears_of_no_request) {
    launchWith(GetParam());
    EXPECT_FALSE(platform->files().has(windowFile));
    request({{"hash", "#/docker"}});
    platform->advance(30);
    EXPECT_THAT(log().linesOf("webView"), IsEmpty());
    EXPECT_FALSE(token());
}

INSTANTIATE_TEST_SUITE_P(Values, SwitchedOff, testing::Values("true", "yes", "01", "1 ", "0", ""));

TEST_F(ScreenshotMode, is_off_without_the_variable) {
    platform->files().addDirectory("/home/ada/.harbrook");
    launch();
    EXPECT_FALSE(platform->files().has(windowFile));
    EXPECT_THAT(log().linesOf("distributedNotifications"), IsEmpty());
}

TEST_F(ScreenshotMode, publishes_the_bare_window_number) {
    launchWith("1");
    EXPECT_EQ(platform->files().contents(windowFile), "4711");
}

TEST_F(ScreenshotMode, its_files_follow_the_data_directory) {
    platform->processInfo().setVariable("HARBROOK_SHOTS_HOME", "/tmp/shots");
    platform->files().addDirectory("/tmp/shots/.harbrook");
    launchWith("1");
    EXPECT_EQ(platform->files().contents("/tmp/shots/.harbrook/shot-window"), "4711");
    request({{"hash", "#/"}, {"token", "t"}});
    platform->advance(3);
    EXPECT_EQ(platform->files().contents("/tmp/shots/.harbrook/shot-ready"), "t");
    EXPECT_FALSE(platform->files().has(windowFile));
}

TEST_F(ScreenshotMode, a_window_number_that_cannot_be_written_is_passed_over) {
    platform->files().makeUnwritable("/home/ada/.harbrook");
    launchWith("1");
    request({{"hash", "#/"}, {"token", "t"}});
    EXPECT_EQ(secondsUntilReady(), 2.0) << "and so is a token, but it is tried";
    EXPECT_FALSE(token());
}

TEST_F(ScreenshotMode, a_request_removes_overlays_and_shows_the_view_at_once) {
    launchWith("1");
    request({{"hash", "#/docker"}});
    EXPECT_THAT(
        log().lines(), ElementsAre(
                           "webView evaluateJavaScript: " + std::string(overlays),
                           "window makeKeyAndOrderFront", "application activateIgnoringOtherApps: true",
                           "webView evaluateJavaScript: location.hash = '#/docker'"));
}

TEST_F(ScreenshotMode, a_page_that_is_quick_is_done_after_2_seconds_with_an_empty_token) {
    launchWith("1");
    request({{"hash", "#/docker"}});
    platform->advance(0.999);
    EXPECT_THAT(checks, IsEmpty());
    platform->advance(0.001);
    EXPECT_THAT(checks, ElementsAre(1.0));
    platform->advance(0.999);
    EXPECT_FALSE(token());
    platform->advance(0.001);
    EXPECT_EQ(token(), "");
    EXPECT_EQ(scripts().back(), probe);
    EXPECT_THAT(clicks(), IsEmpty());
}

TEST_F(ScreenshotMode, the_token_is_written_exactly_as_it_came) {
    launchWith("1");
    const std::string odd = "a\nb\r\n\xC3\xA9\xF0\x9F\x98\x80 \"'\\";
    request({{"hash", "#/"}, {"token", odd}});
    platform->advance(2);
    EXPECT_EQ(token(), odd);
}

TEST_F(ScreenshotMode, each_request_replaces_the_token_of_the_one_before) {
    launchWith("1");
    request({{"hash", "#/"}, {"token", "a long first token"}});
    platform->advance(2);
    request({{"hash", "#/"}, {"token", "2"}});
    platform->advance(2);
    EXPECT_EQ(token(), "2");
    request({{"hash", "#/"}});
    platform->advance(2);
    EXPECT_EQ(token(), "");
}

TEST_F(ScreenshotMode, a_request_without_a_hash_changes_nothing_at_all) {
    launchWith("1");
    platform->distributedNotificationCenter().simulateNotification(notification, std::nullopt);
    for (const auto& userInfo :
         {Dictionary{}, Dictionary{{"token", "t"}, {"click", "a"}}, Dictionary{{"hash", 1.0}},
          Dictionary{{"hash", Value()}}, Dictionary{{"hash", Value::Array{"#/"}}},
          Dictionary{{"Hash", "#/"}}}) {
        request(userInfo);
    }
    platform->advance(30);
    EXPECT_THAT(log().lines(), IsEmpty());
    EXPECT_FALSE(token());
}

TEST_F(ScreenshotMode, values_that_are_no_strings_count_as_missing) {
    EXPECT_EQ(
        screenshotRequest(Dictionary{{"hash", "#/"}, {"token", 5.0}, {"click", true}}),
        (ScreenshotRequest{"#/", "", ""}));
    EXPECT_EQ(
        screenshotRequest(Dictionary{{"hash", ""}, {"token", "t"}, {"click", "c"}, {"other", "x"}}),
        (ScreenshotRequest{"", "t", "c"}));
}

TEST_F(ScreenshotMode, notifications_of_other_names_are_not_heard) {
    launchWith("1");
    platform->distributedNotificationCenter().simulateNotification(
        "com.brackenforge.harbrook.other", Dictionary{{"hash", "#/"}});
    platform->advance(30);
    EXPECT_THAT(log().lines(), IsEmpty());
}

TEST_F(ScreenshotMode, a_hash_goes_in_as_it_is_and_a_script_that_fails_changes_nothing) {
    launchWith("1");
    request({{"hash", "#/it's"}, {"token", "t"}});
    EXPECT_THAT(scripts(), testing::Contains("location.hash = '#/it's'"));
    EXPECT_EQ(secondsUntilReady(), 2.0);
}

TEST_F(ScreenshotMode, a_page_that_is_never_ready_is_given_up_after_41_checks_and_18_seconds) {
    launchWith("1");
    answer = [](int) { return Value(false); };
    request({{"hash", "#/"}, {"token", "late"}});
    platform->advance(17.999);
    EXPECT_EQ(checks.size(), 41U);
    EXPECT_FALSE(token());
    platform->advance(0.001);
    EXPECT_EQ(token(), "late");
    EXPECT_NEAR(checks.front(), 1.0, 1e-9);
    for (std::size_t i = 1; i < checks.size(); ++i)
        EXPECT_NEAR(checks[i] - checks[i - 1], 0.4, 1e-9);
    platform->advance(60);
    EXPECT_EQ(checks.size(), 41U);
}

TEST_F(ScreenshotMode, the_time_that_checks_take_comes_on_top) {
    launchWith("1");
    platform->webView()->evaluationTakes = 0.1;
    answer = [](int) { return Value(false); };
    request({{"hash", "#/"}, {"token", "late"}});
    platform->advance(18.0 + 41 * 0.1 - 0.001);
    EXPECT_FALSE(token());
    platform->advance(0.001);
    EXPECT_EQ(token(), "late");
}

TEST_F(ScreenshotMode, a_page_that_becomes_ready_is_done_a_second_later) {
    launchWith("1");
    answer = [](int check) { return Value(check == 4); };
    request({{"hash", "#/"}, {"token", "t"}});
    EXPECT_NEAR(secondsUntilReady().value(), 1.0 + 3 * 0.4 + 1.0, 1e-6);
    EXPECT_EQ(checks.size(), 4U);
}

TEST_F(ScreenshotMode, a_page_that_is_ready_at_the_last_check_is_ready) {
    launchWith("1");
    answer = [](int check) { return Value(check == 41); };
    request({{"hash", "#/"}, {"token", "t"}, {"click", "a"}});
    platform->advance(17.0);
    EXPECT_EQ(clicks().size(), 1U);
}

TEST_F(ScreenshotMode, only_a_boolean_true_is_ready) {
    launchWith("1");
    const std::vector<std::optional<Value>> answers = {
        std::nullopt,
        Value(1.0),
        Value("true"),
        Value(),
        Value(Dictionary{{"ready", true}}),
        Value(Value::Array{Value(true)}),
        Value(false)};
    answer = [&](int check) { return answers.at(static_cast<std::size_t>(check - 1) % answers.size()); };
    request({{"hash", "#/"}, {"token", "t"}});
    platform->advance(17.9);
    EXPECT_EQ(checks.size(), 41U);
}

TEST_F(ScreenshotMode, a_click_is_made_once_the_page_is_ready_and_is_followed_by_another_check) {
    launchWith("1");
    request({{"hash", "#/"}, {"token", "t"}, {"click", "button[data-x=\"a/b\"]"}});
    platform->advance(1.0);
    EXPECT_THAT(clicks(), ElementsAre(R"(document.querySelector("button[data-x=\"a\/b\"]")?.click())"));
    EXPECT_THAT(checks, ElementsAre(1.0));
    platform->advance(0.799);
    EXPECT_EQ(checks.size(), 1U);
    platform->advance(0.001);
    EXPECT_EQ(checks.size(), 2U);
    platform->advance(0.999);
    EXPECT_FALSE(token());
    platform->advance(0.001);
    EXPECT_EQ(token(), "t");
    EXPECT_EQ(clicks().size(), 1U);
}

TEST_F(ScreenshotMode, the_wait_after_a_click_begins_when_its_script_has_ended_however_it_ended) {
    launchWith("1");
    platform->webView()->evaluationTakes = 0.5;
    request({{"hash", "#/"}, {"token", "t"}, {"click", "#none"}});
    EXPECT_NEAR(secondsUntilReady().value(), 1.0 + 0.5 + 0.5 + 0.8 + 0.5 + 1.0, 1e-6);
}

TEST_F(ScreenshotMode, a_click_uses_up_no_attempt_and_is_not_made_again) {
    launchWith("1");
    answer = [](int check) { return Value(check == 4); };
    request({{"hash", "#/"}, {"token", "t"}, {"click", "a"}});
    platform->advance(60);
    EXPECT_EQ(clicks().size(), 1U);
    // Three checks used three attempts; the 37 that were left allow 38 more after the click.
    EXPECT_EQ(checks.size(), 4U + 38U);
    EXPECT_EQ(token(), "t");
}

TEST_F(ScreenshotMode, a_page_that_shows_its_spinner_after_the_click_is_waited_for) {
    launchWith("1");
    answer = [](int check) { return Value(check == 1 || check == 5); };
    request({{"hash", "#/"}, {"token", "t"}, {"click", "a"}});
    EXPECT_NEAR(secondsUntilReady().value(), 1.0 + 0.8 + 3 * 0.4 + 1.0, 1e-6);
    EXPECT_EQ(clicks().size(), 1U);
}

TEST_F(ScreenshotMode, a_page_that_is_never_ready_is_not_clicked) {
    launchWith("1");
    answer = [](int) { return Value(false); };
    request({{"hash", "#/"}, {"token", "t"}, {"click", "a"}});
    platform->advance(18);
    EXPECT_THAT(clicks(), IsEmpty());
    EXPECT_EQ(token(), "t");
}

TEST_F(ScreenshotMode, an_empty_selector_is_no_click) {
    launchWith("1");
    request({{"hash", "#/"}, {"token", "t"}, {"click", ""}});
    EXPECT_EQ(secondsUntilReady(), 2.0);
    EXPECT_THAT(clicks(), IsEmpty());
}

TEST_F(ScreenshotMode, requests_that_overlap_run_beside_each_other_and_the_last_to_finish_stays) {
    launchWith("1");
    request({{"hash", "#/a"}, {"token", "first"}, {"click", "a"}});
    platform->advance(0.3);
    request({{"hash", "#/b"}, {"token", "second"}});
    platform->advance(60);
    EXPECT_THAT(
        log().linesOf("files writeAtomically"),
        ElementsAre(
            "files writeAtomically: \"second\" to " + std::string(readyFile),
            "files writeAtomically: \"first\" to " + std::string(readyFile)));
    EXPECT_EQ(token(), "first");
}

TEST_F(ScreenshotMode, a_request_under_way_carries_the_delegate_along) {
    launchWith("1");
    request({{"hash", "#/"}, {"token", "t"}});
    const std::weak_ptr<AppDelegate> weak = delegate;
    dropDelegate();
    EXPECT_FALSE(weak.expired());
    platform->advance(2);
    EXPECT_EQ(token(), "t");
    EXPECT_TRUE(weak.expired());
}

TEST_F(ScreenshotMode, a_request_for_a_delegate_that_is_gone_does_nothing) {
    launchWith("1");
    dropDelegate();
    request({{"hash", "#/"}, {"token", "t"}});
    platform->advance(30);
    EXPECT_THAT(log().lines(), IsEmpty());
    EXPECT_FALSE(token());
}

TEST_F(ScreenshotMode, without_a_window_the_process_stops) {
    platform->processInfo().setVariable("HARBROOK_SHOTS", "1");
    makeShell();
    EXPECT_DEATH(delegate->enableScreenshotMode(), "missing");
}

TEST_F(ScreenshotMode, a_request_without_a_window_or_a_web_view_stops_the_process) {
    launchWith("1");
    const auto window = std::exchange(delegate->window, nullptr);
    EXPECT_DEATH(request({{"hash", "#/docker"}}), "missing");
    delegate->window = window;
    delegate->webView = nullptr;
    EXPECT_DEATH(request({{"hash", "#/docker"}}), "missing");
}

} // namespace
} // namespace harbrook::tests
