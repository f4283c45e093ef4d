#include "tests/unit/ShellTest.h"

#include "app/Shell.h"

namespace harbrook::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Launch : public ShellTest {
protected:
    [[nodiscard]] std::vector<std::string> operationsOf(const std::vector<std::string>& prefixes) const {
        std::vector<std::string> found;
        for (const auto& line : log().lines()) {
            for (const auto& prefix : prefixes) {
                if (line.starts_with(prefix)) {
                    found.push_back(line);
                    break;
                }
            }
        }
        return found;
    }
};

TEST_F(Launch, the_entry_point_makes_globals_delegate_and_policy_and_then_runs_the_loop) {
    platform->files().addDirectory("/home/ada/.ferncastle");
    bool looped = false;
    application().setLoop([&] {
        looped = true;
        EXPECT_NE(platform->window(), nullptr) << "launching has finished";
    });
    EXPECT_EQ(runShell(platform), 0);
    EXPECT_TRUE(looped);
    const auto lines = operationsOf({"files", "application"});
    EXPECT_THAT(
        std::vector(lines.begin(), lines.begin() + 10),
        ElementsAre(
            "files fileExists: /home/ada/.harbrook", "files fileExists: /home/ada/.ferncastle",
            "files move: /home/ada/.ferncastle to /home/ada/.harbrook", "application init",
            "application setDelegate", "application setActivationPolicy: 0", "application run",
            "application setWindowsMenu: \"Window\"", "application setHelpMenu: \"Help\"",
            "application setMainMenu: 5 menus"));
}

TEST_F(Launch, a_start_in_screenshot_mode_runs_by_itself_and_any_other_joins_what_runs) {
    const auto lineOf = [](recording::Platform& desktop) {
        return desktop.log().linesOf("application setCreatesNewApplicationInstance");
    };
    runShell(platform);
    EXPECT_THAT(lineOf(*platform), IsEmpty());
    const auto other = std::make_shared<recording::Platform>();
    other->processInfo().setVariable("HARBROOK_SHOTS", "1");
    runShell(other);
    EXPECT_THAT(lineOf(*other), ElementsAre("application setCreatesNewApplicationInstance: true"));
    other->shutDown();
}

TEST_F(Launch, the_delegate_begins_with_empty_fields) {
    makeShell();
    EXPECT_EQ(delegate->window, nullptr);
    EXPECT_EQ(delegate->webView, nullptr);
    EXPECT_EQ(delegate->server->task(), nullptr);
    EXPECT_EQ(delegate->statusItem, nullptr);
    EXPECT_EQ(delegate->pollTimer, nullptr);
    EXPECT_EQ(delegate->loadingLabel, nullptr);
    EXPECT_FALSE(delegate->placingLights);
    EXPECT_THAT(delegate->lightObservers, IsEmpty());
}

TEST_F(Launch, menu_window_status_item_server_poll_timer_and_screenshots_come_in_this_order) {
    installServer();
    platform->processInfo().setVariable("HARBROOK_SHOTS", "1");
    platform->files().addDirectory("/home/ada/.harbrook");
    makeShell();
    log().clear();
    delegate->applicationDidFinishLaunching();
    EXPECT_THAT(
        operationsOf(
            {"application setMainMenu", "window init", "window makeKey", "statusBar", "session", "bundle",
             "timer", "files", "distributed", "globalQueue"}),
        ElementsAre(
            "application setMainMenu: 5 menus",
            "window init: (0, 0) 1320 x 860 style 32783 backing 2 defer false", "window makeKeyAndOrderFront",
            "statusBar statusItemWithLength: -1", "bundle URLForResource: menubarTemplate@2x.png",
            "session GET http://localhost:1/api/state", "globalQueue async", "timer schedule: 3 repeats",
            "files writeAtomically: \"4711\" to /home/ada/.harbrook/shot-window",
            "distributedNotifications addObserver: com.brackenforge.harbrook.shot"));
    EXPECT_THAT(platform->scheduler().runnableWorkers(), testing::Contains("global 1"))
        << "the launcher was queued and has not run yet";
}

