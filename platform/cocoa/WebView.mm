#include "platform/cocoa/WebView.h"

#include "platform/cocoa/Conversions.h"
#include "platform/cocoa/Drawing.h"
#include "platform/cocoa/WebDelegates.h"

namespace harbrook::cocoa {

namespace {

WKUserScript* toWKUserScript(const UserScript& script) {
    return [[WKUserScript alloc] initWithSource:toNSString(script.source)
                                  injectionTime:static_cast<WKUserScriptInjectionTime>(script.injectionTime)
                               forMainFrameOnly:script.forMainFrameOnly];
}

WKWebViewConfiguration* toWKWebViewConfiguration(const WebViewConfiguration& configuration) {
    WKWebViewConfiguration* const result = [[WKWebViewConfiguration alloc] init];
    switch (configuration.websiteDataStore) {
    case WebsiteDataStore::defaultDataStore:
        result.websiteDataStore = [WKWebsiteDataStore defaultDataStore];
        break;
    }
    for (const auto& script : configuration.userContentController.userScripts) {
        [result.userContentController addUserScript:toWKUserScript(script)];
    }
    for (const auto& channel : configuration.userContentController.messageChannels) {
        // The controller keeps its handlers; ours holds the core's weakly.
        [result.userContentController
            addScriptMessageHandler:[[HarbrookScriptMessageHandler alloc] initWithHandler:channel.handler]
                               name:toNSString(channel.name)];
    }
    return result;
}

} // namespace

WebView::WebView(Rect frame, const WebViewConfiguration& configuration)
    : WebView([[WKWebView alloc] initWithFrame:toNSRect(frame)
                                 configuration:toWKWebViewConfiguration(configuration)]) {}

void WebView::setNavigationDelegate(std::weak_ptr<WebNavigationDelegate> delegate) {
    navigationDelegate_ = [[HarbrookNavigationDelegate alloc] initWithDelegate:std::move(delegate)];
    view_.navigationDelegate = navigationDelegate_;
}

void WebView::setUIDelegate(std::weak_ptr<WebUIDelegate> delegate) {
    uiDelegate_ = [[HarbrookUIDelegate alloc] initWithDelegate:std::move(delegate)];
    view_.UIDelegate = uiDelegate_;
}

void WebView::setValueForKey(bool value, const std::string& key) {
    [view_ setValue:@(value) forKey:toNSString(key)];
}

void WebView::setUnderPageBackgroundColor(const Color& color) {
    view_.underPageBackgroundColor = toNSColor(color);
}

void WebView::setAutoresizingMask(std::uint32_t mask) {
    view_.autoresizingMask = static_cast<NSAutoresizingMaskOptions>(mask);
}

void WebView::loadRequest(const URLRequest& request) {
    [view_ loadRequest:toNSURLRequest(request)];
}

void WebView::reload() {
    [view_ reload];
}

void WebView::evaluateJavaScript(const std::string& script, EvaluationHandler completionHandler) {
    if (!completionHandler) {
        [view_ evaluateJavaScript:toNSString(script) completionHandler:nil];
        return;
    }
    [view_ evaluateJavaScript:toNSString(script)
            completionHandler:^(id result, NSError* error) {
                completionHandler(error ? std::nullopt : fromObject(result));
            }];
}

} // namespace harbrook::cocoa
