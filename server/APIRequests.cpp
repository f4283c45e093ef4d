#include "app/AppDelegate.h"

namespace harbrook {

URLRequest AppDelegate::apiRequest(const std::string& path, double timeout) {
    URLRequest request(globals_->baseURL().URLByAppendingPathComponent(path));
    request.timeoutInterval = timeout;
    request.headerFields["X-Harbrook-Token"] = globals_->apiToken;
    return request;
}

void AppDelegate::serverIsUp(std::function<void(bool)> completion) {
    platform_->sharedSession()
        .dataTaskWithRequest(
            apiRequest("api/settings"),
            [completion = std::move(completion)](
                const auto& /*data*/, const std::optional<URLResponse>& response, const auto& /*error*/) {
                completion(response && response->statusCode == 200);
            })
        ->resume();
}

} // namespace harbrook
