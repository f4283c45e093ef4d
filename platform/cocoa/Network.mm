#include "platform/cocoa/Network.h"

#include "platform/cocoa/Conversions.h"

namespace harbrook::cocoa {

namespace {

class DataTask final : public URLSessionDataTask {
public:
    explicit DataTask(NSURLSessionDataTask* task) : task_(task) {}

    void resume() override { [task_ resume]; }

private:
    NSURLSessionDataTask* task_;
};

std::optional<URLResponse> fromNSURLResponse(NSURLResponse* response) {
    if (!response) return std::nullopt;
    if (![response isKindOfClass:[NSHTTPURLResponse class]]) return URLResponse{};
    return URLResponse{static_cast<int>(static_cast<NSHTTPURLResponse*>(response).statusCode)};
}

} // namespace

std::shared_ptr<URLSessionDataTask> URLSession::dataTaskWithRequest(
    URLRequest request, CompletionHandler completionHandler) {
    return std::make_shared<DataTask>([[NSURLSession sharedSession]
        dataTaskWithRequest:toNSURLRequest(request)
          completionHandler:^(NSData* data, NSURLResponse* response, NSError* error) {
              completionHandler(
                  data ? std::optional(fromNSData(data)) : std::nullopt, fromNSURLResponse(response),
                  error ? std::optional(fromNSError(error)) : std::nullopt);
          }]);
}

} // namespace harbrook::cocoa
