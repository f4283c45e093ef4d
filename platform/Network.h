#pragma once

#include "platform/Error.h"
#include "platform/URL.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace harbrook {

enum class CachePolicy { useProtocolCachePolicy = 0 };

/// The time-out is in seconds: an exchange in which nothing arrives for that long fails. One in which parts
/// arrive all along but that takes longer as a whole fails on Linux and goes on on macOS; nothing may count
/// on either.
struct URLRequest {
    explicit URLRequest(URL address) : url(std::move(address)) {}

    URL url;
    CachePolicy cachePolicy = CachePolicy::useProtocolCachePolicy;
    double timeoutInterval = 60.0;
    std::string httpMethod = "GET";
    std::map<std::string, std::string> headerFields;
    std::optional<std::string> httpBody;

    bool operator==(const URLRequest&) const = default;
};

/// What came back besides the body. `statusCode` is absent when the answer was not HTTP.
struct URLResponse {
    std::optional<int> statusCode;
    bool operator==(const URLResponse&) const = default;
};

/// One exchange, not yet begun. It goes on to its end once resumed, whether or not the object is kept.
class URLSessionDataTask {
public:
    virtual ~URLSessionDataTask() = default;
    virtual void resume() = 0;
};

/// The shared session. It uses no proxy for loopback addresses.
class URLSession {
public:
    /// Body, response, error. Data is data and a response is a response, whatever becomes of the rest: the
    /// response is there once its head has arrived, and the body when any of it has arrived or it came to its
    /// end. The error says why there is no more.
    using CompletionHandler =
        std::function<void(std::optional<std::string>, std::optional<URLResponse>, std::optional<Error>)>;

    virtual ~URLSession() = default;

    /// Makes a task for `request`. Any thread. `completionHandler` is called exactly once after `resume`, on
    /// the session's own background queue, never on the main thread.
    [[nodiscard]] virtual std::shared_ptr<URLSessionDataTask> dataTaskWithRequest(
        URLRequest request, CompletionHandler completionHandler) = 0;
};

} // namespace harbrook
