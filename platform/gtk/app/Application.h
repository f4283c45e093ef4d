#pragma once

#include "platform/Application.h"
#include "platform/gtk/app/CommandLine.h"
#include "platform/gtk/app/MainMenu.h"
#include "platform/gtk/app/TerminationSignals.h"
#include "platform/gtk/bus/PortalBypass.h"
#include "platform/gtk/foundation/SignalConnections.h"

#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace harbrook::gtk {

class Window;

/// The application as the desktop knows it: one running instance in the session, known by its identifier.
/// Starting the program again re-opens the window of the first instance, unless the new one is to run by
/// itself: that one takes no name on the bus.
class Application final : public harbrook::Application {
public:
    /// Looks whether the session bus answers, and lets this process do without it if it does not. To be made
    /// before the process has other threads.
    Application(Start start, std::function<bool()> isInPanel);

    void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) override;
    /// There is one policy: an application with windows, menus and a launcher entry.
    void setActivationPolicy(ActivationPolicy policy) override;
    void setCreatesNewApplicationInstance(bool flag) override;
    void run() override;
    void activateIgnoringOtherApps(bool flag) override;
    void setMainMenu(const Menu& menu) override;
    void orderFrontStandardAboutPanelWithOptions(const AboutPanelOptions& options) override;
    void terminate() override;
    std::shared_ptr<const Event> currentEvent() override;

    /// Performs the action of a chosen menu item: what the responder chain answers itself, or else the
    /// delegate's method of that name. A message that the bus has started the program for may ask for a view:
    /// that waits until there is a page. With an activation token it may raise a window on Wayland.
    void sendAction(const MenuItem& item, const std::string& activationToken = {});
    /// A page of the shell's is there for the first time.
    void firstPageDidAppear();

    [[nodiscard]] GtkApplication* native() const { return application_.get(); }
    /// The main menu, or null before there is one.
    [[nodiscard]] const MainMenu* mainMenu() const { return mainMenu_.get(); }
    void addWindow(const std::shared_ptr<Window>& window);
    void windowTitleDidChange();
    /// The user has closed a window. Terminates if that was the last one and the delegate wants it so.
    void windowDidClose();

private:
    void didStart();
    void didActivate();
    void willEnd();
    void leaveSession();
    /// Once, where no panel shows that the program still runs without a window, or offers to end it.
    void sayThatItStillRuns();
    bool performStandardAction(std::string_view selector);
    void performDelegateAction(const MenuItem& item);
    [[nodiscard]] std::vector<std::shared_ptr<Window>> windows() const;

    GObjectPtr<GtkApplication> application_;
    std::weak_ptr<ApplicationDelegate> delegate_;
    std::unique_ptr<MainMenu> mainMenu_;
    std::vector<std::weak_ptr<Window>> windows_;
    GObjectPtr<GtkWindow> aboutPanel_;
    /// Only until the toolkit has started.
    std::optional<PortalBypass> portalBypass_;
    std::function<bool()> isInPanel_;
    bool hasSaidThatItRuns_ = false;
    bool hasActivated_ = false;
    /// The message that the bus has started the program for has not come yet.
    bool awaitsMessage_;
    bool hasPage_ = false;
    /// What that message asked for before there was a page.
    std::optional<MenuItem> launchAction_;
    std::optional<TerminationSignals> terminationSignals_;
    SignalConnections connections_;
};

} // namespace harbrook::gtk
