#pragma once

#include "platform/Network.h"
#include "platform/gtk/foundation/GObjectPtr.h"

#include <libsoup/soup.h>

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace harbrook::gtk {

/// One request and its answer, redirects included. Everything happens on the thread of the session. It keeps
/// itself alive from `start` until it has delivered its outcome.
class HTTPExchange : public std::enable_shared_from_this<HTTPExchange> {
public:
    struct Outcome {
        std::optional<std::string> body;
        std::optional<URLResponse> response;
        std::optional<Error> error;
    };

    /// `deliver` is called once.
    HTTPExchange(URLRequest request, std::function<void(Outcome)> deliver);

    void start(SoupSession* session);
    /// Ends the exchange where it is; one that has not started never does.
    void timeOut();

private:
    using URI = std::unique_ptr<GUri, FreeWith<g_uri_unref>>;

    void send(URI uri);
    void addBody() const;
    void receive(GAsyncResult* result);
    void readOn();
    void append(GAsyncResult* result);
    void answerIsComplete();
    /// Where the answer redirects to, if that is inside the origin.
    [[nodiscard]] URI redirection() const;
    void adaptRequestToRedirection();
    void finish(Outcome outcome);
    /// Delivers what has arrived so far with the reason why there is no more.
    void fail(std::string description);

    /// What a callback of the library is handed: it keeps the exchange alive until then.
    gpointer keptAlive();
    template <void (HTTPExchange::*method)(GAsyncResult*)>
    static void callback(GObject* source, GAsyncResult* result, gpointer kept);

    URLRequest request_;
    std::function<void(Outcome)> deliver_;
    GObjectPtr<GCancellable> cancellable_;
    GObjectPtr<SoupSession> session_;
    GObjectPtr<SoupMessage> message_;
    GObjectPtr<GInputStream> stream_;
    std::string body_;
    std::array<char, 65536> buffer_;
    int redirects_ = 0;
};

} // namespace harbrook::gtk
