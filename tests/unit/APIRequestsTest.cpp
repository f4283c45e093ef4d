#include "tests/unit/ShellTest.h"

namespace harbrook::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class APIRequests : public ShellTest {
protected:
    void SetUp() override { makeShell(); }

    void serverOn(std::int64_t port) {
        globals->setServerPort(port);
        globals->setBaseURL(*URL::URLWithString("http://localhost:" + std::to_string(port) + "/"));
    }
    void probe() {
        delegate->serverIsUp([this](bool up) {
            EXPECT_FALSE(platform->isMainThread());
            answers.push_back(up);
        });
        platform->settle();
    }

    std::vector<bool> answers;
};

TEST_F(APIRequests, a_request_has_the_properties_of_the_rule) {
    serverOn(47545);
    const auto request = delegate->apiRequest("api/settings");
    EXPECT_EQ(request.url.absoluteString(), "http://localhost:47545/api/settings");
    EXPECT_EQ(request.httpMethod, "GET");
    EXPECT_EQ(request.cachePolicy, CachePolicy::useProtocolCachePolicy);
    EXPECT_EQ(request.timeoutInterval, 1.5);
    EXPECT_EQ(request.httpBody, std::nullopt);
    EXPECT_THAT(request.headerFields, ElementsAre(std::pair("X-Harbrook-Token", globals->apiToken)));
}

TEST_F(APIRequests, the_time_out_is_the_callers) {
    EXPECT_EQ(delegate->apiRequest("api/state", 10.0).timeoutInterval, 10.0);
}

TEST_F(APIRequests, before_the_announcement_the_address_is_the_placeholder) {
    EXPECT_EQ(delegate->apiRequest("api/state").url.absoluteString(), "http://localhost:1/api/state");
}

TEST_F(APIRequests, the_address_is_the_one_at_the_moment_of_the_call) {
    const auto before = delegate->apiRequest("api/state");
    serverOn(3000);
    EXPECT_EQ(before.url.absoluteString(), "http://localhost:1/api/state");
    EXPECT_EQ(delegate->apiRequest("api/state").url.absoluteString(), "http://localhost:3000/api/state");
}

TEST_F(APIRequests, a_path_keeps_its_slashes_and_has_the_rest_encoded) {
    serverOn(3000);
    const auto address = [&](const std::string& path) {
        return delegate->apiRequest(path).url.absoluteString();
    };
    EXPECT_EQ(address("api/project/start"), "http://localhost:3000/api/project/start");
    EXPECT_EQ(address("api/a b"), "http://localhost:3000/api/a%20b");
    EXPECT_EQ(address("api/a?b#c"), "http://localhost:3000/api/a%3Fb%23c");
    EXPECT_EQ(address("api/%41"), "http://localhost:3000/api/%2541");
    EXPECT_EQ(address("api/\xC3\xA9"), "http://localhost:3000/api/%C3%A9");
}

TEST_F(APIRequests, the_liveness_probe_asks_for_the_settings) {
    serverOn(3000);
    probe();
    ASSERT_EQ(session().open().size(), 1U);
    EXPECT_EQ(session().open()[0]->request(), delegate->apiRequest("api/settings"));
    EXPECT_THAT(answers, IsEmpty());
}

class ProbedStatus : public APIRequests, public testing::WithParamInterface<int> {};

TEST_P(ProbedStatus, is_up_only_when_it_is_200) {
    serverOn(3000);
    probe();
    session().open().at(0)->answer(GetParam(), "body");
    platform->settle();
    EXPECT_THAT(answers, ElementsAre(GetParam() == 200));
}

INSTANTIATE_TEST_SUITE_P(
    Codes, ProbedStatus, testing::Values(200, 201, 204, 301, 304, 400, 401, 403, 404, 500, 503, 0));

TEST_F(APIRequests, a_refused_connection_is_not_up) {
    probe();
    EXPECT_THAT(answers, ElementsAre(false));
}

TEST_F(APIRequests, an_answer_that_is_not_http_is_not_up) {
    serverOn(3000);
    probe();
    session().open().at(0)->answerWithoutStatus("200");
    platform->settle();
    EXPECT_THAT(answers, ElementsAre(false));
}

TEST_F(APIRequests, a_response_of_200_is_up_whatever_becomes_of_its_body) {
    serverOn(3000);
    probe();
    session().open().at(0)->answerInPart(200, "a part");
    session().open().at(0)->fail("The network connection was lost.");
    platform->settle();
    EXPECT_THAT(answers, ElementsAre(true));
    probe();
    session().open().at(0)->answerInPart(200);
    platform->advance(1.5);
    EXPECT_THAT(answers, ElementsAre(true, true));
    probe();
    session().open().at(0)->answerInPart(500, "a part");
    session().open().at(0)->fail("The network connection was lost.");
    platform->settle();
    EXPECT_THAT(answers, ElementsAre(true, true, false));
}

TEST_F(APIRequests, an_answer_after_2_seconds_is_too_late) {
    serverOn(3000);
    probe();
    platform->advance(1.499);
    EXPECT_THAT(answers, IsEmpty());
    platform->advance(0.001);
    EXPECT_THAT(answers, ElementsAre(false));
    platform->advance(0.5);
    session().exchanges().at(0)->answer(200);
    platform->settle();
    EXPECT_THAT(answers, ElementsAre(false));
}

} // namespace
} // namespace harbrook::tests
