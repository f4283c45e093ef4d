#pragma once

#include "platform/Event.h"
#include "platform/Menu.h"
#include "platform/Text.h"

#include <memory>
#include <optional>
#include <string_view>

namespace harbrook {

enum class ActivationPolicy { regular = 0 };

/// What the application tells its one delegate, and what it asks of it. Main thread.
class ApplicationDelegate {
public:
    virtual ~ApplicationDelegate() = default;
    virtual void applicationDidFinishLaunching() = 0;
    /// The user asked for the running application again. Whether the platform should go on with its own way.
    virtual bool applicationShouldHandleReopen(bool hasVisibleWindows) = 0;
    virtual bool applicationShouldTerminateAfterLastWindowClosed() = 0;
    /// Last call before the process ends; it may block.
    virtual void applicationWillTerminate() = 0;
    /// Whether the delegate has a method for the menu action `selector`.
    [[nodiscard]] virtual bool respondsToSelector(std::string_view selector) const = 0;
    /// Runs the method for `selector`; one that it does not respond to does nothing.
    virtual void performSelector(std::string_view selector, const MenuItem& sender) = 0;
};

/// Only what differs from the platform's standard About panel, which shows name, version and icon by itself.
struct AboutPanelOptions {
    std::optional<AttributedString> credits;
};

/// The application: event loop, main menu, activation, termination. Main thread.
class Application {
public:
    virtual ~Application() = default;

    virtual void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) = 0;
    virtual void setActivationPolicy(ActivationPolicy policy) = 0;
    /// Whether this start runs beside an instance that is running in the session, instead of handing over to
    /// it; to be called before `run`. Where whoever opens an application decides that, it has no effect.
    virtual void setCreatesNewApplicationInstance(bool flag) = 0;
    /// Runs the event loop until the application terminates.
    virtual void run() = 0;

    virtual void activateIgnoringOtherApps(bool flag) = 0;
    /// Installs the menu bar. The submenus with a role become the windows menu and the help menu.
    virtual void setMainMenu(const Menu& menu) = 0;
    virtual void orderFrontStandardAboutPanelWithOptions(const AboutPanelOptions& options) = 0;
    /// Ends the application the normal way, by way of `applicationWillTerminate`.
    virtual void terminate() = 0;
    /// The event that is being handled, or none.
    [[nodiscard]] virtual std::shared_ptr<const Event> currentEvent() = 0;
};

} // namespace harbrook
