#include "app/AppDelegate.h"
#include "window/NavigationPolicy.h"

namespace harbrook {

namespace {

constexpr double retryDelay = 1.5;

} // namespace

void AppDelegate::decidePolicyForNavigationAction(
    const NavigationAction& action, const DecisionHandler& decisionHandler) {
    assertMainThread();
    if (decidePolicy(action.requestURL, globals_->serverPort()) == NavigationDecision::allow) {
        decisionHandler(NavigationActionPolicy::allow);
        return;
    }
    platform_->sharedWorkspace().openURL(*action.requestURL);
    decisionHandler(NavigationActionPolicy::cancel);
}

std::shared_ptr<WebView> AppDelegate::createWebViewForNavigationAction(const NavigationAction& action) {
    assertMainThread();
    const auto& url = action.requestURL;
    if (url && hasExternalScheme(*url)) platform_->sharedWorkspace().openURL(*url);
    return nullptr;
}

void AppDelegate::didFailProvisionalNavigation(const Error& /*error*/) {
    retryLoad();
}

void AppDelegate::didFailNavigation(const Error& /*error*/) {
    retryLoad();
}

void AppDelegate::retryLoad() {
    platform_->mainQueue().asyncAfter(retryDelay, whileAlive(&AppDelegate::loadBaseURL));
}

void AppDelegate::runJavaScriptAlertPanelWithMessage(
    const std::string& message, std::function<void()> completionHandler) {
    assertMainThread();
    const auto alert = platform_->makeAlert();
    alert->setMessageText(message);
    alert->addButtonWithTitle("OK");
    alert->beginSheetModalForWindow(
        window, [completionHandler = std::move(completionHandler)](ModalResponse) { completionHandler(); });
}

void AppDelegate::runJavaScriptConfirmPanelWithMessage(
    const std::string& message, std::function<void(bool)> completionHandler) {
    assertMainThread();
    const auto alert = platform_->makeAlert();
    alert->setMessageText(message);
    alert->addButtonWithTitle("OK");
    alert->addButtonWithTitle("Cancel");
    alert->beginSheetModalForWindow(
        window, [completionHandler = std::move(completionHandler)](ModalResponse response) {
            completionHandler(response == NSAlertFirstButtonReturn);
        });
}

} // namespace harbrook
