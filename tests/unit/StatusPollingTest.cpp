#include "tests/unit/ShellTest.h"

#include "status/MenuBarIcon.h"

namespace harbrook::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// An answer with so many running projects.
std::string snapshot(int runningProjects) {
    std::string projects;
    for (int i = 0; i < runningProjects; ++i) {
        projects += std::string(i ? "," : "") + R"({"name":"p)" + std::to_string(i) + R"(","path":"/p/)" +
                    std::to_string(i) + R"(","running":true,"ports":[3000]})";
    }
    return R"({"projects":[)" + projects +
           R"(],"stats":{"running":0,"postgres":1,"redis":2,"containers":3}})";
}

class Status : public ShellTest {
protected:
    /// Brings the shell up with a server; the polls of the first moments are answered.
    void launchAnswered(const std::string& body) {
        launchReady(4711);
        delegate->pollTimer.reset();
        refreshAnswered(body);
        log().clear();
    }
    std::shared_ptr<recording::Exchange> refresh() {
        delegate->refreshStatus();
        return session().exchanges().back();
    }
    void refreshAnswered(const std::string& body) {
        refresh()->answer(200, body);
        platform->settle();
    }
    [[nodiscard]] std::string header() { return statusItem().menu()->items.at(2).title; }
    [[nodiscard]] const std::string& buttonTitle() { return statusItem().shownButton().title(); }
    [[nodiscard]] Image buttonImage() { return statusItem().shownButton().image().value(); }

    const Image busy = {{18, 18}, true, menuBarIconDrawing(false), "Harbrook"};
    const Image idle = {{18, 18}, true, menuBarIconDrawing(true), "Harbrook"};
};

TEST_F(Status, the_item_is_built_with_the_busy_icon_an_empty_menu_and_a_first_refresh) {
    makeShell();
    log().clear();
    delegate->buildStatusItem();
    EXPECT_THAT(
        log().lines(),
        ElementsAre(
            "statusBar statusItemWithLength: -1", "bundle URLForResource: menubarTemplate@2x.png",
            "statusButton setImage: drawing 18 x 18 template", "statusButton setImagePosition: 7",
            "statusItem setMenu: 0 items", "session GET http://localhost:1/api/state"));
    EXPECT_EQ(buttonImage(), busy);
    EXPECT_EQ(delegate->statusItem, platform->systemStatusBar().item());
}

TEST_F(Status, the_icon_stays_busy_until_the_first_snapshot) {
    launch();
    platform->advance(10);
    EXPECT_EQ(header(), "Server not reachable");
    EXPECT_EQ(buttonImage(), busy);
    EXPECT_EQ(buttonTitle(), "");
}

TEST_F(Status, a_refresh_asks_for_the_state_with_the_token_for_10_seconds) {
    launchReady(4711);
    const auto& request = refresh()->request();
    EXPECT_EQ(request.url.absoluteString(), "http://localhost:4711/api/state");
    EXPECT_EQ(request.httpMethod, "GET");
    EXPECT_EQ(request.timeoutInterval, 10.0);
    EXPECT_EQ(request.cachePolicy, CachePolicy::useProtocolCachePolicy);
    EXPECT_THAT(request.headerFields, ElementsAre(std::pair("X-Harbrook-Token", globals->apiToken)));
}

TEST_F(Status, an_answer_is_rendered_on_the_main_thread_after_it_was_decoded) {
    launchAnswered(snapshot(0));
    refresh()->answer(200, snapshot(2));
    platform->scheduler().runWorkers();
    EXPECT_EQ(buttonTitle(), "") << "only posted so far";
    platform->scheduler().runMainQueue();
    EXPECT_EQ(buttonTitle(), " 2");
    EXPECT_EQ(header(), "Running projects");
}

TEST_F(Status, two_listed_projects_show_their_number_and_the_busy_icon) {
    launchAnswered(snapshot(2));
    EXPECT_EQ(buttonTitle(), " 2");
    EXPECT_EQ(buttonImage(), busy);
}

TEST_F(Status, no_listed_project_shows_no_number_and_the_idle_icon) {
    launchAnswered(snapshot(2));
    refreshAnswered(snapshot(0));
    EXPECT_EQ(buttonTitle(), "");
    EXPECT_EQ(buttonImage(), idle);
    EXPECT_EQ(header(), "No projects running");
}

TEST_F(Status, an_unreachable_server_empties_the_title_and_leaves_the_icon) {
    for (const int projects : {2, 0}) {
        launchAnswered(snapshot(projects));
        refresh()->fail("Could not connect to the server.");
        platform->settle();
        EXPECT_EQ(header(), "Server not reachable");
        EXPECT_EQ(buttonTitle(), "");
        EXPECT_EQ(buttonImage(), projects ? busy : idle);
        EXPECT_THAT(log().linesOf("statusButton setImage"), IsEmpty());
    }
}

TEST_F(Status, rendering_sets_title_icon_and_menu) {
    launchAnswered(snapshot(0));
    refreshAnswered(snapshot(1));
    EXPECT_THAT(
        log().lines(),
        ElementsAre(
            "session GET http://localhost:4711/api/state", "statusButton setTitle: \" 1\"",
            "bundle URLForResource: menubarTemplate@2x.png",
            "statusButton setImage: drawing 18 x 18 template", "statusItem setMenu: 10 items"));
}

TEST_F(Status, the_http_status_is_not_looked_at) {
    launchAnswered(snapshot(0));
    for (const int code : {500, 401, 404, 302, 204}) {
        refresh()->answer(code, snapshot(3));
        platform->settle();
        EXPECT_EQ(buttonTitle(), " 3") << code;
        refreshAnswered(snapshot(0));
    }
    refresh()->answerWithoutStatus(snapshot(3));
    platform->settle();
    EXPECT_EQ(buttonTitle(), " 3");
}

