#include "platform/gtk/app/Application.h"

#include "platform/gtk/app/AboutPanel.h"
#include "platform/gtk/app/EditingActions.h"
#include "platform/gtk/bus/SessionBus.h"
#include "platform/gtk/foundation/Bundle.h"
#include "platform/gtk/foundation/ChildProcess.h"
#include "platform/gtk/foundation/Identity.h"
#include "platform/gtk/window/ActivationToken.h"
#include "platform/gtk/window/Window.h"

#include <algorithm>
#include <utility>

namespace harbrook::gtk {

namespace {

constexpr auto stillRunsNotice = "still-runs";

void addOwnIcons() {
    gtk_icon_theme_add_search_path(
        gtk_icon_theme_get_for_display(gdk_display_get_default()), iconDirectory().c_str());
}

} // namespace

Application::Application(Start start, std::function<bool()> isInPanel)
    : isInPanel_(std::move(isInPanel)), awaitsMessage_(start.by == StartedBy::bus) {
    // Window managers match a window with its launcher by this name.
    g_set_prgname(applicationIdentifier);
    g_set_application_name(applicationName);
    doWithoutUnresponsiveSessionBus();
    application_ = GObjectPtr<GtkApplication>::adopt(
        gtk_application_new(applicationIdentifier, G_APPLICATION_DEFAULT_FLAGS));
    setCreatesNewApplicationInstance(start.asNewInstance);

    // The desktop's end of session then ends this program the normal way.
    g_object_set(application_.get(), "register-session", TRUE, nullptr);
    connections_.add(
        application_.get(), "startup",
        [](GtkApplication*, void* self) noexcept { static_cast<Application*>(self)->didStart(); }, this);
    connections_.add(
        application_.get(), "activate",
        [](GtkApplication*, void* self) noexcept { static_cast<Application*>(self)->didActivate(); }, this);
    connections_.add(
        application_.get(), "shutdown",
        [](GtkApplication*, void* self) noexcept { static_cast<Application*>(self)->willEnd(); }, this);
}

void Application::setDelegate(std::weak_ptr<ApplicationDelegate> delegate) {
    delegate_ = std::move(delegate);
}

void Application::setActivationPolicy(ActivationPolicy /*policy*/) {}

void Application::setCreatesNewApplicationInstance(bool flag) {
    g_application_set_flags(
        G_APPLICATION(application_.get()), flag ? G_APPLICATION_NON_UNIQUE : G_APPLICATION_DEFAULT_FLAGS);
}

void Application::run() {
    terminationSignals_.emplace(nullptr, [this] { terminate(); });
    portalBypass_.emplace();
    // The command line has been dealt with. None of it is for the toolkit.
    g_application_run(G_APPLICATION(application_.get()), 0, nullptr);
}

void Application::didStart() {
    portalBypass_.reset();
    // By default the library ends the program when the session bus is lost.
    if (auto* bus = g_application_get_dbus_connection(G_APPLICATION(application_.get()))) {
        g_dbus_connection_set_exit_on_close(bus, FALSE);
    }
    addOwnIcons();
    gtk_window_set_default_icon_name(applicationIdentifier);
    // It stays when its window is closed.
    g_application_hold(G_APPLICATION(application_.get()));
    if (const auto delegate = delegate_.lock()) delegate->applicationDidFinishLaunching();
}

void Application::didActivate() {
    // The first activation is the start itself.
    if (!std::exchange(hasActivated_, true)) return;
    awaitsMessage_ = false;
    g_application_withdraw_notification(G_APPLICATION(application_.get()), stillRunsNotice);
    const auto delegate = delegate_.lock();
    if (!delegate) return;
    const bool hasVisibleWindows =
        std::ranges::any_of(windows(), [](const auto& window) { return window->isVisible(); });
    delegate->applicationShouldHandleReopen(hasVisibleWindows);
}

void Application::willEnd() {
    leaveSession();
    // The delegate waits for a server however long it takes to end. Whoever asks a second time means it.
    const ImpatientRequests impatience([] { ChildProcess::killAll(); });
    if (const auto delegate = delegate_.lock()) delegate->applicationWillTerminate();
    // The login shell that is still looking for an interpreter, say.
    ChildProcess::terminateAll();
}

/// What the delegate does last may take long. The user should not face windows that no longer answer, nor a
/// new start be taken for a call of this program that is on its way out.
void Application::leaveSession() {
    for (const auto& window : windows())
        window->orderOut();
    if (auto* display = gdk_display_get_default()) gdk_display_flush(display);
    auto* bus = g_application_get_dbus_connection(G_APPLICATION(application_.get()));
    if (!bus) return;
    // Whoever has asked for the end by the bus still gets an answer.
    g_dbus_connection_flush_sync(bus, nullptr, nullptr);
    g_dbus_connection_close_sync(bus, nullptr, nullptr);
}

void Application::terminate() {
    g_application_quit(G_APPLICATION(application_.get()));
}

void Application::activateIgnoringOtherApps(bool /*flag*/) {
    const auto all = windows();
    const auto* list = gtk_application_get_windows(application_.get());
    for (const auto* entry = list; entry; entry = entry->next) {
        if (gtk_window_is_active(GTK_WINDOW(entry->data))) return;
    }
    for (const auto& window : all) {
        if (window->isVisible()) window->makeKeyAndOrderFront();
    }
}

void Application::setMainMenu(const Menu& menu) {
    mainMenu_.reset();
    mainMenu_ = std::make_unique<MainMenu>(
        application_.get(), menu, [this](const MenuItem& item) { sendAction(item); });
    for (const auto& window : windows())
        window->setMainMenu(*mainMenu_);
    windowTitleDidChange();
}

void Application::orderFrontStandardAboutPanelWithOptions(const AboutPanelOptions& options) {
    const auto all = windows();
    if (!aboutPanel_) aboutPanel_ = makeAboutPanel();
    showAboutPanel(aboutPanel_.get(), options, all.empty() ? nullptr : all.front()->native());
}

std::shared_ptr<const Event> Application::currentEvent() {
    for (const auto& window : windows()) {
        if (auto event = window->pressedEvent()) return event;
    }
    return nullptr;
}

void Application::sendAction(const MenuItem& item, const std::string& activationToken) {
    const ActivationToken token(activationToken);
    for (const auto& window : windows())
        window->dismissMenuBar();
    const bool startedTheProgram = std::exchange(awaitsMessage_, false);
    if (item.target == ActionTarget::responderChain && performStandardAction(item.action)) return;
    if (startedTheProgram && !hasPage_) {
        launchAction_ = item;
    } else {
        performDelegateAction(item);
    }
}

void Application::performDelegateAction(const MenuItem& item) {
    const auto delegate = delegate_.lock();
    if (delegate && delegate->respondsToSelector(item.action)) delegate->performSelector(item.action, item);
}

void Application::firstPageDidAppear() {
    hasPage_ = true;
    if (const auto item = std::exchange(launchAction_, std::nullopt)) performDelegateAction(*item);
}

bool Application::performStandardAction(std::string_view selector) {
    GtkWindow* active = gtk_application_get_active_window(application_.get());
    GtkWidget* focused = active ? gtk_window_get_focus(active) : nullptr;
    if (performEditingAction(focused, selector)) return true;
    if (selector == "terminate:") {
        terminate();
    } else if (selector == "hide:") {
        for (const auto& window : windows())
            window->orderOut();
    } else if (selector == "performMiniaturize:") {
        if (active) gtk_window_minimize(active);
    } else if (selector == "performZoom:") {
        if (active) gtk_widget_activate_action(GTK_WIDGET(active), "window.toggle-maximized", nullptr);
    } else if (selector == "performClose:") {
        if (active) gtk_window_close(active);
    } else {
        return false;
    }
    return true;
}

void Application::addWindow(const std::shared_ptr<Window>& window) {
    windows_.push_back(window);
    if (mainMenu_) window->setMainMenu(*mainMenu_);
    windowTitleDidChange();
}

void Application::windowTitleDidChange() {
    if (!mainMenu_) return;
    std::vector<std::string> titles;
    for (const auto& window : windows())
        titles.push_back(window->title());
    mainMenu_->setWindowTitles(titles, [this](std::size_t index) {
        const auto all = windows();
        if (index < all.size()) all[index]->makeKeyAndOrderFront();
    });
}

void Application::windowDidClose() {
    if (std::ranges::any_of(windows(), [](const auto& window) { return window->isVisible(); })) return;
    const auto delegate = delegate_.lock();
    if (delegate && delegate->applicationShouldTerminateAfterLastWindowClosed()) {
        terminate();
    } else {
        sayThatItStillRuns();
    }
}

void Application::sayThatItStillRuns() {
    if (isInPanel_() || std::exchange(hasSaidThatItRuns_, true)) return;
    const auto notice = GObjectPtr<GNotification>::adopt(g_notification_new("Harbrook is still running"));
    g_notification_set_body(notice.get(), "Start it again to bring its window back.");
    g_notification_add_button(notice.get(), "Quit", "app.terminate");
    g_application_send_notification(G_APPLICATION(application_.get()), stillRunsNotice, notice.get());
}

std::vector<std::shared_ptr<Window>> Application::windows() const {
    std::vector<std::shared_ptr<Window>> all;
    for (const auto& entry : windows_) {
        if (auto window = entry.lock()) all.push_back(std::move(window));
    }
    return all;
}

} // namespace harbrook::gtk
