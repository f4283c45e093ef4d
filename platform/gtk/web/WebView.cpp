#include "platform/gtk/web/WebView.h"

#include "platform/gtk/web/SandboxPreflight.h"
#include "platform/gtk/web/ScriptDialog.h"
#include "platform/gtk/web/ScriptValue.h"
#include "platform/gtk/web/WebContextMenu.h"
#include "platform/gtk/web/WebEngine.h"
#include "platform/gtk/web/WebRefusals.h"
#include "platform/gtk/window/Appearance.h"
#include "platform/gtk/window/Canvas.h"

#include <utility>

namespace harbrook::gtk {

namespace {

WebView& viewOf(void* data) {
    return *static_cast<WebView*>(data);
}

/// Later, like every answer of a script.
void answerWithoutValue(WebView::EvaluationHandler handler) {
    if (!handler) return;
    const auto answer = [](void* data) noexcept -> gboolean {
        (*static_cast<WebView::EvaluationHandler*>(data))(std::nullopt);
        return G_SOURCE_REMOVE;
    };
    const auto release = [](void* data) noexcept {
        const std::unique_ptr<WebView::EvaluationHandler> owner(
            static_cast<WebView::EvaluationHandler*>(data));
    };
    g_idle_add_full(
        G_PRIORITY_DEFAULT, answer,
        std::make_unique<WebView::EvaluationHandler>(std::move(handler)).release(), release);
}

std::string addressOf(WebKitNavigationAction* action) {
    const char* address = webkit_uri_request_get_uri(webkit_navigation_action_get_request(action));
    return address ? address : "";
}

} // namespace

struct WebView::MessageReceiver {
    std::string name;
    std::weak_ptr<ScriptMessageHandler> handler;

