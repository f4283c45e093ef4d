#include "platform/recording/WebView.h"

#include "platform/recording/Format.h"

namespace harbrook::recording {

void WebView::setNavigationDelegate(std::weak_ptr<WebNavigationDelegate> delegate) {
    note("setNavigationDelegate");
    navigationDelegate_ = std::move(delegate);
}

void WebView::setUIDelegate(std::weak_ptr<WebUIDelegate> delegate) {
    note("setUIDelegate");
    uiDelegate_ = std::move(delegate);
}

void WebView::setValueForKey(bool value, const std::string& key) {
    note("setValueForKey: " + format(value) + " " + inQuotes(key));
    refuseIf(key != "drawsBackground", "webView has no key " + inQuotes(key));
}

void WebView::setUnderPageBackgroundColor(const Color& color) {
    note("setUnderPageBackgroundColor: " + format(color));
    underPageColor_ = color;
}

void WebView::setAutoresizingMask(std::uint32_t mask) {
    note("setAutoresizingMask: " + std::to_string(mask));
}

void WebView::loadRequest(const URLRequest& request) {
    note("loadRequest: " + request.url.absoluteString());
    loads_.push_back(request);
    load(request.url);
}

void WebView::reload() {
    note("reload");
    if (page_) load(*page_);
}

void WebView::load(const URL& url) {
    world_->scheduler.addMainBlock(
        loadTakes, [self = std::static_pointer_cast<WebView>(shared_from_this()), url] {
            if (self->simulateNavigation(url) == NavigationActionPolicy::cancel) return;
            const auto error = self->loadError ? self->loadError(url) : std::nullopt;
            if (error) {
                self->simulateFailedProvisionalNavigation(error->localizedDescription);
            } else {
                self->page_ = url;
            }
        });
}

void WebView::evaluateJavaScript(const std::string& script, EvaluationHandler completionHandler) {
    note("evaluateJavaScript: " + script);
    const auto result = evaluate ? evaluate(script) : std::nullopt;
    if (!completionHandler) return;
    world_->scheduler.addMainBlock(
        evaluationTakes, [handler = std::move(completionHandler), result] { handler(result); });
}

void WebView::simulateMessage(const std::string& name, Value body) {
    for (const auto& channel : configuration_.userContentController.messageChannels) {
        const auto handler = channel.handler.lock();
        if (handler && channel.name == name) handler->didReceiveScriptMessage({name, body});
    }
}

NavigationActionPolicy WebView::simulateNavigation(const std::optional<URL>& url) {
    const auto delegate = navigationDelegate();
    if (!delegate) return NavigationActionPolicy::allow;
    std::vector<NavigationActionPolicy> answers;
    delegate->decidePolicyForNavigationAction(
        {url}, [&answers](NavigationActionPolicy policy) { answers.push_back(policy); });
    refuseIf(
        answers.size() != 1,
        "the decision handler was called " + std::to_string(answers.size()) + " times instead of once");
    return answers.front();
}

std::shared_ptr<harbrook::WebView> WebView::simulateNewWindow(const std::optional<URL>& url) {
    const auto delegate = uiDelegate();
    return delegate ? delegate->createWebViewForNavigationAction({url}) : nullptr;
}

void WebView::simulateFailedProvisionalNavigation(const std::string& localizedDescription) {
    if (const auto delegate = navigationDelegate())
        delegate->didFailProvisionalNavigation({localizedDescription});
}

void WebView::simulateFailedNavigation(const std::string& localizedDescription) {
    if (const auto delegate = navigationDelegate()) delegate->didFailNavigation({localizedDescription});
}

void WebView::simulateAlert(const std::string& message, std::function<void()> answered) {
    if (const auto delegate = uiDelegate())
        delegate->runJavaScriptAlertPanelWithMessage(message, std::move(answered));
}

void WebView::simulateConfirm(const std::string& message, std::function<void(bool)> answered) {
    if (const auto delegate = uiDelegate())
        delegate->runJavaScriptConfirmPanelWithMessage(message, std::move(answered));
}

std::shared_ptr<WebNavigationDelegate> WebView::navigationDelegate() const {
    return navigationDelegate_.lock();
}

std::shared_ptr<WebUIDelegate> WebView::uiDelegate() const {
    return uiDelegate_.lock();
}

} // namespace harbrook::recording