TEST_F(Status, the_error_is_not_looked_at_where_there_is_a_body) {
    launchAnswered(snapshot(0));
    const auto exchange = refresh();
    exchange->answerInPart(200, snapshot(2));
    exchange->fail("The network connection was lost.");
    platform->settle();
    EXPECT_EQ(buttonTitle(), " 2");
}

TEST_F(Status, an_answer_that_is_no_snapshot_counts_as_unreachable) {
    for (const std::string body : {"", "garbage", R"({"error":"bad token"})", "[]"}) {
        launchAnswered(snapshot(1));
        refresh()->answer(200, body);
        platform->settle();
        EXPECT_EQ(header(), "Server not reachable") << body;
    }
}

TEST_F(Status, an_answer_after_11_seconds_is_too_late) {
    launchAnswered(snapshot(2));
    const auto exchange = refresh();
    platform->advance(9.9);
    EXPECT_EQ(buttonTitle(), " 2");
    platform->advance(0.1);
    EXPECT_EQ(header(), "Server not reachable");
    platform->advance(1);
    exchange->answer(200, snapshot(1));
    platform->settle();
    EXPECT_EQ(header(), "Server not reachable");
}

TEST_F(Status, an_answer_just_in_time_counts) {
    launchAnswered(snapshot(2));
    const auto exchange = refresh();
    platform->advance(9.9);
    exchange->answer(200, snapshot(1));
    platform->settle();
    EXPECT_EQ(buttonTitle(), " 1");
}

TEST_F(Status, the_last_answer_to_arrive_wins_even_if_it_was_asked_for_first) {
    launchAnswered(snapshot(0));
    const auto first = refresh();
    const auto second = refresh();
    const auto third = refresh();
    second->answer(200, snapshot(2));
    platform->settle();
    EXPECT_EQ(buttonTitle(), " 2");
    third->fail("lost");
    platform->settle();
    EXPECT_EQ(header(), "Server not reachable");
    first->answer(200, snapshot(1));
    platform->settle();
    EXPECT_EQ(buttonTitle(), " 1");
}

TEST_F(Status, answers_that_are_decoded_out_of_order_are_shown_in_the_order_they_were_posted) {
    launchAnswered(snapshot(0));
    const auto first = refresh();
    const auto second = refresh();
    first->answer(200, snapshot(1));
    second->answer(200, snapshot(2));
    platform->scheduler().setWorkerChoice([](std::size_t count) { return count - 1; });
    platform->settle();
    EXPECT_EQ(buttonTitle(), " 1");
}

TEST_F(Status, refreshes_are_neither_joined_nor_cancelled) {
    launchAnswered(snapshot(0));
    for (int i = 0; i < 5; ++i)
        refresh();
    EXPECT_GE(session().open().size(), 5U);
}

TEST_F(Status, a_poll_is_made_every_3_seconds_while_others_are_in_flight) {
    launchReady(4711);
    platform->advance(9);
    EXPECT_EQ(log().linesOf("session GET http://localhost:4711/api/state").size(), 3U);
}

TEST_F(Status, after_a_failure_the_next_poll_tries_again) {
    launchReady(4711);
    platform->advance(2.5);
    session().open().back()->fail("lost");
    platform->settle();
    EXPECT_EQ(header(), "Server not reachable");
    platform->advance(3);
    session().open().back()->answer(200, snapshot(1));
    platform->settle();
    EXPECT_EQ(buttonTitle(), " 1");
}

TEST_F(Status, opening_the_menu_refreshes_and_shows_the_menu_as_it_was) {
    launchAnswered(snapshot(0));
    const auto onScreen = statusItem().simulateOpen();
    EXPECT_THAT(log().lines(), ElementsAre("session GET http://localhost:4711/api/state"));
    session().open().back()->answer(200, snapshot(2));
    platform->settle();
    EXPECT_EQ(onScreen.items.at(2).title, "No projects running");
    EXPECT_EQ(header(), "Running projects") << "for the next opening";
}

TEST_F(Status, opening_the_first_empty_menu_does_nothing_harmful) {
    launch();
    log().clear();
    EXPECT_NO_THROW(statusItem().simulateOpen());
    EXPECT_FALSE(statusItem().menuHasDelegate());
    EXPECT_THAT(log().lines(), IsEmpty()) << "nobody hears of it";
}

TEST_F(Status, an_answer_for_a_delegate_that_is_gone_is_dropped) {
    launchAnswered(snapshot(0));
    const auto item = delegate->statusItem;
    const auto decoded = refresh();
    const auto posted = refresh();
    posted->answer(200, snapshot(2));
    platform->scheduler().runWorkers();
    dropDelegate();
    decoded->answer(200, snapshot(1));
    log().clear();
    EXPECT_NO_THROW(platform->settle());
    EXPECT_THAT(log().lines(), IsEmpty());
    EXPECT_EQ(buttonTitle(), "");
}

TEST_F(Status, the_menus_own_commands_open_and_quit) {
    launchAnswered(snapshot(0));
    application().simulateChoice(*statusItem().menu(), {"Open Harbrook"});
    EXPECT_THAT(
        log().take(),
        ElementsAre("window makeKeyAndOrderFront", "application activateIgnoringOtherApps: true"));
    application().simulateChoice(*statusItem().menu(), {"Quit Harbrook"});
    EXPECT_THAT(log().lines(), ElementsAre("application terminate", "task terminate", "task waitUntilExit"));
}

TEST_F(Status, rendering_without_a_status_item_stops_the_process) {
    makeShell();
    EXPECT_DEATH(delegate->renderStatus(std::nullopt), "missing");
}

} // namespace
} // namespace harbrook::tests