TEST_F(Launch, the_launcher_is_queued_after_the_first_refresh) {
    installServer();
    launch();
    EXPECT_THAT(platform->scheduler().runnableWorkers(), ElementsAre("session 1", "global 1"));
}

TEST_F(Launch, a_ready_server_loads_its_address_and_then_hides_the_label) {
    installServer({.output = {{1.0, "HARBROOK_PORT 51234\n"}}});
    launch();
    platform->advance(0.9);
    EXPECT_THAT(log().linesOf("webView loadRequest"), IsEmpty());
    EXPECT_FALSE(platform->label()->isHidden());
    log().clear();
    platform->advance(0.2);
    EXPECT_THAT(
        operationsOf({"webView loadRequest", "label"}),
        ElementsAre("webView loadRequest: http://localhost:51234/", "label setHidden: true"));
    ASSERT_EQ(platform->webView()->loads().size(), 1U);
    const auto& request = platform->webView()->loads().front();
    EXPECT_EQ(request.cachePolicy, CachePolicy::useProtocolCachePolicy);
    EXPECT_EQ(request.timeoutInterval, 60.0);
    EXPECT_EQ(request.httpMethod, "GET");
    EXPECT_EQ(request.url.absoluteString(), "http://localhost:51234/");
    EXPECT_THAT(request.headerFields, IsEmpty());
    EXPECT_EQ(platform->label()->stringValue(), "Starting Harbrook…");
}

TEST_F(Launch, the_page_that_is_loaded_stays_in_the_view) {
    launchReady(51234);
    EXPECT_EQ(platform->webView()->page()->absoluteString(), "http://localhost:51234/");
    EXPECT_THAT(log().linesOf("workspace"), IsEmpty());
}

TEST_F(Launch, a_failed_start_shows_its_message_in_the_label) {
    launch();
    log().clear();
    platform->settle();
    EXPECT_EQ(
        platform->label()->stringValue(),
        "Node.js was not found. On Intel Macs, install Node.js from nodejs.org (or: brew install node), then "
        "reopen Harbrook.");
    EXPECT_FALSE(platform->label()->isHidden());
    EXPECT_THAT(log().linesOf("webView"), IsEmpty()) << "nothing is loaded";
    EXPECT_TRUE(platform->window()->isVisible());
}

TEST_F(Launch, nothing_is_retried_after_a_failed_start_and_the_polls_go_on) {
    launch();
    platform->settle();
    log().clear();
    platform->advance(30);
    EXPECT_THAT(log().linesOf("task"), IsEmpty());
    EXPECT_THAT(log().linesOf("label"), IsEmpty());
    EXPECT_EQ(log().linesOf("session GET http://localhost:1/api/state").size(), 10U);
}

TEST_F(Launch, the_completion_does_nothing_when_the_delegate_is_gone) {
    launch();
    dropDelegate();
    log().clear();
    platform->settle();
    EXPECT_THAT(log().linesOf("label"), IsEmpty());
    EXPECT_THAT(log().linesOf("webView"), IsEmpty());
}

TEST_F(Launch, the_status_is_polled_every_3_seconds_ready_or_not) {
    installServer({.output = {{4.0, "HARBROOK_PORT 51234\n"}}});
    launch();
    platform->settle();
    log().clear();
    platform->advance(2.999);
    EXPECT_THAT(log().linesOf("session"), IsEmpty());
    platform->advance(0.001);
    EXPECT_THAT(log().linesOf("session"), ElementsAre("session GET http://localhost:1/api/state"));
    platform->advance(3.0);
    EXPECT_THAT(
        log().linesOf("session"),
        ElementsAre(
            "session GET http://localhost:1/api/state", "session GET http://localhost:51234/api/state"));
    platform->advance(30.0);
    EXPECT_EQ(log().linesOf("session").size(), 12U);
}

TEST_F(Launch, the_poll_timer_is_kept_repeats_every_3_seconds_and_ends_with_the_delegate) {
    launch();
    ASSERT_EQ(delegate->pollTimer, platform->timer());
    EXPECT_EQ(platform->timer()->interval(), 3.0);
    EXPECT_TRUE(platform->timer()->repeats());
    platform->settle();
    dropDelegate();
    log().clear();
    platform->advance(30);
    EXPECT_THAT(log().lines(), IsEmpty());
}

