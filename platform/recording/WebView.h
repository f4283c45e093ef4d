#pragma once

#include "platform/WebView.h"
#include "platform/recording/View.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace harbrook::recording {

/// A web view without an engine. A load asks the navigation delegate first and then ends as the test says;
/// a script's value is what the test says. Both come later, with the main queue.
class WebView final : public View, public harbrook::WebView {
public:
    WebView(WorldPtr world, NotificationCenter& center, WebViewConfiguration configuration)
        : View(std::move(world), center, "webView"), configuration_(std::move(configuration)) {}

    void setNavigationDelegate(std::weak_ptr<WebNavigationDelegate> delegate) override;
    void setUIDelegate(std::weak_ptr<WebUIDelegate> delegate) override;
    void setValueForKey(bool value, const std::string& key) override;
    void setUnderPageBackgroundColor(const Color& color) override;
    void setAutoresizingMask(std::uint32_t mask) override;
    void loadRequest(const URLRequest& request) override;
    void reload() override;
    void evaluateJavaScript(const std::string& script, EvaluationHandler completionHandler) override;

    // What the test looks at.

    [[nodiscard]] const WebViewConfiguration& configuration() const { return configuration_; }
    [[nodiscard]] const std::optional<Color>& underPageBackgroundColor() const { return underPageColor_; }
    [[nodiscard]] const std::vector<URLRequest>& loads() const { return loads_; }
    /// The page that is shown, if a load has come to its end.
    [[nodiscard]] const std::optional<URL>& page() const { return page_; }

    // What the test sets.

    /// The value of a script; none when it fails. At first every script fails.
    std::function<std::optional<Value>(const std::string& script)> evaluate;
    /// The seconds that a script with a handler takes.
    double evaluationTakes = 0;
    /// What is wrong with a load; none when it succeeds. At first every load succeeds.
    std::function<std::optional<Error>(const URL&)> loadError;
    double loadTakes = 0;

    // What the user or the page does.

    /// The page posts `body` to the channel `name`, whether or not somebody listens.
    void simulateMessage(const std::string& name, Value body);
    /// The engine is about to go to `url`. What the delegate decided.
    NavigationActionPolicy simulateNavigation(const std::optional<URL>& url);
    /// The page asks for a new window. The view it was given.
    std::shared_ptr<harbrook::WebView> simulateNewWindow(const std::optional<URL>& url);
    void simulateFailedProvisionalNavigation(const std::string& localizedDescription);
    void simulateFailedNavigation(const std::string& localizedDescription);
    void simulateAlert(const std::string& message, std::function<void()> answered);
    void simulateConfirm(const std::string& message, std::function<void(bool)> answered);

private:
    void load(const URL& url);
    [[nodiscard]] std::shared_ptr<WebNavigationDelegate> navigationDelegate() const;
    [[nodiscard]] std::shared_ptr<WebUIDelegate> uiDelegate() const;

    WebViewConfiguration configuration_;
    std::weak_ptr<WebNavigationDelegate> navigationDelegate_;
    std::weak_ptr<WebUIDelegate> uiDelegate_;
    std::optional<Color> underPageColor_;
    std::vector<URLRequest> loads_;
    std::optional<URL> page_;
};

} // namespace harbrook::recording
