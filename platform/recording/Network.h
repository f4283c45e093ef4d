#pragma once

#include "platform/Network.h"
#include "platform/recording/World.h"

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace harbrook::recording {

class URLSession;

/// One exchange, in the hands of the test once it was resumed. What it is answered with reaches the shell on
/// a worker called "session 1", "session 2" and so on, in the order of the answers.
class Exchange final : public URLSessionDataTask, public std::enable_shared_from_this<Exchange> {
public:
    using Body = std::optional<std::string>;

    Exchange(
        WorldPtr world, URLSession& session, URLRequest request,
        harbrook::URLSession::CompletionHandler handler);

    void resume() override;

    [[nodiscard]] const URLRequest& request() const { return request_; }
    /// Whether nothing has come back yet.
    [[nodiscard]] bool isOpen() const { return resumed_ && handler_; }

    /// An HTTP answer. One that comes after the time-out reaches nobody.
    void answer(int statusCode, std::string body = {});
    /// The head of an HTTP answer and the beginning of its body; the rest is cut off (`fail`) or never comes.
    void answerInPart(int statusCode, std::string body = {});
    /// An answer of another protocol than HTTP.
    void answerWithoutStatus(std::string body);
    void fail(const std::string& localizedDescription);
    /// Lets go of whoever waits for the answer.
    void forgetHandler() { handler_ = {}; }

private:
    void complete(Body body, std::optional<URLResponse> response, std::optional<Error> error);

    WorldPtr world_;
    URLSession& session_;
    URLRequest request_;
    harbrook::URLSession::CompletionHandler handler_;
    bool resumed_ = false;
    std::optional<URLResponse> response_;
    Body body_;
};

class URLSession final : public harbrook::URLSession {
public:
    explicit URLSession(WorldPtr world) : world_(std::move(world)) {}

    std::shared_ptr<URLSessionDataTask> dataTaskWithRequest(
        URLRequest request, CompletionHandler completionHandler) override;

    /// The exchanges that were resumed, oldest first.
    [[nodiscard]] const std::vector<std::shared_ptr<Exchange>>& exchanges() const { return exchanges_; }
    /// The exchanges to which nothing has come back yet, oldest first.
    [[nodiscard]] std::vector<std::shared_ptr<Exchange>> open() const;
    /// Lets go of the exchanges that are over, which a long run would only pile up.
    void forgetAnswered();
    /// Nobody listens on port 1, so that requests to it fail at once. A test may close or open others.
    std::set<std::int64_t> closedPorts{1};

private:
    friend class Exchange;

    WorldPtr world_;
    std::vector<std::shared_ptr<Exchange>> exchanges_;
    int answers_ = 0;
};

} // namespace harbrook::recording
