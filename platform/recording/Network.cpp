#include "platform/recording/Network.h"

#include <algorithm>
#include <iterator>

namespace harbrook::recording {

Exchange::Exchange(
    WorldPtr world, URLSession& session, URLRequest request, harbrook::URLSession::CompletionHandler handler)
    : world_(std::move(world)),
      session_(session),
      request_(std::move(request)),
      handler_(std::move(handler)) {}

void Exchange::resume() {
    refuseIf(resumed_, "a data task was resumed twice");
    resumed_ = true;
    world_->note("session " + request_.httpMethod + " " + request_.url.absoluteString());
    session_.exchanges_.push_back(shared_from_this());
    if (request_.url.port() && session_.closedPorts.contains(*request_.url.port())) {
        fail("Could not connect to the server.");
        return;
    }
    world_->scheduler.addOutsideEvent(request_.timeoutInterval, [weak = weak_from_this()] {
        if (const auto self = weak.lock(); self && self->isOpen()) self->fail("The request timed out.");
    });
}

void Exchange::answer(int statusCode, std::string body) {
    complete(std::move(body), URLResponse{statusCode}, std::nullopt);
}

void Exchange::answerInPart(int statusCode, std::string body) {
    response_ = URLResponse{statusCode};
    if (!body.empty()) body_ = std::move(body);
}

void Exchange::answerWithoutStatus(std::string body) {
    complete(std::move(body), URLResponse{std::nullopt}, std::nullopt);
}

void Exchange::fail(const std::string& localizedDescription) {
    complete(body_, response_, Error{localizedDescription});
}

void Exchange::complete(Body body, std::optional<URLResponse> response, std::optional<Error> error) {
    refuseIf(!resumed_, "an exchange was answered before it was resumed");
    if (!handler_) return;
    world_->scheduler.addWorker(
        "session " + std::to_string(++session_.answers_),
        [handler = std::exchange(handler_, {}), body = std::move(body), response, error = std::move(error)] {
            handler(body, response, error);
        });
}

std::shared_ptr<URLSessionDataTask> URLSession::dataTaskWithRequest(
    URLRequest request, CompletionHandler completionHandler) {
    return std::make_shared<Exchange>(world_, *this, std::move(request), std::move(completionHandler));
}

std::vector<std::shared_ptr<Exchange>> URLSession::open() const {
    std::vector<std::shared_ptr<Exchange>> found;
    std::ranges::copy_if(
        exchanges_, std::back_inserter(found), [](const auto& exchange) { return exchange->isOpen(); });
    return found;
}

void URLSession::forgetAnswered() {
    std::erase_if(exchanges_, [](const auto& exchange) { return !exchange->isOpen(); });
}

} // namespace harbrook::recording
