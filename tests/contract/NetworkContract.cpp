#include "tests/contract/Desktop.h"
#include "tests/support/Shared.h"

#include <atomic>

namespace harbrook::contract {

namespace {

class Network : public Contract {
protected:
    struct Outcome {
        std::optional<std::string> body;
        std::optional<URLResponse> response;
        std::optional<Error> error;
        int calls = 0;
        bool onMainThread = false;
    };

    [[nodiscard]] Outcome exchange(URLRequest request) {
        tests::Shared<Outcome> outcome;
        // The task is not kept: the exchange goes on without it.
        platform()
            .sharedSession()
            .dataTaskWithRequest(
                std::move(request),
                [&](std::optional<std::string> body, std::optional<URLResponse> response,
                    std::optional<Error> error) {
                    const bool onMainThread = platform().isMainThread();
                    outcome.change([&](Outcome& all) {
                        all = {std::move(body), response, std::move(error), all.calls + 1, onMainThread};
                    });
                })
            ->resume();
        EXPECT_TRUE(runUntil([&] { return outcome.get().calls > 0; }));
        desktop().pass(0.05);
        return outcome.get();
    }

    /// Asks for an address that answers like this.
    [[nodiscard]] Outcome get(const Answer& answer, double timeout = 60) {
        URLRequest request(desktop().serve(answer));
        request.timeoutInterval = timeout;
        return exchange(std::move(request));
    }
};

TEST_P(Network, an_answer_brings_its_body_and_status_off_the_main_thread) {
    const auto outcome = get({.status = 200, .body = "words"});
    EXPECT_EQ(outcome.body, "words");
    EXPECT_EQ(outcome.response, URLResponse{200});
    EXPECT_EQ(outcome.error, std::nullopt);
    EXPECT_FALSE(outcome.onMainThread);
    EXPECT_EQ(outcome.calls, 1);
}

TEST_P(Network, an_error_status_is_an_answer_too) {
    const auto outcome = get({.status = 500, .body = "broken"});
    EXPECT_EQ(outcome.body, "broken");
    EXPECT_EQ(outcome.response, URLResponse{500});
    EXPECT_FALSE(outcome.error.has_value());
}

TEST_P(Network, an_answer_may_have_an_empty_body) {
    const auto outcome = get({.status = 200});
    EXPECT_EQ(outcome.body, "");
    EXPECT_EQ(outcome.response, URLResponse{200});
}

TEST_P(Network, a_refused_connection_is_an_error_without_body) {
    const auto outcome = exchange(URLRequest(*URL::URLWithString("http://localhost:1/api/state")));
    EXPECT_EQ(outcome.body, std::nullopt);
    EXPECT_EQ(outcome.response, std::nullopt);
    ASSERT_TRUE(outcome.error.has_value());
    EXPECT_NE(outcome.error->localizedDescription, "");
    EXPECT_EQ(outcome.calls, 1);
}

TEST_P(Network, an_answer_that_comes_too_late_is_a_timeout_as_soon_as_the_time_is_over) {
    constexpr double longAfter = 20;
    const double start = desktop().now();
    const auto outcome = get({.status = 200, .body = "late", .delay = longAfter}, 0.3);
    EXPECT_GE(desktop().now() - start, 0.3);
    EXPECT_LT(desktop().now() - start, longAfter);
    EXPECT_EQ(outcome.body, std::nullopt);
    EXPECT_EQ(outcome.response, std::nullopt);
    EXPECT_TRUE(outcome.error.has_value());
    EXPECT_EQ(outcome.calls, 1);
}

TEST_P(Network, an_answer_within_the_time_is_not_a_timeout) {
    const auto outcome = get({.body = "slow", .delay = 0.1}, 10);
    EXPECT_EQ(outcome.body, "slow");
}

TEST_P(Network, what_has_arrived_of_an_answer_counts_when_the_rest_fails_or_stalls) {
    for (const auto ending : {Ending::cutOff, Ending::stalled}) {
        const auto some = get({.body = "a part", .ending = ending}, 0.3);
        EXPECT_EQ(some.response, URLResponse{200});
        EXPECT_EQ(some.body, "a part");
        EXPECT_TRUE(some.error.has_value());
        const auto none = get({.status = 503, .ending = ending}, 0.3);
        EXPECT_EQ(none.response, URLResponse{503});
        EXPECT_EQ(none.body, std::nullopt);
        EXPECT_TRUE(none.error.has_value());
        EXPECT_EQ(none.calls, 1);
    }
}

TEST_P(Network, nothing_is_sent_before_resume) {
    std::atomic<int> calls = 0;
    const auto task = platform().sharedSession().dataTaskWithRequest(
        URLRequest(desktop().serve({.body = "words"})), [&](auto, auto, auto) { ++calls; });
    desktop().pass(0.1);
    EXPECT_EQ(calls, 0);
    task->resume();
    EXPECT_TRUE(runUntil([&] { return calls == 1; }));
}

TEST_P(Network, the_quicker_answer_comes_first_whatever_was_sent_first) {
    tests::Shared<std::string> order;
    const auto send = [&](const Answer& answer) {
        platform()
            .sharedSession()
            .dataTaskWithRequest(
                URLRequest(desktop().serve(answer)),
                [&order](std::optional<std::string> body, auto, auto) {
                    order.change([&](std::string& all) { all += body.value_or("none") + " "; });
                })
            ->resume();
    };
    send({.body = "slow", .delay = 1.0});
    send({.body = "quick"});
    EXPECT_TRUE(runUntil([&] { return order.get() == "quick slow "; }));
}

INSTANTIATE_TEST_SUITE_P(On, Network, testing::Values(implementation()), nameOf);

} // namespace

} // namespace harbrook::contract
