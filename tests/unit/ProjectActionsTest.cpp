#include "tests/unit/ShellTest.h"

#include <nlohmann/json.hpp>

namespace harbrook::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

MenuItem itemWith(MenuItem::RepresentedObject object) {
    MenuItem item;
    item.representedObject = std::move(object);
    return item;
}

class ProjectActions : public ShellTest {
protected:
    void SetUp() override {
        launchReady(4711);
        delegate->pollTimer.reset();
        for (const auto& exchange : session().open())
            exchange->answer(200);
        platform->settle();
        log().clear();
    }

    std::shared_ptr<recording::Exchange> toggle(const std::string& represented) {
        delegate->toggleProject(itemWith(represented));
        return session().exchanges().back();
    }
    [[nodiscard]] std::size_t refreshes() const {
        return log().linesOf("session GET http://localhost:4711/api/state").size();
    }
};

TEST_F(ProjectActions, a_port_opens_in_the_browser) {
    delegate->openPort(itemWith(std::int64_t{3000}));
    EXPECT_THAT(log().lines(), ElementsAre("workspace openURL: http://localhost:3000"));
}

TEST_F(ProjectActions, a_port_that_makes_no_url_opens_nothing) {
    delegate->openPort(itemWith(std::int64_t{-1}));
    EXPECT_THAT(log().lines(), IsEmpty());
}

TEST_F(ProjectActions, a_project_opens_in_the_dashboard) {
    delegate->openProject(itemWith("/Users/me/my app"));
    EXPECT_THAT(
        log().lines(), ElementsAre(
                           "window makeKeyAndOrderFront", "application activateIgnoringOtherApps: true",
                           "webView evaluateJavaScript: location.hash = '#/p/%2FUsers%2Fme%2Fmy%20app'"));
}

TEST_F(ProjectActions, a_path_cannot_break_out_of_the_script) {
    delegate->openProject(itemWith("/it's\\\n\"x\"/caf\xC3\xA9"));
    EXPECT_THAT(
        log().linesOf("webView"), ElementsAre("webView evaluateJavaScript: location.hash = "
                                              "'#/p/%2Fit%27s%5C%0A%22x%22%2Fcaf\xC3\xA9'"));
}

TEST_F(ProjectActions, a_path_that_cannot_be_encoded_does_nothing) {
    delegate->openProject(itemWith("/a\xFF"));
    EXPECT_THAT(log().lines(), IsEmpty());
}

TEST_F(ProjectActions, an_item_without_the_right_object_does_nothing) {
    for (const auto& item : {itemWith({}), itemWith("3000")})
        delegate->openPort(item);
    for (const auto& item : {itemWith({}), itemWith(std::int64_t{3000})}) {
        delegate->openProject(item);
        delegate->toggleProject(item);
    }
    for (const auto* text : {"", "start", "start\n", "\n/a", "\n"})
        delegate->toggleProject(itemWith(text));
    platform->advance(10);
    EXPECT_THAT(log().lines(), IsEmpty());
}

TEST_F(ProjectActions, a_toggle_posts_the_path_with_exactly_these_headers) {
    const auto request = toggle("stop\n/a/b")->request();
    EXPECT_EQ(request.url.absoluteString(), "http://localhost:4711/api/project/stop");
    EXPECT_EQ(request.httpMethod, "POST");
    EXPECT_EQ(request.timeoutInterval, 30.0);
    EXPECT_EQ(request.cachePolicy, CachePolicy::useProtocolCachePolicy);
    EXPECT_THAT(
        request.headerFields,
        ElementsAre(
            std::pair("Content-Type", "application/json"), std::pair("X-Harbrook", "1"),
            std::pair("X-Harbrook-Source", "menubar"), std::pair("X-Harbrook-Token", globals->apiToken)));
    EXPECT_EQ(nlohmann::json::parse(request.httpBody.value()), (nlohmann::json{{"path", "/a/b"}}));
}

TEST_F(ProjectActions, the_verb_is_the_end_of_the_address) {
    EXPECT_EQ(
        toggle("start\n/a\nb")->request().url.absoluteString(), "http://localhost:4711/api/project/start");
    EXPECT_EQ(
        nlohmann::json::parse(session().exchanges().back()->request().httpBody.value()),
        (nlohmann::json{{"path", "/a\nb"}}));
}

TEST_F(ProjectActions, a_path_that_cannot_be_written_is_sent_without_a_body) {
    const auto request = toggle("start\n/a\xFF")->request();
    EXPECT_EQ(request.httpMethod, "POST");
    EXPECT_EQ(request.httpBody, std::nullopt);
}

TEST_F(ProjectActions, nothing_is_refreshed_before_the_answer) {
    toggle("stop\n/a");
    platform->advance(29);
    EXPECT_EQ(refreshes(), 0U);
}

