#include "tests/macos/running/webkit/Page.h"

using namespace harbrook::running;

namespace {

struct Page {
    WKWebView* view = nil;
    std::map<std::string, Kept<id>> handlers;
    std::function<std::optional<harbrook::Value>(const std::string&)> evaluate;
};

Page& page() {
    static auto* const all = new Page;
    return *all;
}

id present(id delegate, const char* which) {
    if (!delegate)
        world().fail(std::string("the web view's ") + which + " delegate has gone: nobody kept it");
    return delegate;
}

id<WKNavigationDelegate> navigationDelegate() {
    return present(page().view.navigationDelegate, "navigation");
}

id<WKUIDelegate> uiDelegate() {
    return present(page().view.UIDelegate, "UI");
}

WKNavigationAction* actionFor(const std::optional<std::string>& address) {
    WKNavigationAction* const action = objc_autorelease([WKNavigationAction alloc]);
    NSURLRequest* const request = objc_autorelease([NSURLRequest alloc]);
    setProperty(request, "URL", {'@'});
    if (address) give(request, "URL", [NSURL URLWithString:text(*address)]);
    give(action, "request", request);
    return action;
}

/// Counts the calls of a completion handler, which has to be called once.
class OneCall {
public:
    explicit OneCall(std::string what) : what_(std::move(what)) {}
    OneCall(const OneCall&) = delete;
    OneCall& operator=(const OneCall&) = delete;
    ~OneCall() {
        if (calls_ == 0 && World::isThere()) world().fail(what_ + " was never called");
    }
    void note() {
        if (++calls_ > 1) world().fail(what_ + " was called twice");
    }

private:
    std::string what_;
    int calls_ = 0;
};

} // namespace

@implementation WKUserContentController

- (void)addScriptMessageHandler:(id<WKScriptMessageHandler>)handler name:(NSString*)name {
    page().handlers[characters(name)] = static_cast<id>(handler);
}

@end

@implementation WKWebView

- (instancetype)initWithFrame:(NSRect)frame configuration:(WKWebViewConfiguration*)configuration {
    page().view = self;
    return self;
}

- (WKNavigation*)loadRequest:(NSURLRequest*)request {
    const auto address = characters(request.URL.absoluteString);
    world().scheduler.addMainBlock(0, [address] { navigate(address); });
    return nil;
}

- (void)evaluateJavaScript:(NSString*)script completionHandler:(void (^)(id, NSError*))handler {
    if (!handler) return;
    const auto result = page().evaluate ? page().evaluate(characters(script)) : std::nullopt;
    world().scheduler.addMainBlock(0, [result, handler = Kept<id>(handler)] {
        const AutoreleasePool pool;
        ((void (^)(id, NSError*))handler.get())(
            result ? objectOf(*result) : nil, result ? nil : error("A JavaScript exception occurred"));
    });
}

@end

namespace harbrook::running {

void setScripts(std::function<std::optional<Value>(const std::string& script)> evaluate) {
    page().evaluate = std::move(evaluate);
}

void postMessage(const std::string& channel, const std::optional<Value>& body) {
    const AutoreleasePool pool;
    WKScriptMessage* const message = objc_autorelease([WKScriptMessage alloc]);
    give(message, "name", text(channel));
    give(message, "body", body ? objectOf(*body) : objc_autorelease([[NSObject alloc] init]));
    // One handler was registered; the page may name another.
    for (const auto& [name, handler] : page().handlers)
        [static_cast<id<WKScriptMessageHandler>>(handler.get())
              userContentController:page().view.configuration.userContentController
            didReceiveScriptMessage:message];
}

NavigationActionPolicy navigate(const std::optional<std::string>& address) {
    const AutoreleasePool pool;
    OneCall call("the decision handler");
    auto decided = NavigationActionPolicy::allow;
    auto* const once = &call;
    auto* const result = &decided;
    [navigationDelegate() webView:page().view
        decidePolicyForNavigationAction:actionFor(address)
                        decisionHandler:^(WKNavigationActionPolicy policy) {
                            once->note();
                            *result = static_cast<NavigationActionPolicy>(policy);
                        }];
    return decided;
}

bool openWindow(const std::optional<std::string>& address) {
    const AutoreleasePool pool;
    return [uiDelegate() webView:page().view
               createWebViewWithConfiguration:page().view.configuration
                          forNavigationAction:actionFor(address)
                               windowFeatures:objc_autorelease([WKWindowFeatures alloc])] != nil;
}

void failProvisionally(const std::string& description, long code, const std::string& domain) {
    const AutoreleasePool pool;
    [navigationDelegate() webView:page().view
        didFailProvisionalNavigation:nil
                           withError:error(description, code, domain)];
}

void failLoading(const std::string& description) {
    const AutoreleasePool pool;
    [navigationDelegate() webView:page().view didFailNavigation:nil withError:error(description)];
}

void showAlert(const std::string& message, std::function<void()> answered) {
    const AutoreleasePool pool;
    const auto call = std::make_shared<OneCall>("the alert's completion handler");
    [uiDelegate() webView:page().view
        runJavaScriptAlertPanelWithMessage:text(message)
                          initiatedByFrame:objc_autorelease([WKFrameInfo alloc])
                         completionHandler:^{
                             call->note();
                             answered();
                         }];
}

void askConfirmation(const std::string& message, std::function<void(bool)> answered) {
    const AutoreleasePool pool;
    const auto call = std::make_shared<OneCall>("the confirmation's completion handler");
    [uiDelegate() webView:page().view
        runJavaScriptConfirmPanelWithMessage:text(message)
                            initiatedByFrame:objc_autorelease([WKFrameInfo alloc])
                           completionHandler:^(BOOL answer) {
                               call->note();
                               answered(answer);
                           }];
}

void forgetPage() {
    page() = {};
}

} // namespace harbrook::running
