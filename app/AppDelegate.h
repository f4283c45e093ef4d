#pragma once

#include "app/Globals.h"
#include "platform/Platform.h"
#include "server/ServerSlot.h"
#include "status/State.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace harbrook {

/// The one application class: delegate of the application, of the status menu and of the web view, and
/// receiver of the page's messages. Its methods are spread over the folders by subject. All of them run on
/// the main thread.
class AppDelegate final : public ApplicationDelegate,
                          public MenuDelegate,
                          public WebNavigationDelegate,
                          public WebUIDelegate,
                          public ScriptMessageHandler,
                          public std::enable_shared_from_this<AppDelegate> {
public:
    using State = harbrook::State;
    /// Whether it went well, and if not, what to tell the user.
    using Completion = std::function<void(bool ok, const std::string& message)>;

    AppDelegate(std::shared_ptr<Platform> platform, std::shared_ptr<Globals> globals);

    // app/AppDelegate.cpp: launch, reopen, quit
    void applicationDidFinishLaunching() override;
    bool applicationShouldHandleReopen(bool hasVisibleWindows) override;
    bool applicationShouldTerminateAfterLastWindowClosed() override;
    void applicationWillTerminate() override;

    // app/Actions.cpp: menu actions by name
    [[nodiscard]] bool respondsToSelector(std::string_view selector) const override;
    void performSelector(std::string_view selector, const MenuItem& sender) override;

    // app/Commands.cpp: the main menu and its commands
    void buildMenu();
    /// Shows the window and moves the page to `hash`, which goes into the script as it is.
    void go(const std::string& hash);
    void goHome();
    void goServices();
    void goDocker();
    void goPorts();
    void goSettings();
    void goAbout();
    void reload();
    void toggleSidebar();
    void checkUpdates();
    void openWebsite();
    void emailDeveloper();
    void openLog();
    void showAbout();

    // server/
    /// Starts the server on a worker and returns at once. `completion` is called once, on the main queue.
    void startServerIfNeeded(Completion completion);
    /// A request to the server's API: `path` below the root, the token, and `timeout` seconds of patience.
    [[nodiscard]] URLRequest apiRequest(const std::string& path, double timeout = 1.5);
    /// Whether the server answers with 200 within the default time. `completion` is called once, on the URL
    /// session's queue.
    void serverIsUp(std::function<void(bool)> completion);

    // window/MainWindow.cpp
    /// What shows behind the page: a colour for light and one for dark.
    [[nodiscard]] static const Color& canvas();
    void buildWindow();
    void showWindow();

    // window/Navigation.cpp
    void decidePolicyForNavigationAction(
        const NavigationAction& action, const DecisionHandler& decisionHandler) override;
    void didFailProvisionalNavigation(const Error& error) override;
    void didFailNavigation(const Error& error) override;
    [[nodiscard]] std::shared_ptr<WebView> createWebViewForNavigationAction(
        const NavigationAction& action) override;
    void runJavaScriptAlertPanelWithMessage(
        const std::string& message, std::function<void()> completionHandler) override;
    void runJavaScriptConfirmPanelWithMessage(
        const std::string& message, std::function<void(bool)> completionHandler) override;
    /// Loads the server's root page 1.5 seconds from now.
    void retryLoad();

    // window/PageBridge.cpp
    void didReceiveScriptMessage(const ScriptMessage& message) override;
    /// Lets the user choose a folder and reports it to the page together with `target`.
    void pickFolder(const std::string& target = {});

    // window/TitlebarButtons.cpp
    /// Points: the band that holds the buttons, their centre below its top, and the left edge of the first.
    static constexpr double lightsRow = 52;
    static constexpr double lightsCentre = 34;
    static constexpr double lightsX = 20;
    void placeTrafficLights();
    void watchTrafficLights();

    // status/StatusPolling.cpp
    void refreshStatus();

    // status/StatusItem.cpp
    void buildStatusItem();
    void renderStatus(const std::optional<State>& state);
    void menuWillOpen() override;
    void openFromMenu();
    [[nodiscard]] static Image menuBarIcon(Platform& platform, bool idle = false);

    // status/ProjectActions.cpp
    void openPort(const MenuItem& sender);
    void openProject(const MenuItem& sender);
    void toggleProject(const MenuItem& sender);

    // shots/ScreenshotMode.cpp
    void enableScreenshotMode();

    // Fields. The window, the web view and the status item exist from launch on; missing later, they are a
    // programming error that stops the process.
    std::shared_ptr<Window> window;
    std::shared_ptr<WebView> webView;
    /// Shared with the launcher's worker.
    const std::shared_ptr<ServerSlot> server;
    std::shared_ptr<StatusItem> statusItem;
    std::shared_ptr<Timer> pollTimer;
    std::shared_ptr<TextField> loadingLabel;
    bool placingLights = false;
    std::vector<std::shared_ptr<ObserverToken>> lightObservers;

private:
    void assertMainThread() const;
    void openURL(std::string_view text);
    void loadBaseURL();
    void watchView(const std::shared_ptr<View>& view);
    void watchWindow(NotificationName name, void (AppDelegate::*method)());
    void willEnterFullScreen();
    void didExitFullScreen();
    void followUpToggle();
    void takeScreenshotRequest(const DistributedNotificationCenter::UserInfo& userInfo);
    /// A block that calls `method` if the delegate still exists by then.
    [[nodiscard]] Block whileAlive(void (AppDelegate::*method)());

    std::shared_ptr<Platform> platform_;
    std::shared_ptr<Globals> globals_;
};

} // namespace harbrook
