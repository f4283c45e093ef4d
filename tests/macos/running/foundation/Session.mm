#include "tests/macos/running/foundation/Session.h"

#include "platform/URL.h"

#include <algorithm>

using namespace harbrook::running;

namespace {

std::vector<std::shared_ptr<Exchange>>& exchanges() {
    static auto* const all = new std::vector<std::shared_ptr<Exchange>>;
    return *all;
}

} // namespace

@interface StandInRequest : NSMutableURLRequest {
@public
    Kept<NSURL*> url;
    double timeout;
}
@end

@interface StandInDataTask : NSURLSessionDataTask {
@public
    Kept<StandInRequest*> request;
    Kept<id> handler;
    bool resumed;
}
@end

@implementation NSMutableURLRequest

+ (instancetype)requestWithURL:(NSURL*)url
                   cachePolicy:(NSURLRequestCachePolicy)policy
               timeoutInterval:(NSTimeInterval)timeout {
    StandInRequest* const made = [StandInRequest alloc];
    made->url = url;
    made->timeout = timeout;
    return objc_autorelease(made);
}

- (NSURL*)URL {
    return static_cast<StandInRequest*>(self)->url;
}

@end

@implementation StandInRequest
@end

@implementation NSURLSession

- (NSURLSessionDataTask*)dataTaskWithRequest:(NSURLRequest*)request
                           completionHandler:(void (^)(NSData*, NSURLResponse*, NSError*))handler {
    StandInDataTask* const made = [StandInDataTask alloc];
    made->request = static_cast<StandInRequest*>(request);
    made->handler = static_cast<id>(handler);
    return objc_autorelease(made);
}

@end

@implementation NSURLSessionDataTask
@end

@implementation StandInDataTask

- (void)resume {
    if (resumed) world().fail("a data task is resumed twice");
    resumed = true;
    const auto exchange = std::make_shared<Exchange>();
    exchange->address = characters(request.get()->url.get().absoluteString);
    exchange->method = characters(request.get().HTTPMethod);
    exchange->body = bytes(request.get().HTTPBody);
    exchange->handler = handler;
    handler = {};
    exchanges().push_back(exchange);
    // Nobody listens on port 1.
    const auto url = harbrook::URL::URLWithString(exchange->address);
    if (url && url->port() == 1) return exchange->fail("Could not connect to the server.");
    world().scheduler.addOutsideEvent(request.get()->timeout, [weak = std::weak_ptr(exchange)] {
        if (const auto self = weak.lock()) self->fail("The request timed out.");
    });
}

@end

namespace harbrook::running {

namespace {

NSHTTPURLResponse* responseWith(int status) {
    NSHTTPURLResponse* const response = objc_autorelease([NSHTTPURLResponse alloc]);
    give(response, "statusCode", long{status});
    return response;
}

} // namespace

void Exchange::answer(int status, const std::string& content) {
    const AutoreleasePool pool;
    complete(dataOf(content), responseWith(status), nil);
}

void Exchange::answerWithoutStatus(const std::string& content) {
    const AutoreleasePool pool;
    complete(dataOf(content), objc_autorelease([NSURLResponse alloc]), nil);
}

void Exchange::fail(const std::string& description, const std::optional<std::string>& content) {
    const AutoreleasePool pool;
    const auto& arrived = content ? content : arrivedContent;
    complete(
        arrived ? dataOf(*arrived) : nil, arrivedStatus ? responseWith(*arrivedStatus) : nil,
        error(description));
}

void Exchange::complete(NSData* content, NSURLResponse* response, NSError* error) {
    if (!std::exchange(isOpen, false)) return;
    static int answers = 0;
    world().scheduler.addWorker(
        "session " + std::to_string(++answers),
        [handler = std::exchange(handler, {}), content = Kept(content), response = Kept(response),
         error = Kept(error)] {
            const AutoreleasePool pool;
            ((void (^)(NSData*, NSURLResponse*, NSError*))handler.get())(content, response, error);
        });
}

std::string describeRequest(NSURLRequest* request) {
    const auto method = property(request, "HTTPMethod");
    return (method ? characters(reinterpret_cast<NSString*>(method->word)) + " " : "") +
           characters(request.URL.absoluteString);
}

std::vector<std::shared_ptr<Exchange>> openExchanges() {
    std::vector<std::shared_ptr<Exchange>> open;
    std::ranges::copy_if(exchanges(), std::back_inserter(open), &Exchange::isOpen);
    return open;
}

void forgetExchanges() {
    exchanges().clear();
}

} // namespace harbrook::running
