#include "platform/cocoa/WebDelegates.h"

#include "platform/cocoa/Conversions.h"
#include "platform/cocoa/View.h"

using namespace harbrook::cocoa;

namespace {

harbrook::NavigationAction fromWKNavigationAction(WKNavigationAction* action) {
    return {fromNSURL(action.request.URL)};
}

} // namespace

@implementation HarbrookNavigationDelegate {
    std::weak_ptr<harbrook::WebNavigationDelegate> _delegate;
}

- (instancetype)initWithDelegate:(std::weak_ptr<harbrook::WebNavigationDelegate>)delegate {
    if ((self = [super init])) _delegate = std::move(delegate);
    return self;
}

- (void)webView:(WKWebView*)webView
    decidePolicyForNavigationAction:(WKNavigationAction*)navigationAction
                    decisionHandler:(void (^)(WKNavigationActionPolicy))decisionHandler {
    const auto delegate = _delegate.lock();
    // The web view insists on an answer.
    if (!delegate) return decisionHandler(WKNavigationActionPolicyCancel);
    delegate->decidePolicyForNavigationAction(
        fromWKNavigationAction(navigationAction), [&](harbrook::NavigationActionPolicy policy) {
            decisionHandler(static_cast<WKNavigationActionPolicy>(policy));
        });
}

- (void)webView:(WKWebView*)webView
    didFailProvisionalNavigation:(WKNavigation*)navigation
                       withError:(NSError*)error {
    if (const auto delegate = _delegate.lock()) delegate->didFailProvisionalNavigation(fromNSError(error));
}

- (void)webView:(WKWebView*)webView didFailNavigation:(WKNavigation*)navigation withError:(NSError*)error {
    if (const auto delegate = _delegate.lock()) delegate->didFailNavigation(fromNSError(error));
}

@end

@implementation HarbrookUIDelegate {
    std::weak_ptr<harbrook::WebUIDelegate> _delegate;
}

- (instancetype)initWithDelegate:(std::weak_ptr<harbrook::WebUIDelegate>)delegate {
    if ((self = [super init])) _delegate = std::move(delegate);
    return self;
}

- (WKWebView*)webView:(WKWebView*)webView
    createWebViewWithConfiguration:(WKWebViewConfiguration*)configuration
               forNavigationAction:(WKNavigationAction*)navigationAction
                    windowFeatures:(WKWindowFeatures*)windowFeatures {
    const auto delegate = _delegate.lock();
    if (!delegate) return nil;
    const auto view = delegate->createWebViewForNavigationAction(fromWKNavigationAction(navigationAction));
    return view ? static_cast<WKWebView*>(View::nativeOf(*view)) : nil;
}

- (void)webView:(WKWebView*)webView
    runJavaScriptAlertPanelWithMessage:(NSString*)message
                      initiatedByFrame:(WKFrameInfo*)frame
                     completionHandler:(void (^)(void))completionHandler {
    const auto delegate = _delegate.lock();
    if (!delegate) return completionHandler();
    delegate->runJavaScriptAlertPanelWithMessage(fromNSString(message), completionHandler);
}

- (void)webView:(WKWebView*)webView
    runJavaScriptConfirmPanelWithMessage:(NSString*)message
                        initiatedByFrame:(WKFrameInfo*)frame
                       completionHandler:(void (^)(BOOL))completionHandler {
    const auto delegate = _delegate.lock();
    if (!delegate) return completionHandler(NO);
    delegate->runJavaScriptConfirmPanelWithMessage(fromNSString(message), completionHandler);
}

@end

@implementation HarbrookScriptMessageHandler {
    std::weak_ptr<harbrook::ScriptMessageHandler> _handler;
}

- (instancetype)initWithHandler:(std::weak_ptr<harbrook::ScriptMessageHandler>)handler {
    if ((self = [super init])) _handler = std::move(handler);
    return self;
}

- (void)userContentController:(WKUserContentController*)userContentController
      didReceiveScriptMessage:(WKScriptMessage*)message {
    const auto handler = _handler.lock();
    auto body = fromObject(message.body);
    if (!handler || !body) return;
    handler->didReceiveScriptMessage({fromNSString(message.name), *std::move(body)});
}

@end
