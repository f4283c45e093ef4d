#pragma once

#include "platform/WebView.h"
#include "platform/gtk/foundation/SignalConnections.h"
#include "platform/gtk/web/LoadTracker.h"
#include "platform/gtk/window/View.h"

#include <webkit/webkit.h>

#include <functional>
#include <optional>

namespace harbrook::gtk {

/// A WebKitGTK view on a canvas of the under-page colour. The view's own widget is the canvas, so that the
/// colour is there before the engine has drawn anything, and so that subviews can stand over the page.
///
/// From the moment it is made it gets its web process ready by loading a blank document. Neither the
/// delegates nor the page's history ever see that document.
class WebView final : public View, public harbrook::WebView {
public:
    /// `firstPageDidAppear` is called once, when a page that the shell has asked for begins to be shown.
    WebView(
        NotificationCenter& center, Rect frame, const WebViewConfiguration& configuration,
        std::function<void()> firstPageDidAppear);
    ~WebView() override;

    void setNavigationDelegate(std::weak_ptr<WebNavigationDelegate> delegate) override;
    void setUIDelegate(std::weak_ptr<WebUIDelegate> delegate) override;
    void setValueForKey(bool value, const std::string& key) override;
    void setUnderPageBackgroundColor(const Color& color) override;
    /// A content view always has the size of its window here, so every mask means the same.
    void setAutoresizingMask(std::uint32_t mask) override;

    void loadRequest(const URLRequest& request) override;
    void reload() override;
    void evaluateJavaScript(const std::string& script, EvaluationHandler completionHandler) override;

private:
    struct MessageReceiver;

    void receiveMessages(const WebViewConfiguration::UserContentController& controller);
    void connectSignals();
    void warmUp();
    void showColors();
    void limitWait(double seconds);
    void endWait();

    gboolean decidePolicy(WebKitPolicyDecision* decision, WebKitPolicyDecisionType type);
    gboolean decideNavigation(WebKitPolicyDecision* decision, WebKitNavigationAction* action);
    void loadChanged(WebKitLoadEvent event);
    void loadFailed(WebKitLoadEvent event, const char* address, const GError& error);
    void processTerminated();
    void requestNewWindow(const std::string& address);
    void handOver(WebKitDownload* download);
    gboolean runScriptDialog(WebKitScriptDialog* dialog);

    [[nodiscard]] std::string address() const;

    GObjectPtr<WebKitWebView> web_;
    std::weak_ptr<WebNavigationDelegate> navigationDelegate_;
    std::weak_ptr<WebUIDelegate> uiDelegate_;
    std::vector<std::unique_ptr<MessageReceiver>> receivers_;
    bool drawsBackground_ = true;
    std::optional<Color> underPageColor_;
    std::shared_ptr<void> appearanceObserver_;
    std::function<void()> firstPageDidAppear_;
    LoadTracker loads_;
    guint waitLimit_ = 0;
    SignalConnections connections_;
};

[[nodiscard]] std::shared_ptr<harbrook::WebView> makeWebView(
    NotificationCenter& center, Rect frame, const WebViewConfiguration& configuration,
    std::function<void()> firstPageDidAppear);

} // namespace harbrook::gtk
