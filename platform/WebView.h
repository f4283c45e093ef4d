#pragma once

#include "platform/Network.h"
#include "platform/Value.h"
#include "platform/View.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace harbrook {

class WebView;

/// A message that a page posted to the channel `name`.
struct ScriptMessage {
    std::string name;
    Value body;
};

/// Receives a page's messages. Main thread.
class ScriptMessageHandler {
public:
    virtual ~ScriptMessageHandler() = default;
    virtual void didReceiveScriptMessage(const ScriptMessage& message) = 0;
};

enum class UserScriptInjectionTime { atDocumentStart = 0, atDocumentEnd = 1 };

struct UserScript {
    std::string source;
    UserScriptInjectionTime injectionTime = UserScriptInjectionTime::atDocumentStart;
    bool forMainFrameOnly = true;
    bool operator==(const UserScript&) const = default;
};

enum class WebsiteDataStore { defaultDataStore };

/// What a web view is made with; later changes have no effect on it.
struct WebViewConfiguration {
    struct MessageChannel {
        std::string name;
        std::weak_ptr<ScriptMessageHandler> handler;
    };
    struct UserContentController {
        std::vector<UserScript> userScripts;
        std::vector<MessageChannel> messageChannels;

        void addUserScript(UserScript script) { userScripts.push_back(std::move(script)); }
        void addScriptMessageHandler(std::weak_ptr<ScriptMessageHandler> handler, std::string name) {
            messageChannels.push_back({std::move(name), std::move(handler)});
        }
    };

    WebsiteDataStore websiteDataStore = WebsiteDataStore::defaultDataStore;
    UserContentController userContentController;

    void setWebsiteDataStore(WebsiteDataStore store) { websiteDataStore = store; }
};

/// A navigation that is about to happen. The request's URL is absent when the engine names none.
struct NavigationAction {
    std::optional<URL> requestURL;
};

enum class NavigationActionPolicy { cancel = 0, allow = 1 };

/// Decides on navigations and hears of loads that failed. Main thread.
class WebNavigationDelegate {
public:
    using DecisionHandler = std::function<void(NavigationActionPolicy)>;

    virtual ~WebNavigationDelegate() = default;
    /// Calls `decisionHandler` exactly once, before returning.
    virtual void decidePolicyForNavigationAction(
        const NavigationAction& action, const DecisionHandler& decisionHandler) = 0;
    /// A load failed before any content arrived, whatever the reason: one that was cancelled on its way (by a
    /// redirect that the delegate refused, say) has failed, too. A navigation that was cancelled before any
    /// load began is no failed load.
    virtual void didFailProvisionalNavigation(const Error& error) = 0;
    /// A load failed after content had begun to arrive. Where nothing else brings the page back, the end of
    /// its process counts as such.
    virtual void didFailNavigation(const Error& error) = 0;
};

/// Answers what a page asks of its surroundings. Main thread.
class WebUIDelegate {
public:
    virtual ~WebUIDelegate() = default;
    /// A request for a new window. The view to use, or none for no window.
    [[nodiscard]] virtual std::shared_ptr<WebView> createWebViewForNavigationAction(
        const NavigationAction& action) = 0;
    /// The page waits until `completionHandler` is called, once, at any later time; the program runs on.
    virtual void runJavaScriptAlertPanelWithMessage(
        const std::string& message, std::function<void()> completionHandler) = 0;
    virtual void runJavaScriptConfirmPanelWithMessage(
        const std::string& message, std::function<void(bool)> completionHandler) = 0;
};

/// A view that shows web pages. It reports the pages' console nowhere, opens no window and shows no dialog of
/// its own. Main thread.
class WebView : public virtual View {
public:
    /// The value of the script, or none when it failed or has a value that cannot be handed over.
    using EvaluationHandler = std::function<void(const std::optional<Value>&)>;

    virtual void setNavigationDelegate(std::weak_ptr<WebNavigationDelegate> delegate) = 0;
    virtual void setUIDelegate(std::weak_ptr<WebUIDelegate> delegate) = 0;
    /// Key-value coding, for the one property that has no setter: "drawsBackground".
    virtual void setValueForKey(bool value, const std::string& key) = 0;
    virtual void setUnderPageBackgroundColor(const Color& color) = 0;
    /// Which margins and dimensions follow the superview: width 2, height 16.
    virtual void setAutoresizingMask(std::uint32_t mask) = 0;

    virtual void loadRequest(const URLRequest& request) = 0;
    virtual void reload() = 0;
    /// Runs `script` in the page's main frame. Without a handler, result and errors are dropped.
    virtual void evaluateJavaScript(const std::string& script, EvaluationHandler completionHandler = {}) = 0;
};

/// Bits of an autoresizing mask, with the platform's values.
enum AutoresizingMask : std::uint32_t { NSViewWidthSizable = 2, NSViewHeightSizable = 16 };

} // namespace harbrook
