#pragma once

#include "platform/Network.h"
#include "platform/gtk/foundation/GlobalQueue.h"

namespace harbrook::gtk {

/// The session speaks HTTP without a proxy, without cookies and without a cache. It follows redirects inside
/// the origin that was asked, twenty at most; one that leads elsewhere is the answer itself, so that what a
/// request carries reaches nobody else. Bodies end at 64 MiB: a longer one is an error.
///
/// Exchanges run on a thread of the session's own, which begins with the first of them and stays.
class URLSession final : public harbrook::URLSession {
public:
    /// Completion handlers run on workers of `queue`, one at a time.
    explicit URLSession(DispatchQueue& queue);
    ~URLSession() override;

    std::shared_ptr<URLSessionDataTask> dataTaskWithRequest(
        URLRequest request, CompletionHandler completionHandler) override;

private:
    class Network;
    class DataTask;

    std::shared_ptr<Network> network_;
};

} // namespace harbrook::gtk
