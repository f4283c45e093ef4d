#pragma once

#include "platform/WebView.h"
#include "platform/cocoa/View.h"

@class HarbrookNavigationDelegate;
@class HarbrookUIDelegate;

namespace harbrook::cocoa {

class WebView final : public View, public harbrook::WebView {
public:
    WebView(Rect frame, const WebViewConfiguration& configuration);

    void setNavigationDelegate(std::weak_ptr<WebNavigationDelegate> delegate) override;
    void setUIDelegate(std::weak_ptr<WebUIDelegate> delegate) override;
    void setValueForKey(bool value, const std::string& key) override;
    void setUnderPageBackgroundColor(const Color& color) override;
    void setAutoresizingMask(std::uint32_t mask) override;
    void loadRequest(const URLRequest& request) override;
    void reload() override;
    void evaluateJavaScript(const std::string& script, EvaluationHandler completionHandler) override;

private:
    explicit WebView(WKWebView* view) : View(view), view_(view) {}

    WKWebView* view_;
    // The native view holds its delegates weakly.
    HarbrookNavigationDelegate* navigationDelegate_ = nil;
    HarbrookUIDelegate* uiDelegate_ = nil;
};

} // namespace harbrook::cocoa
