#pragma once

#include "platform/Network.h"

namespace harbrook::cocoa {

/// The shared URL session.
class URLSession final : public harbrook::URLSession {
public:
    std::shared_ptr<URLSessionDataTask> dataTaskWithRequest(
        URLRequest request, CompletionHandler completionHandler) override;
};

} // namespace harbrook::cocoa