TEST_F(Launch, reopening_shows_and_activates_the_window_and_says_yes) {
    launch();
    platform->settle();
    for (const bool hasVisibleWindows : {true, false}) {
        log().clear();
        EXPECT_TRUE(application().simulateReopen(hasVisibleWindows));
        EXPECT_THAT(
            log().lines(),
            ElementsAre("window makeKeyAndOrderFront", "application activateIgnoringOtherApps: true"));
    }
}

TEST_F(Launch, closing_the_window_leaves_everything_running_and_reopening_shows_the_same_window) {
    launchReady();
    const auto window = platform->window();
    window->simulateClose();
    EXPECT_FALSE(application().simulateLastWindowClosed());
    EXPECT_FALSE(application().isTerminated());
    EXPECT_TRUE(server().isRunning());
    EXPECT_NE(platform->systemStatusBar().item(), nullptr);
    platform->advance(10);
    application().simulateReopen(false);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(platform->window(), window);
    EXPECT_EQ(platform->webView()->loads().size(), 1U) << "the page is not loaded again";
}

TEST_F(Launch, quitting_stops_the_server_and_waits_for_its_exit) {
    installServer({.output = {{0.2, "HARBROOK_PORT 1234\n"}}, .terminationTakes = 7});
    launch();
    platform->advance(1);
    log().clear();
    application().terminate();
    EXPECT_THAT(log().lines(), ElementsAre("application terminate", "task terminate", "task waitUntilExit"));
    EXPECT_FALSE(server().isRunning());
    EXPECT_EQ(server().terminateRequests(), 1);
    EXPECT_EQ(platform->now(), 8);
}

TEST_F(Launch, quitting_waits_without_limit_for_a_server_that_ignores_the_request) {
    installServer({.output = {{0.2, "HARBROOK_PORT 1234\n"}}, .ignoresTerminate = true});
    launch();
    platform->advance(1);
    EXPECT_THROW(application().terminate(), recording::WaitsForever);
    EXPECT_EQ(server().terminateRequests(), 1) << "asked once, and not killed";
    EXPECT_TRUE(server().isRunning());
}

TEST_F(Launch, quitting_stops_a_server_that_never_announced_its_port) {
    installServer();
    launch();
    platform->advance(15);
    ASSERT_EQ(platform->label()->stringValue(), "The server did not start. See ~/.harbrook/logs/server.log");
    application().terminate();
    EXPECT_FALSE(server().isRunning());
}

TEST_F(Launch, quitting_during_the_wait_for_the_announcement_stops_the_server) {
    installServer();
    launch();
    platform->advance(5);
    application().terminate();
    EXPECT_FALSE(server().isRunning());
}

TEST_F(Launch, quitting_without_a_server_does_nothing) {
    launch();
    platform->settle();
    log().clear();
    application().terminate();
    EXPECT_THAT(log().lines(), ElementsAre("application terminate"));
}

TEST_F(Launch, quitting_after_a_failed_launch_does_nothing) {
    installServer({.launchError = Error{"no"}});
    launch();
    platform->settle();
    log().clear();
    application().terminate();
    EXPECT_THAT(log().lines(), ElementsAre("application terminate"));
}

TEST_F(Launch, quitting_before_the_launcher_has_run_leaves_no_server_behind) {
    installServer();
    launch();
    application().terminate();
    platform->settle();
    for (const auto& child : platform->processes().children)
        EXPECT_FALSE(child->isRunning());
}

TEST_F(Launch, a_server_that_dies_later_is_neither_reported_nor_restarted) {
    launchReady();
    server().exit();
    platform->advance(60);
    EXPECT_THAT(log().linesOf("task"), IsEmpty());
    EXPECT_THAT(log().linesOf("label"), IsEmpty());
    application().terminate();
    EXPECT_EQ(server().terminateRequests(), 0) << "it has gone already";
}

} // namespace
} // namespace harbrook::tests
