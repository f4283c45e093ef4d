#include "platform/gtk/foundation/URLSession.h"

#include "platform/gtk/foundation/ContextQueue.h"
#include "platform/gtk/foundation/HTTPExchange.h"
#include "platform/gtk/foundation/Thread.h"

#include <atomic>
#include <mutex>
#include <optional>
#include <system_error>

namespace harbrook::gtk {

namespace {

/// More than the shell has under way at any time; a request that waits for another would time out with it.
constexpr int connectionLimit = 64;

GObjectPtr<SoupSession> makeSession() {
    auto session = GObjectPtr<SoupSession>::adopt(soup_session_new_with_options(
        "max-conns", connectionLimit, "max-conns-per-host", connectionLimit, "timeout", 0, "proxy-resolver",
        nullptr, nullptr));
    // Between two programs of one machine, compressing an answer costs more than it saves.
    soup_session_remove_feature_by_type(session.get(), SOUP_TYPE_CONTENT_DECODER);
    return session;
}

} // namespace

/// The thread with its loop. It is never stopped: an exchange goes on whoever keeps its task or the session.
class URLSession::Network : public std::enable_shared_from_this<Network> {
public:
    explicit Network(DispatchQueue& queue)
        : context_(g_main_context_new()), queue_(context_.get()), completions_(queue) {}

    void start(URLRequest request, CompletionHandler completionHandler) {
        if (const auto error = ensureThread()) {
            completions_.async([handler = std::move(completionHandler), error] {
                handler(std::nullopt, std::nullopt, error);
            });
            return;
        }
        const double timeout = request.timeoutInterval;
        auto deliver = [self = shared_from_this(),
                        handler = std::move(completionHandler)](HTTPExchange::Outcome outcome) {
            self->completions_.async([handler, outcome = std::move(outcome)] {
                handler(outcome.body, outcome.response, outcome.error);
            });
        };
        auto exchange = std::make_shared<HTTPExchange>(std::move(request), std::move(deliver));
        queue_.asyncAfter(timeout, [weak = std::weak_ptr(exchange)] {
            if (const auto unfinished = weak.lock()) unfinished->timeOut();
        });
        // Moved: the library lets go of an exchange only on the thread that began it, and this one may see
        // the end.
        queue_.async([this, exchange = std::move(exchange)] { exchange->start(session_.get()); });
    }

private:
    /// The error, or none; after an error, the next request tries again.
    std::optional<Error> ensureThread() {
        try {
            std::call_once(started_, [this] {
                startThread("url session", [self = shared_from_this()] { self->run(); });
            });
        } catch (const std::system_error& error) {
            return Error{error.code().message()};
        }
        return std::nullopt;
    }

    void run() noexcept {
        g_main_context_push_thread_default(context_.get());
        session_ = makeSession();
        for (;;)
            g_main_context_iteration(context_.get(), TRUE);
    }

    std::unique_ptr<GMainContext, FreeWith<g_main_context_unref>> context_;
    ContextQueue queue_;
    SerialQueue completions_;
    std::once_flag started_;
    /// Used on the thread only.
    GObjectPtr<SoupSession> session_;
};

class URLSession::DataTask final : public URLSessionDataTask {
public:
    DataTask(std::shared_ptr<Network> network, URLRequest request, CompletionHandler completionHandler)
        : network_(std::move(network)),
          request_(std::move(request)),
          completionHandler_(std::move(completionHandler)) {}

    void resume() override {
        if (!resumed_.exchange(true)) network_->start(std::move(request_), std::move(completionHandler_));
    }

private:
    std::shared_ptr<Network> network_;
    URLRequest request_;
    CompletionHandler completionHandler_;
    std::atomic<bool> resumed_ = false;
};

URLSession::URLSession(DispatchQueue& queue) : network_(std::make_shared<Network>(queue)) {}

URLSession::~URLSession() = default;

std::shared_ptr<URLSessionDataTask> URLSession::dataTaskWithRequest(
    URLRequest request, CompletionHandler completionHandler) {
    return std::make_shared<DataTask>(network_, std::move(request), std::move(completionHandler));
}

} // namespace harbrook::gtk