TEST_F(ProjectActions, the_answer_is_followed_by_refreshes_at_once_and_after_1_2_and_a_half_and_5_seconds) {
    const auto exchange = toggle("stop\n/a");
    platform->advance(2);
    exchange->answer(200, R"({"ok":true})");
    platform->settle();
    EXPECT_EQ(refreshes(), 1U);
    platform->advance(0.999);
    EXPECT_EQ(refreshes(), 1U);
    platform->advance(0.001);
    EXPECT_EQ(refreshes(), 2U);
    platform->advance(1.499);
    EXPECT_EQ(refreshes(), 2U);
    platform->advance(0.001);
    EXPECT_EQ(refreshes(), 3U);
    platform->advance(2.499);
    EXPECT_EQ(refreshes(), 3U);
    platform->advance(0.001);
    EXPECT_EQ(refreshes(), 4U);
    platform->advance(60);
    EXPECT_EQ(refreshes(), 4U);
}

TEST_F(ProjectActions, the_refreshes_start_on_the_main_thread) {
    toggle("stop\n/a")->answer(200);
    platform->scheduler().runWorkers();
    EXPECT_EQ(refreshes(), 0U);
    platform->scheduler().runMainQueue();
    EXPECT_EQ(refreshes(), 1U);
}

TEST_F(ProjectActions, the_refreshes_are_the_same_however_the_request_ends) {
    for (const int code : {200, 401, 404, 500}) {
        toggle("stop\n/a")->answer(code, "whatever");
        log().clear();
        platform->advance(5);
        EXPECT_EQ(refreshes(), 4U) << code;
    }
    toggle("stop\n/a")->fail("Could not connect to the server.");
    log().clear();
    platform->advance(5);
    EXPECT_EQ(refreshes(), 4U);
    EXPECT_THAT(log().linesOf("alert"), IsEmpty());
    EXPECT_THAT(log().linesOf("label"), IsEmpty());
}

TEST_F(ProjectActions, a_request_without_an_answer_ends_after_30_seconds) {
    toggle("stop\n/a");
    platform->advance(29.999);
    EXPECT_EQ(refreshes(), 0U);
    platform->advance(0.001);
    EXPECT_EQ(refreshes(), 1U);
}

TEST_F(ProjectActions, two_toggles_have_two_sets_of_refreshes) {
    const auto first = toggle("stop\n/a");
    const auto second = toggle("start\n/a");
    second->answer(200);
    platform->advance(0.5);
    first->answer(200);
    platform->advance(5);
    EXPECT_EQ(refreshes(), 8U);
}

TEST_F(ProjectActions, the_regular_polls_go_on_beside_the_refreshes) {
    delegate->pollTimer =
        platform->scheduledTimerWithTimeInterval(3.0, true, [this] { delegate->refreshStatus(); });
    toggle("stop\n/a")->answer(200);
    log().clear();
    platform->advance(6);
    EXPECT_EQ(refreshes(), 6U);
}

TEST_F(ProjectActions, nothing_is_refreshed_when_the_delegate_is_gone) {
    const auto before = toggle("stop\n/a");
    toggle("stop\n/b")->answer(200);
    platform->settle();
    dropDelegate();
    log().clear();
    before->answer(200);
    platform->advance(10);
    EXPECT_EQ(refreshes(), 0U);
}

TEST_F(ProjectActions, the_menus_items_lead_to_them) {
    delegate->refreshStatus();
    session().exchanges().back()->answer(
        200, R"({"projects":[{"name":"shop","path":"/p/shop","running":true,"ports":[3000],"appRunning":true},
                 {"name":"docs","path":"/p/docs","running":false,"ports":[],"hasCommand":true}],
                 "stats":{"running":0,"postgres":0,"redis":0,"containers":0}})");
    platform->settle();
    const auto menu = statusItem().menu().value();
    const auto choose = [&](const std::vector<std::string>& titles) {
        log().clear();
        application().simulateChoice(menu, titles);
        return log().take();
    };
    const std::string project = "shop   :3000";
    EXPECT_THAT(
        choose({project, "Open localhost:3000 in browser"}),
        ElementsAre("workspace openURL: http://localhost:3000"));
    EXPECT_THAT(
        choose({project, "Show in Harbrook"}),
        testing::Contains("webView evaluateJavaScript: location.hash = '#/p/%2Fp%2Fshop'"));
    EXPECT_THAT(
        choose({project, "Stop shop"}), ElementsAre("session POST http://localhost:4711/api/project/stop"));
    EXPECT_THAT(
        choose({"Start a project", "docs"}),
        ElementsAre("session POST http://localhost:4711/api/project/start"));
}

} // namespace
} // namespace harbrook::tests