    void receive(JSCValue* body) const {
        const auto receiver = handler.lock();
        if (!receiver) return;
        if (auto value = valueFromScript(body)) receiver->didReceiveScriptMessage({name, std::move(*value)});
    }
};

WebView::WebView(
    NotificationCenter& center, Rect frame, const WebViewConfiguration& configuration,
    std::function<void()> firstPageDidAppear)
    : View(makeCanvas(), center),
      web_(makeEngineView(configuration.userContentController.userScripts)),
      firstPageDidAppear_(std::move(firstPageDidAppear)) {
    setFrame(frame);
    gtk_widget_set_parent(GTK_WIDGET(web_.get()), widget());
    receiveMessages(configuration.userContentController);
    connectSignals();
    appearanceObserver_ = Appearance::current().onChange([this] { showColors(); });
    warmUp();
}

WebView::~WebView() {
    endWait();
    connections_.clear();
    // A page whose script never yields would not hear that its view has gone, and its process would run on
    // for ten seconds after the program has ended.
    webkit_web_view_terminate_web_process(web_.get());
}

void WebView::receiveMessages(const WebViewConfiguration::UserContentController& controller) {
    auto* manager = webkit_web_view_get_user_content_manager(web_.get());
    const auto received = [](WebKitUserContentManager*, JSCValue* body, void* receiver) noexcept {
        static_cast<const MessageReceiver*>(receiver)->receive(body);
    };
    for (const auto& channel : controller.messageChannels) {
        receivers_.push_back(
            std::make_unique<MessageReceiver>(MessageReceiver{channel.name, channel.handler}));
        connections_.add(
            manager, ("script-message-received::" + channel.name).c_str(), received, receivers_.back().get());
        webkit_user_content_manager_register_script_message_handler(manager, channel.name.c_str(), nullptr);
    }
}

void WebView::connectSignals() {
    const auto decidePolicy = [](WebKitWebView*, WebKitPolicyDecision* decision,
                                 WebKitPolicyDecisionType type,
                                 void* self) noexcept { return viewOf(self).decidePolicy(decision, type); };
    const auto create = [](WebKitWebView*, WebKitNavigationAction* action,
                           void* self) noexcept -> GtkWidget* {
        viewOf(self).requestNewWindow(addressOf(action));
        return nullptr;
    };
    const auto loadChanged = [](WebKitWebView*, WebKitLoadEvent event, void* self) noexcept {
        viewOf(self).loadChanged(event);
    };
    const auto loadFailed = [](WebKitWebView*, WebKitLoadEvent event, const char* address, GError* error,
                               void* self) noexcept -> gboolean {
        viewOf(self).loadFailed(event, address, *error);
        // Answered: the engine shows no page of its own about it.
        return TRUE;
    };
    const auto terminated = [](WebKitWebView*, WebKitWebProcessTerminationReason, void* self) noexcept {
        viewOf(self).processTerminated();
    };
    const auto dialog = [](WebKitWebView*, WebKitScriptDialog* question, void* self) noexcept {
        return viewOf(self).runScriptDialog(question);
    };
    const auto contextMenu = [](WebKitWebView* view, WebKitContextMenu* menu, WebKitHitTestResult* hit,
                                void*) noexcept -> gboolean {
        return showsWindowMenu(GTK_WIDGET(view), menu, hit) || !keepSensibleItems(menu);
    };
    const auto download = [](WebKitNetworkSession*, WebKitDownload* started, void* self) noexcept {
        viewOf(self).handOver(started);
    };

    connections_.add(web_.get(), "decide-policy", decidePolicy, this);
    connections_.add(web_.get(), "create", create, this);
    connections_.add(web_.get(), "load-changed", loadChanged, this);
    connections_.add(web_.get(), "load-failed", loadFailed, this);
    connections_.add(web_.get(), "web-process-terminated", terminated, this);
    connections_.add(web_.get(), "script-dialog", dialog, this);
    connections_.add(web_.get(), "context-menu", contextMenu, this);
    connections_.add(webkit_web_view_get_network_session(web_.get()), "download-started", download, this);
    refuseRequests(connections_, web_.get());
}

void WebView::setNavigationDelegate(std::weak_ptr<WebNavigationDelegate> delegate) {
    navigationDelegate_ = std::move(delegate);
}

void WebView::setUIDelegate(std::weak_ptr<WebUIDelegate> delegate) {
    uiDelegate_ = std::move(delegate);
}

void WebView::setValueForKey(bool value, const std::string& key) {
    if (key != "drawsBackground") return;
    drawsBackground_ = value;
    showColors();
}

void WebView::setUnderPageBackgroundColor(const Color& color) {
    underPageColor_ = color;
    showColors();
}

void WebView::showColors() {
    const auto underPage =
        underPageColor_ ? Appearance::current().resolve(*underPageColor_) : GdkRGBA{0, 0, 0, 0};
    setCanvasColor(widget(), underPage);
    // A page without a background of its own stands on the same colour, drawn by the engine too: over a
    // transparent background WebKitGTK 2.50, when it draws in software, leaves what was drawn before.
    const auto background = drawsBackground_ ? GdkRGBA{1, 1, 1, 1} : underPage;
    webkit_web_view_set_background_color(web_.get(), &background);
}

void WebView::setAutoresizingMask(std::uint32_t /*mask*/) {}

// Decisions

gboolean WebView::decidePolicy(WebKitPolicyDecision* decision, WebKitPolicyDecisionType type) {
    const auto self = shared_from_this();
    if (type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE) {
        auto* response = WEBKIT_RESPONSE_POLICY_DECISION(decision);
        if (webkit_response_policy_decision_is_mime_type_supported(response)) return FALSE;
        webkit_policy_decision_download(decision);
        return TRUE;
    }
    auto* action =
        webkit_navigation_policy_decision_get_navigation_action(WEBKIT_NAVIGATION_POLICY_DECISION(decision));
    if (type == WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION) return decideNavigation(decision, action);
    // Ignored here, the request does not come again as `create`.
    webkit_policy_decision_ignore(decision);
    requestNewWindow(addressOf(action));
    return TRUE;
}

gboolean WebView::decideNavigation(WebKitPolicyDecision* decision, WebKitNavigationAction* action) {
    const auto address = addressOf(action);
    auto policy = NavigationActionPolicy::allow;
    const auto delegate = navigationDelegate_.lock();
    if (delegate && !loads_.isWarmUpDecision(address)) {
        delegate->decidePolicyForNavigationAction(
            {URL::reported(address)}, [&](NavigationActionPolicy answer) { policy = answer; });
    }
    const bool allowed = policy == NavigationActionPolicy::allow;
    loads_.decided(address, webkit_navigation_action_is_redirect(action), allowed);
    if (!loads_.awaitsOwnLoad()) endWait();
    if (allowed) {
        webkit_policy_decision_use(decision);
    } else {
        webkit_policy_decision_ignore(decision);
    }
    return TRUE;
}

void WebView::requestNewWindow(const std::string& address) {
    if (const auto delegate = uiDelegate_.lock()) {
        // No view of the shell's could be used for it: the engine insists on one made for the request.
        static_cast<void>(delegate->createWebViewForNavigationAction({URL::reported(address)}));
    }
}

void WebView::handOver(WebKitDownload* download) {
    if (webkit_download_get_web_view(download) != web_.get()) return;
    webkit_download_cancel(download);
    auto* request = webkit_download_get_request(download);
    const char* method = webkit_uri_request_get_http_method(request);
    const auto url = URL::reported(webkit_uri_request_get_uri(request));
    const bool isWebAddress = url && (url->scheme() == "http" || url->scheme() == "https");
    if (!isWebAddress || (method && std::string_view(method) != "GET")) return;
    if (loads_.isOwnUnshown(webkit_uri_request_get_uri(request))) return;
    requestNewWindow(url->absoluteString());
}

gboolean WebView::runScriptDialog(WebKitScriptDialog* dialog) {
    const auto self = shared_from_this();
    const auto question = std::make_shared<ScriptDialog>(dialog);
    const auto delegate = uiDelegate_.lock();
    const std::string message = webkit_script_dialog_get_message(dialog);
    switch (webkit_script_dialog_get_dialog_type(dialog)) {
    case WEBKIT_SCRIPT_DIALOG_ALERT:
        if (delegate)
            delegate->runJavaScriptAlertPanelWithMessage(message, [question] { question->answer(true); });
        break;
    case WEBKIT_SCRIPT_DIALOG_CONFIRM:
        if (delegate) {
            delegate->runJavaScriptConfirmPanelWithMessage(
                message, [question](bool confirmed) { question->answer(confirmed); });
        }
        break;
    case WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM:
        // Nothing may keep the shell from loading its page again.
        question->answer(true);
        break;
    case WEBKIT_SCRIPT_DIALOG_PROMPT:
        break;
    }
    return TRUE;
}

// Scripts

void WebView::evaluateJavaScript(const std::string& script, EvaluationHandler completionHandler) {
    // The blank document is nobody's page. A script could give it a place in the history.
    if (!loads_.hasPage()) return answerWithoutValue(std::move(completionHandler));
    const auto length = static_cast<gssize>(script.size());
    if (!completionHandler) {
        webkit_web_view_evaluate_javascript(
            web_.get(), script.c_str(), length, nullptr, nullptr, nullptr, nullptr, nullptr);
        return;
    }
    const auto evaluated = [](GObject* view, GAsyncResult* result, void* data) noexcept {
        const std::unique_ptr<EvaluationHandler> handler(static_cast<EvaluationHandler*>(data));
        GError* failure = nullptr;
        const auto value = GObjectPtr<JSCValue>::adopt(
            webkit_web_view_evaluate_javascript_finish(WEBKIT_WEB_VIEW(view), result, &failure));
        const GErrorPtr error(failure);
        (*handler)(value ? valueFromScript(value.get()) : std::nullopt);
    };
    webkit_web_view_evaluate_javascript(
        web_.get(), script.c_str(), length, nullptr, nullptr, nullptr, evaluated,
        std::make_unique<EvaluationHandler>(std::move(completionHandler)).release());
}

std::shared_ptr<harbrook::WebView> makeWebView(
    NotificationCenter& center, Rect frame, const WebViewConfiguration& configuration,
    std::function<void()> firstPageDidAppear) {
    finishSandboxPreflight();
    return std::make_shared<WebView>(center, frame, configuration, std::move(firstPageDidAppear));
}

} // namespace harbrook::gtk
