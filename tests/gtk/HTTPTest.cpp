#include "tests/gtk/support/RealPlatform.h"
#include "tests/gtk/support/ScriptedServer.h"
#include "tests/support/Shared.h"

#include <glib.h>
#include <gmock/gmock.h>

#include <atomic>

namespace harbrook::tests {

namespace {

using testing::HasSubstr;

/// How the session meets servers that are not as one would like them.
class HTTP : public testing::Test {
protected:
    struct Outcome {
        std::optional<std::string> body;
        std::optional<URLResponse> response;
        std::optional<Error> error;
        bool arrived = false;
    };
    using Outcomes = Shared<Outcome>;

    [[nodiscard]] static URLRequest requestFor(const std::string& address) {
        return URLRequest(*URL::URLWithString(address));
    }

    static void send(const URLRequest& request, const std::shared_ptr<Outcomes>& outcome) {
        gtkPlatform()
            .sharedSession()
            .dataTaskWithRequest(
                request,
                [outcome](
                    std::optional<std::string> body, std::optional<URLResponse> response,
                    std::optional<Error> error) {
                    outcome->change([&](Outcome& all) {
                        all = {std::move(body), response, std::move(error), true};
                    });
                })
            ->resume();
    }

    [[nodiscard]] static Outcome exchange(const URLRequest& request) {
        const auto outcome = std::make_shared<Outcomes>();
        send(request, outcome);
        EXPECT_TRUE(runMainLoopUntil([&] { return outcome->get().arrived; }));
        return outcome->get();
    }

    [[nodiscard]] static Outcome get(const std::string& address) { return exchange(requestFor(address)); }

