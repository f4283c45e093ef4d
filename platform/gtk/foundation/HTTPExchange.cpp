#include "platform/gtk/foundation/HTTPExchange.h"

#include <string_view>
#include <utility>

namespace harbrook::gtk {

namespace {

constexpr std::size_t longestBody = std::size_t{64} * 1024 * 1024;
constexpr int mostRedirects = 20;
constexpr auto uriFlags = static_cast<GUriFlags>(SOUP_HTTP_URI_FLAGS);

bool sameOrigin(GUri* one, GUri* other) {
    return g_ascii_strcasecmp(g_uri_get_scheme(one), g_uri_get_scheme(other)) == 0 &&
           g_ascii_strcasecmp(g_uri_get_host(one), g_uri_get_host(other)) == 0 &&
           g_uri_get_port(one) == g_uri_get_port(other);
}

bool isRedirection(guint status) {
    return status == SOUP_STATUS_MOVED_PERMANENTLY || status == SOUP_STATUS_FOUND ||
           status == SOUP_STATUS_SEE_OTHER || status == SOUP_STATUS_TEMPORARY_REDIRECT ||
           status == SOUP_STATUS_PERMANENT_REDIRECT;
}

} // namespace

HTTPExchange::HTTPExchange(URLRequest request, std::function<void(Outcome)> deliver)
    : request_(std::move(request)),
      deliver_(std::move(deliver)),
      cancellable_(GObjectPtr<GCancellable>::adopt(g_cancellable_new())) {}

void HTTPExchange::start(SoupSession* session) {
    if (!deliver_) return;
    session_ = GObjectPtr<SoupSession>::share(session);
    cancellable_ = GObjectPtr<GCancellable>::adopt(g_cancellable_new());
    URI uri(g_uri_parse(request_.url.absoluteString().c_str(), uriFlags, nullptr));
    if (!uri) return fail("The address is not valid.");
    const std::string_view scheme = g_uri_get_scheme(uri.get());
    const char* host = g_uri_get_host(uri.get());
    if ((scheme != "http" && scheme != "https") || !host || !*host) {
        return fail("The address is not one of a web server.");
    }
    send(std::move(uri));
}

void HTTPExchange::send(URI uri) {
    stream_ = {};
    message_ =
        GObjectPtr<SoupMessage>::adopt(soup_message_new_from_uri(request_.httpMethod.c_str(), uri.get()));
    soup_message_add_flags(message_.get(), SOUP_MESSAGE_NO_REDIRECT);
    // A connection that is used again may turn out to be closed by the server. The library then repeats a
    // request that has no effect; for any other a fresh connection rules that out.
    if (request_.httpMethod != "GET") soup_message_add_flags(message_.get(), SOUP_MESSAGE_NEW_CONNECTION);

    SoupMessageHeaders* headers = soup_message_get_request_headers(message_.get());
    for (const auto& [name, value] : request_.headerFields) {
        soup_message_headers_replace(headers, name.c_str(), value.c_str());
    }
    if (request_.httpBody) addBody();
    soup_session_send_async(
        session_.get(), message_.get(), G_PRIORITY_DEFAULT, cancellable_.get(),
        callback<&HTTPExchange::receive>, keptAlive());
}

void HTTPExchange::addBody() const {
    const GBytesPtr bytes(g_bytes_new(request_.httpBody->data(), request_.httpBody->size()));
    soup_message_set_request_body_from_bytes(message_.get(), nullptr, bytes.get());
    // The library takes the body's type out of the header fields when it is given none with the body.
    if (const auto type = request_.headerFields.find("Content-Type"); type != request_.headerFields.end()) {
        soup_message_headers_replace(
            soup_message_get_request_headers(message_.get()), "Content-Type", type->second.c_str());
    }
}

void HTTPExchange::receive(GAsyncResult* result) {
    GError* error = nullptr;
    stream_ = GObjectPtr<GInputStream>::adopt(soup_session_send_finish(session_.get(), result, &error));
    const GErrorPtr failure(error);
    if (failure) return fail(failure->message);
    body_.clear();
    readOn();
}

void HTTPExchange::readOn() {
    g_input_stream_read_async(
        stream_.get(), buffer_.data(), buffer_.size(), G_PRIORITY_DEFAULT, cancellable_.get(),
        callback<&HTTPExchange::append>, keptAlive());
}

void HTTPExchange::append(GAsyncResult* result) {
    GError* error = nullptr;
    const gssize count = g_input_stream_read_finish(stream_.get(), result, &error);
    const GErrorPtr failure(error);
    if (count < 0) return fail(failure->message);
    if (count == 0) return answerIsComplete();
    if (body_.size() + static_cast<std::size_t>(count) > longestBody) {
        g_cancellable_cancel(cancellable_.get());
        body_.clear();
        return fail("The answer is too long.");
    }
    body_.append(buffer_.data(), static_cast<std::size_t>(count));
    readOn();
}

void HTTPExchange::answerIsComplete() {
    if (auto uri = redirection()) {
        if (++redirects_ > mostRedirects) return fail("The server redirects too many times.");
        adaptRequestToRedirection();
        return send(std::move(uri));
    }
    const auto status = static_cast<int>(soup_message_get_status(message_.get()));
    finish({std::move(body_), URLResponse{status}, std::nullopt});
}

HTTPExchange::URI HTTPExchange::redirection() const {
    if (!isRedirection(soup_message_get_status(message_.get()))) return nullptr;
    const char* location =
        soup_message_headers_get_one(soup_message_get_response_headers(message_.get()), "Location");
    if (!location) return nullptr;
    GUri* current = soup_message_get_uri(message_.get());
    URI target(g_uri_parse_relative(current, location, uriFlags, nullptr));
    if (!target || !g_uri_get_host(target.get()) || !sameOrigin(current, target.get())) return nullptr;
    return target;
}

void HTTPExchange::adaptRequestToRedirection() {
    const guint status = soup_message_get_status(message_.get());
    const bool asksForAnotherPage = status == SOUP_STATUS_SEE_OTHER;
    const bool movedAfterPost = (status == SOUP_STATUS_MOVED_PERMANENTLY || status == SOUP_STATUS_FOUND) &&
                                request_.httpMethod == "POST";
    if (!asksForAnotherPage && !movedAfterPost) return;
    if (request_.httpMethod != "HEAD") request_.httpMethod = "GET";
    request_.httpBody.reset();
    request_.headerFields.erase("Content-Type");
}

void HTTPExchange::timeOut() {
    if (!deliver_) return;
    // The library ends what it does with a callback, which finds that the outcome has been delivered.
    if (cancellable_) g_cancellable_cancel(cancellable_.get());
    fail("The request timed out.");
}

void HTTPExchange::fail(std::string description) {
    Outcome outcome;
    outcome.error = Error{std::move(description)};
    // An answer that leads elsewhere is none.
    if (stream_ && !redirection()) {
        outcome.response = URLResponse{static_cast<int>(soup_message_get_status(message_.get()))};
        if (!body_.empty()) outcome.body = std::move(body_);
    }
    finish(std::move(outcome));
}

void HTTPExchange::finish(Outcome outcome) {
    if (const auto deliver = std::exchange(deliver_, nullptr)) deliver(std::move(outcome));
}

gpointer HTTPExchange::keptAlive() {
    return std::make_unique<std::shared_ptr<HTTPExchange>>(shared_from_this()).release();
}

template <void (HTTPExchange::*method)(GAsyncResult*)>
void HTTPExchange::callback(GObject*, GAsyncResult* result, gpointer kept) {
    const std::unique_ptr<std::shared_ptr<HTTPExchange>> exchange(
        static_cast<std::shared_ptr<HTTPExchange>*>(kept));
    ((**exchange).*method)(result);
}

} // namespace harbrook::gtk