    /// A server that answers "path connection", and the body it was sent.
    [[nodiscard]] static ScriptedServer::Handler echo() {
        return [](const ScriptedServer::Request& request) -> ScriptedServer::Reply {
            return {ScriptedServer::answer(200, request.target + " " + request.body)};
        };
    }
};

TEST_F(HTTP, localhost_is_either_loopback_address) {
    const ScriptedServer four(echo(), "127.0.0.1");
    EXPECT_EQ(get(four.address("/4")).body, "/4 ");
    const ScriptedServer six(echo(), "::1");
    EXPECT_EQ(get(six.address("/6")).body, "/6 ");
}

TEST_F(HTTP, sends_the_request_as_it_is_and_nothing_of_its_own_that_tells_on_the_user) {
    const ScriptedServer server(echo());
    auto request = requestFor(server.address("/api/project/start?x=%20"));
    request.httpMethod = "POST";
    request.headerFields = {{"X-Harbrook-Token", "0123abcd"}, {"Content-Type", "application/json"}};
    request.httpBody = std::string("{\"path\":\"\xC3\xA4\"}");
    EXPECT_EQ(exchange(request).response, URLResponse{200});
    const auto seen = server.requests().at(0);
    EXPECT_EQ(seen.method, "POST");
    EXPECT_EQ(seen.target, "/api/project/start?x=%20");
    EXPECT_EQ(seen.body, *request.httpBody);
    EXPECT_EQ(seen.headers.at("x-harbrook-token"), "0123abcd");
    EXPECT_EQ(seen.headers.at("content-type"), "application/json");
    for (const auto& [name, value] : seen.headers) {
        EXPECT_THAT(
            (std::vector<std::string>{
                "host", "connection", "content-length", "content-type", "x-harbrook-token", "user-agent"}),
            testing::Contains(name));
    }
}

TEST_F(HTTP, a_body_without_a_type_is_sent_without_one) {
    const ScriptedServer server(echo());
    auto request = requestFor(server.address("/"));
    request.httpMethod = "POST";
    request.httpBody = "words";
    EXPECT_EQ(exchange(request).body, "/ words");
}

TEST_F(HTTP, no_proxy_is_asked) {
    const ScriptedServer proxy([](const ScriptedServer::Request&) -> ScriptedServer::Reply {
        return {ScriptedServer::answer(200, "by proxy")};
    });
    setenv("http_proxy", proxy.address("").c_str(), 1);
    const ScriptedServer server(echo());
    EXPECT_EQ(get(server.address("/straight")).body, "/straight ");
    unsetenv("http_proxy");
    EXPECT_TRUE(proxy.requests().empty());
}

TEST_F(HTTP, a_connection_is_used_again_for_questions) {
    const ScriptedServer server(echo());
    EXPECT_EQ(get(server.address("/1")).body, "/1 ");
    EXPECT_EQ(get(server.address("/2")).body, "/2 ");
    EXPECT_EQ(server.requests().at(1).connection, 1);
}

TEST_F(HTTP, a_connection_that_the_server_closed_is_replaced) {
    ScriptedServer server(echo());
    EXPECT_EQ(get(server.address("/1")).body, "/1 ");
    server.closeConnections();
    EXPECT_EQ(get(server.address("/2")).body, "/2 ");
    auto request = requestFor(server.address("/3"));
    request.httpMethod = "POST";
    request.httpBody = "x";
    server.closeConnections();
    EXPECT_EQ(exchange(request).body, "/3 x");
}

TEST_F(HTTP, a_question_that_meets_a_closing_connection_is_asked_again) {
    const ScriptedServer server([](const ScriptedServer::Request& request) -> ScriptedServer::Reply {
        // The idle connection is closed at the very moment at which it is used again.
        if (request.number > 1) return {"", 0, true};
        return {ScriptedServer::answer(200, request.target)};
    });
    EXPECT_EQ(get(server.address("/1")).body, "/1");
    EXPECT_EQ(get(server.address("/2")).body, "/2");
    auto command = requestFor(server.address("/3"));
    command.httpMethod = "POST";
    EXPECT_EQ(exchange(command).body, "/3");
}

TEST_F(HTTP, a_server_that_was_started_again_on_its_port_answers) {
    auto first = std::make_unique<ScriptedServer>(echo());
    const int port = first->port();
    EXPECT_EQ(get(first->address("/1")).body, "/1 ");
    first.reset();
    const ScriptedServer second(echo(), "127.0.0.1", port);
    EXPECT_EQ(get(second.address("/2")).body, "/2 ");
}

TEST_F(HTTP, a_redirect_inside_the_origin_is_followed_with_the_token) {
    const ScriptedServer server([](const ScriptedServer::Request& request) -> ScriptedServer::Reply {
        if (request.target == "/old") return {ScriptedServer::answer(302, "moved", "Location: /new\r\n")};
        return {ScriptedServer::answer(200, request.target + " " + request.headers.at("x-harbrook-token"))};
    });
    auto request = requestFor(server.address("/old"));
    request.headerFields["X-Harbrook-Token"] = "secret";
    EXPECT_EQ(exchange(request).body, "/new secret");
}

TEST_F(HTTP, a_redirect_to_another_origin_is_the_answer_and_nothing_reaches_that_origin) {
    const ScriptedServer other(echo());
    const std::string elsewhere = other.address("/catch");
    const ScriptedServer server([&](const ScriptedServer::Request&) -> ScriptedServer::Reply {
        return {ScriptedServer::answer(307, "go there", "Location: " + elsewhere + "\r\n")};
    });
    auto request = requestFor(server.address("/"));
    request.headerFields["X-Harbrook-Token"] = "secret";
    const auto outcome = exchange(request);
    EXPECT_EQ(outcome.response, URLResponse{307});
    EXPECT_EQ(outcome.body, "go there");
    EXPECT_TRUE(other.requests().empty());
}

TEST_F(HTTP, a_command_that_was_seen_to_is_followed_by_a_question) {
    const ScriptedServer server([](const ScriptedServer::Request& request) -> ScriptedServer::Reply {
        if (request.target == "/do") return {ScriptedServer::answer(303, "", "Location: /done\r\n")};
        return {ScriptedServer::answer(200, request.method + " " + request.body)};
    });
    auto request = requestFor(server.address("/do"));
    request.httpMethod = "POST";
    request.httpBody = "body";
    EXPECT_EQ(exchange(request).body, "GET ");
}

TEST_F(HTTP, redirects_without_end_are_an_error) {
    const ScriptedServer server([](const ScriptedServer::Request&) -> ScriptedServer::Reply {
        return {ScriptedServer::answer(302, "", "Location: /again\r\n")};
    });
    const auto outcome = get(server.address("/"));
    EXPECT_TRUE(outcome.error.has_value());
    EXPECT_FALSE(outcome.body.has_value());
    EXPECT_EQ(server.requests().size(), 21U);
}

TEST_F(HTTP, a_redirection_that_is_cut_short_is_no_answer) {
    const ScriptedServer server([](const ScriptedServer::Request&) -> ScriptedServer::Reply {
        return {"HTTP/1.1 302 Found\r\nLocation: /there\r\nContent-Length: 100\r\n\r\nonly a part", 0, true};
    });
    const auto outcome = get(server.address("/"));
    EXPECT_FALSE(outcome.body.has_value());
    EXPECT_FALSE(outcome.response.has_value());
    EXPECT_TRUE(outcome.error.has_value());
}

TEST_F(HTTP, a_body_without_a_length_ends_with_the_connection) {
    const ScriptedServer server([](const ScriptedServer::Request&) -> ScriptedServer::Reply {
        return {"HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nall of it", 0, true};
    });
    EXPECT_EQ(get(server.address("/")).body, "all of it");
}

TEST_F(HTTP, what_is_not_http_is_an_error) {
    const ScriptedServer server([](const ScriptedServer::Request&) -> ScriptedServer::Reply {
        return {"220 mail.example ready\r\n", 0, true};
    });
    const auto outcome = get(server.address("/"));
    EXPECT_FALSE(outcome.body.has_value());
    EXPECT_TRUE(outcome.error.has_value());
    EXPECT_TRUE(get("file:///etc/hostname").error.has_value());
    EXPECT_TRUE(get("mailto:someone@example.invalid").error.has_value());
}

TEST_F(HTTP, a_large_body_arrives_whole_and_one_without_end_is_an_error) {
    constexpr std::size_t megabyte = std::size_t{1024} * 1024;
    const ScriptedServer server([](const ScriptedServer::Request& request) -> ScriptedServer::Reply {
        const std::size_t size = (request.target == "/large" ? 8U : 65U) * megabyte;
        return {ScriptedServer::answer(200, std::string(size, 'x'))};
    });
    EXPECT_EQ(get(server.address("/large")).body->size(), 8 * megabyte);
    const auto outcome = get(server.address("/endless"));
    EXPECT_FALSE(outcome.body.has_value());
    EXPECT_EQ(outcome.response, URLResponse{200});
    EXPECT_TRUE(outcome.error.has_value());
}

TEST_F(HTTP, requests_that_hang_hold_up_no_other) {
    const ScriptedServer server([](const ScriptedServer::Request& request) -> ScriptedServer::Reply {
        return {ScriptedServer::answer(200, request.target), request.target == "/hang" ? 60.0 : 0.0};
    });
    std::vector<std::shared_ptr<Outcomes>> hanging(20);
    for (auto& outcome : hanging) {
        outcome = std::make_shared<Outcomes>();
        send(requestFor(server.address("/hang")), outcome);
    }
    EXPECT_EQ(get(server.address("/quick")).body, "/quick");
    for (const auto& outcome : hanging)
        EXPECT_FALSE(outcome->get().arrived);
}

TEST_F(HTTP, a_handler_that_takes_its_time_makes_no_other_exchange_time_out) {
    const ScriptedServer server(echo());
    const auto entered = gtkPlatform().makeSemaphore(0);
    const auto gate = gtkPlatform().makeSemaphore(0);
    gtkPlatform()
        .sharedSession()
        .dataTaskWithRequest(
            requestFor(server.address("/first")),
            [entered, gate](auto, auto, auto) {
                entered->signal();
                static_cast<void>(gate->wait(60));
            })
        ->resume();
    ASSERT_TRUE(entered->wait(30));
    auto request = requestFor(server.address("/second"));
    request.timeoutInterval = 3;
    const auto outcome = std::make_shared<Outcomes>();
    send(request, outcome);
    // The handler holds its thread until the time of the other exchange, which has long been answered, is
    // over.
    static_cast<void>(runMainLoopUntil([] { return false; }, request.timeoutInterval + 0.2));
    EXPECT_FALSE(outcome->get().arrived);
    gate->signal();
    EXPECT_TRUE(runMainLoopUntil([&] { return outcome->get().arrived; }));
    EXPECT_EQ(outcome->get().body, "/second ");
}

TEST_F(HTTP, a_body_that_trickles_is_cut_by_the_total_time) {
    const ScriptedServer server([](const ScriptedServer::Request&) -> ScriptedServer::Reply {
        return {"HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\na beginning"};
    });
    auto request = requestFor(server.address("/"));
    request.timeoutInterval = 0.2;
    const auto outcome = exchange(request);
    EXPECT_EQ(outcome.body, "a beginning");
    EXPECT_THAT(outcome.error.value_or(Error{}).localizedDescription, HasSubstr("timed out"));
}

} // namespace

} // namespace harbrook::tests
